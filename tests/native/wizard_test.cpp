// The item wizard's logic through a fake view.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "braille/koral.h"
#include "fake_koral.h"
#include "menu_records.h"
#include "platform/text.h"
#include "startup/settings.h"
#include "temp_folder.h"
#include "wizard/wizard.h"

namespace nx {
namespace {

// The wizard's window, its message boxes and the programs it starts.
struct FakeWizardView : IWizardView, IPrompts, IProcesses {
  std::wstring title, scriptPath, commandText, hotKeyText, usedBy, folder, started;
  std::map<WizardControl, std::wstring> texts;
  std::map<WizardControl, bool> enabled, shown, checked;
  WizardPane pane = WizardPane::Name;
  std::vector<std::pair<std::wstring, int>> commands;
  int selected = -1, topLine = -1;
  bool list = true, closed = false, hkFocus = false;
  std::set<int> keysDown;
  WizardField field{};  // the selection's
  size_t start = 0, length = 0;
  std::optional<std::wstring> chosen;  // in the open dialog
  std::vector<std::wstring> messages;

  void SetTitle(const std::wstring& t) override { title = t; }
  void SetText(WizardControl c, const std::wstring& t) override { texts[c] = t; }
  void EnableControl(WizardControl c, bool on) override { enabled[c] = on; }
  void ShowControl(WizardControl c, bool on) override { shown[c] = on; }
  void ShowPane(WizardPane p) override { pane = p, hkFocus = p == WizardPane::HotKey; }
  void HideWindow() override {}
  void ShowWindowAgain() override {}
  void Close() override { closed = true; }
  void SetName(const std::wstring&) override {}
  void SetKind(WizardKind) override {}
  void ClearCommands() override { commands.clear(), selected = -1; }
  void AddCommand(const std::wstring& t, int data) override { commands.emplace_back(t, data); }
  void SelectCommand(int line) override { selected = line; }
  int SelectedCommand() const override { return selected; }
  int CommandData(int line) const override { return commands.at(static_cast<size_t>(line)).second; }
  int CommandCount() const override { return static_cast<int>(commands.size()); }
  void ScrollCommandToTop(int line) override { topLine = line; }
  void ShowCommandList(bool l) override { list = l; }
  bool CommandListShown() const override { return list; }
  void SetCommandText(const std::wstring& t) override { commandText = t; }
  std::wstring CommandText() const override { return commandText; }
  void SetScriptPath(const std::wstring& t) override { scriptPath = t; }
  std::wstring ScriptPath() const override { return scriptPath; }
  void SelectText(WizardField f, size_t at, size_t n) override { field = f, start = at, length = n; }
  void SetHotKeyText(const std::wstring& t, bool) override { hotKeyText = t; }
  void FocusHotKey() override { hkFocus = true; }
  bool HotKeyHasFocus() const override { return hkFocus; }
  void SetUsedBy(const std::wstring& t) override { usedBy = t; }
  void SetChecked(WizardControl c, bool on) override { checked[c] = on; }
  bool Checked(WizardControl c) const override { return checked.count(c) && checked.at(c); }
  bool IsKeyDown(int key) const override { return keysDown.count(key) > 0; }
  int Message(const std::wstring& text, unsigned, const std::wstring&) override {
    return messages.push_back(text), mb::kIdOk;
  }
  std::optional<std::wstring> OpenFile(const std::wstring&, const std::wstring& d) override {
    return folder = d, chosen;
  }
  bool Start(const std::wstring& line) override { return started += L"; " + line, true; }
};

class WizardTest : public ::testing::Test {
 protected:
  WizardTest() {
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
    info_.Inicialize(nullptr);
    session_.gMenuDir = dir_.Path(L"Set");
    session_.gAppName = L"app";
    dir_.Write(L"gActions.def", "SayLine;reads the line\r\nSayTime;says the time\r\nBeep\r\n");
    dir_.Write(L"gKeyCode.def", "13=Enter\r\n27=Esc\r\n67=C\r\n74=J\r\n116=F5\r\n121=F10\r\n");
    Restart(L"");
    defs_.SetFolder(dir_.Path() + L"\\");
  }
  // A new wizard on a new item with the command `action`.
  void Restart(const std::wstring& action, int32_t hotKey = 0) {
    view_ = FakeWizardView();
    session_.gCmdScriptPath.clear();
    wizard_ = std::make_unique<fWizard>(view_, view_, view_, session_, info_, defs_, page_);
    wizard_->Form_Load();
    wizard_->SetCaptionBase(L"New item");
    wizard_->LoadDefs(dir_.Path(L"gKeyCode.def"), dir_.Path(L"gActions.def"));
    wizard_->SetMenuItem({L"New item", action, hotKey, true});
  }
  // n Next, b Back, c the kind Command, x Cancel, m changes every field of
  // the command page, t types a text code page 1252 lacks into every field,
  // o the command line offers a script.
  void Go(const std::string& keys) {
    for (char k : keys) {
      if (k == 'n') wizard_->cmdNext_Click();
      if (k == 'b') wizard_->cmdPrev_Click();
      if (k == 'c') wizard_->Kind_Click(WizardKind::Command);
      if (k == 'x') wizard_->cmdCANCEL_Click();
      if (k == 'm') view_.selected = 1, view_.scriptPath = L"b.vbs", view_.commandText = L"  Other  ";
      if (k == 't') wizard_->txtName_Change(L" Přečti"), view_.scriptPath = view_.commandText = L" Přečti";
      if (k == 'o') session_.gCmdScriptPath = L"$(appsetdir)\\hello.vbs";
    }
  }
  // The page: title, Next's text, Back, the kind, the command page's
  // contents, the character refused with where it is selected; then the
  // item's command (- for none) and the answer.
  std::wstring Page() {
    const wchar_t *kinds[] = {L"command", L"script", L"pull-down"}, *fields[] = {L"name", L"command", L"path"};
    std::wstring s = view_.title.substr(11) + L", " + view_.texts[WizardControl::Next] +
                     (view_.enabled[WizardControl::Back] ? L", back, " : L", ") +
                     kinds[static_cast<int>(wizard_->Kind())];
    if (view_.pane == WizardPane::Command)
      s += view_.list ? L", list to " + view_.commands.back().first + L": line " + std::to_wstring(view_.selected) +
                            L", top " + std::to_wstring(view_.topLine)
                      : L", text " + view_.commandText;
    if (view_.pane == WizardPane::Script) s += L", path " + view_.scriptPath;
    for (const auto& m : view_.messages)
      s += L", refused" + m.substr(13, m.find(L" cannot") - 13) + L" in the " + fields[static_cast<int>(view_.field)] +
           L" at " + std::to_wstring(view_.start) + L"+" + std::to_wstring(view_.length);
    return s + L": " + (wizard_->MenuItem() ? wizard_->MenuItem()->Action : L"-") + L" " +
           std::to_wstring(wizard_->Response()) + (view_.closed ? L" closed" : L"");
  }
  // The hot-key page: the key's text and code, the boxes, who else uses it.
  std::wstring HotKey() {
    wchar_t code[16];
    std::swprintf(code, 16, L"%X", static_cast<unsigned>(wizard_->MenuItem()->HotKey));
    return view_.hotKeyText + L" " + code + (view_.checked[WizardControl::Braille] ? L" braille" : L"") +
           (view_.enabled[WizardControl::Discard] ? L"" : L" no discard") +
           (view_.usedBy.empty() ? L"" : L", also " + view_.usedBy);
  }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefServer defs_{page_, profile_, L""};
  FakeWizardView view_;
  std::unique_ptr<fWizard> wizard_;
};

// Only the type page of a pull-down and the hot-key page finish; Back stores
// nothing and shows the stored command again. The menu file holds the
// system's single-byte code page: a text with a character it lacks is refused
// on Next, named and selected in its field. The command line only suggests a
// script: once the user has stored a command of their own, it is not offered
// again.
TEST_F(WizardTest, PagesAndWhatTheyStore) {
  const struct {
    const wchar_t* action;
    const char* keys;
    const wchar_t* page;
  } cases[] = {
      {L"", "b", L"Name, &Next >, pull-down:  0"},  // there is nothing before the name page
      {L"", "n", L"Type, &Finish, back, pull-down:  0"},
      {L"", "nn", L"Type, &Finish, back, pull-down:  1 closed"},
      {L"", "nc", L"Type, &Next >, back, command:  0"},
      {L"", "ncn", L"Narrix command, &Next >, back, command, list to Beep: line 0, top 0:  0"},
      {L"", "ncnn", L"Hot Key, &Finish, back, command: SayLine 0"},
      {L"", "ncnx", L"Narrix command, &Next >, back, command, list to Beep: line 0, top 0: - 2 closed"},
      {L"", "ncnmnb", L"Narrix command, &Next >, back, command, list to Beep: line 1, top 1: SayTime 0"},
      {L"SayLine", "nnmb", L"Type, &Next >, back, command: SayLine 0"},
      {L"Mine", "nn", L"Narrix command, &Next >, back, command, text Mine: Mine 0"},
      {L"Mine", "nnmn", L"Hot Key, &Finish, back, command: Other 0"},  // typed: trimmed
      {L"SHELL(a.vbs)", "nn", L"Command, &Next >, back, script, path a.vbs: SHELL(a.vbs) 0"},
      {L"SHELL(a.vbs)", "nnmn", L"Hot Key, &Finish, back, script: shell(b.vbs) 0"},
      {L"", "tn", L"Name, &Next >, pull-down, refused \"ř\" (U+0159) in the name at 2+1:  0"},
      {L"Mine", "nntn",
       L"Narrix command, &Next >, back, command, text  Přečti, refused \"ř\" (U+0159) in the command at 2+1: Mine 0"},
      {L"shell(a)", "nntn",
       L"Command, &Next >, back, script, path  Přečti, refused \"ř\" (U+0159) in the path at 2+1: shell(a) 0"},
      {L"", "onbn", L"Type, &Next >, back, script:  0"},
      {L"", "onn", L"Command, &Next >, back, script, path $(appsetdir)\\hello.vbs:  0"},
      {L"", "onnmnbbcnmnbbn", L"Narrix command, &Next >, back, command, text Other: Other 0"},
  };
  for (const auto& c : cases) {
    Restart(c.action);
    Go(c.keys);
    EXPECT_EQ(Page(), c.page) << c.keys;
  }
  wizard_->Form_Unload();
  EXPECT_EQ(session_.gCmdScriptPath, L"");  // offered to one wizard only
}

// Browse starts in the application's folder and writes the path with the
// folder's short name, selected so that it is read. Edit opens a script in
// Notepad and starts anything else; the Form button belongs to a script with
// a form file beside it and opens that in the screen reader's form tool.
// Tips opens the tips file and never empties it.
TEST_F(WizardTest, ScriptButtons) {
  for (const char* folder : {"scripts", "Set/app", "set/app"}) std::filesystem::create_directories(dir_.Fs() / folder);
  dir_.Write(L"scripts\\mail.frm", "");
  dir_.Write(L"Set\\app\\hello.frm", "");
  dir_.Write(L"set\\app\\tips.txt", "my tips");
  const struct {
    const wchar_t *app, *chosen;  // chosen: null for Tips
    const wchar_t* result;
  } cases[] = {
      {L"app", L"%\\Set\\app\\Mail.VBS",
       L"%\\Set\\app: wscript.exe \"$(appsetdir)\\Mail.VBS\" read; notepad.exe %\\Set\\app\\mail.vbs"},
      {L"app", L"%\\tools\\calc.exe", L"%\\Set\\app: $(velkordir)\\tools\\calc.exe read; %\\tools\\calc.exe"},
      {L"(Narrix)", L"", L"%\\Set: old.txt; old.txt"},
      {L"app", L"%\\scripts\\Mail.VBS",
       L"%\\Set\\app: wscript.exe \"$(velkordir)\\scripts\\Mail.VBS\" read; notepad.exe %\\scripts\\mail.vbs; "
       L"%\\scripts\\setscript.exe %\\scripts\\mail.frm"},
      {L"app", L"%\\Set\\app\\hello.vbs",
       L"%\\Set\\app: wscript.exe \"$(appsetdir)\\hello.vbs\" read; notepad.exe %\\Set\\app\\hello.vbs; "
       L"%\\scripts\\setscript.exe %\\Set\\app\\hello.frm"},
      {L"app", nullptr, L": notepad.exe $(velkordir)\\set\\app\\tips.txt read; notepad.exe %\\set\\app\\tips.txt"},
  };
  for (const auto& c : cases) {
    session_.gAppName = c.app;
    view_ = FakeWizardView();
    view_.chosen = c.chosen ? std::optional<std::wstring>(ReplaceAll(c.chosen, L"%", dir_.Path())) : std::nullopt;
    view_.scriptPath = L"old.txt", view_.shown[WizardControl::Form] = true;
    c.chosen ? wizard_->cmdScriptBrowse_Click() : wizard_->cmdTips_Click();
    wizard_->cmdScriptEdit_Click();
    if (view_.shown[WizardControl::Form]) wizard_->cmdScriptForm_Click();
    const bool read = view_.field == WizardField::ScriptPath && view_.length == view_.scriptPath.size();
    EXPECT_EQ(view_.folder + L": " + view_.scriptPath + (read ? L" read" : L"") + view_.started,
              ReplaceAll(c.result, L"%", dir_.Path()));
  }
  EXPECT_EQ(dir_.Read(L"set\\app\\tips.txt"), "my tips");
}

// Keys are captured and named with the other items that have them (the item
// being changed does not count), then with the general menu's items, display
// buttons by the display's profile beside it; Tab, Shift+Tab and modifiers
// alone leave the key as it is. Display buttons are captured too; the
// Braille box switches a code between key and button.
TEST_F(WizardTest, HotKeys) {
  session_.gBrailleName = L"Focus";
  // Seven applications have Narrix+J, twice; "a" has C+C too; bad's menu cannot be read.
  for (std::wstring app : {L"g", L"B", L"c", L"d", L"e", L"f", L"a", L"bad\\Command.mnu"}) {
    std::filesystem::create_directories(dir_.Fs() / "Set" / ReplaceAll(app, L"\\", L"/"));
    dir_.Write(L"Set\\" + app + L"\\Command.mnu",
               Record(0, 0x2000004A, "J") + Record(0, app == L"a" ? 0x20043 : 0x2000004A, "K"));
  }
  dir_.Write(L"Set\\Command.mnu", Record(0, 0x20043, "Help") + Record(0, 0x40000000, "Dots", "Beep"));
  dir_.Write(L"Set\\Focus.ini", "[Actions]\r\nBeep=5\r\n");
  auto root = cMenuItem::New();
  for (auto [caption, key] : {std::pair{L"Open", 0x00020043}, {L"Copy", 0x00020043}, {L"Other", 0x00020044}})
    root->SubItems.Add(1, root.get(), cMenuItem::New())->SetFields({caption, L"", key});
  Restart(L"", 0x40000005);
  wizard_->SetMenu(root.get(), root->SubItems.item(1).get());  // editing "Open"
  Go("ncnn");
  const int kNormal = -1, kCursorStatus = -2, kAuxStatus = -3, kBrailleOn = -4, kBrailleOff = -5;
  const struct {
    int key, value;  // value: a key's shift state, a display's button, the code the Braille box switches
    std::set<int> held;
    const wchar_t* result;
  } presses[] = {
      {16, 1, {}, L"[H1+H4] 40000005 braille no discard, also Dots (general menu)"},
      {45, 0, {45}, L"[H1+H4] 40000005 braille no discard, also Dots (general menu)"},
      {9, 0, {}, L"[H1+H4] 40000005 braille no discard, also Dots (general menu)"},
      {9, 1, {}, L"[H1+H4] 40000005 braille no discard, also Dots (general menu)"},
      {67, 2, {}, L"C+C 20043, also Copy, Help (general menu)"},
      {68, 2, {}, L"C+key(68) 20044, also Other"},
      {74, 0, {45}, L"Narrix+J 2000004A"},
      {116, 5, {145}, L"Narrix+A+S+F5 20050074"},
      {13, 0, {}, L"Enter D"},  // not Finish
      {27, 0, {}, L"Esc 1B"},   // not Cancel
      {kNormal, 5, {}, L"[H1+H4] 40000005 braille no discard, also Dots (general menu)"},
      {kCursorStatus, 3, {}, L"[] C0020003 braille no discard"},
      {kAuxStatus, 0x12345, {}, L"[] C0042345 braille no discard"},
      {kBrailleOn, 0x00000005, {}, L"[H1+H4] 40000005 braille no discard, also Dots (general menu)"},
      {kBrailleOff, static_cast<int>(0x4004007A), {}, L"A+key(122) 4007A"},
      {kBrailleOff, static_cast<int>(0xC0020003), {}, L"C+key(3) 20003"},
  };
  for (const auto& p : presses) {
    view_.keysDown = p.held;
    // Keys are captured, but not modifiers alone and Tab.
    EXPECT_EQ(p.key < 0 || wizard_->hk_KeyDown(p.key, p.value), p.key != 16 && p.key != 45 && p.key != 9);
    if (p.key == kNormal) wizard_->koral_BrailleBtnNormal(p.value);
    if (p.key == kCursorStatus) wizard_->koral_BrailleBtnCusorStatus(p.value);
    if (p.key == kAuxStatus) wizard_->koral_BrailleBtnAuxStatus(p.value);
    if (p.key <= kBrailleOn) {
      wizard_->SetMenuItem({L"Item", L"", p.value, true});
      view_.checked[WizardControl::Braille] = p.key == kBrailleOn;
      wizard_->chkBraille_Click(p.key == kBrailleOn);
    }
    EXPECT_EQ(HotKey(), p.result) << p.key << " " << p.value;
  }
  wizard_->cmdHotKeyDel_Click();
  EXPECT_EQ(HotKey(), L" 0");
  EXPECT_FALSE(wizard_->MenuItem()->Discard);

  // "Braille keys" unchecked lets the display go and keeps the button; so
  // does the command page, and it unchecks the box.
  test::FakeKoralFactory koral;
  for (bool back : {false, true}) {  // the box unchecked, or Back
    wizard_->SetBrailleDisplay(std::make_unique<cKoral>(koral));
    view_.checked[WizardControl::BrailleHook] = back;
    back ? Go("b") : wizard_->chkBrailleHook_Click(false);
    EXPECT_FALSE(wizard_->BrailleAttached() || view_.checked[WizardControl::BrailleHook]) << back;
  }

  // From the general menu: the applications whose menus have the key, in the
  // list's order, each once, five named. Without menus, nobody.
  const struct {
    bool general;
    const wchar_t* folder;
    int32_t code;
    const wchar_t* usedBy;
  } menus[] = {
      {true, L"Set", 0x2000004A, L"a, B, c, d, e and 2 more (applications)"},
      {true, L"Set", 0x20043, L"a (application)"},
      {true, L"None", 0x20043, L""},
      {false, L"None", 0x20043, L""},
  };
  for (const auto& m : menus) {
    session_.gGeneralMenu = m.general, session_.gMenuDir = dir_.Path(m.folder);
    Restart(L"", m.code);
    Go("ncnn");
    EXPECT_EQ(view_.usedBy, m.usedBy) << m.general << m.folder;
  }
}

}  // namespace
}  // namespace nx
