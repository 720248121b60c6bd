// The item wizard's logic through a fake view.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

#include "braille/koral.h"
#include "fake_koral.h"
#include "platform/folders.h"
#include "platform/string_table.h"
#include "platform/text.h"
#include "startup/settings.h"
#include "temp_folder.h"
#include "wizard/wizard.h"

namespace nx {
namespace {

class FakeWizardView : public IWizardView {
 public:
  std::wstring title, scriptPath, commandText, hotKeyText, usedBy;
  std::map<WizardControl, std::wstring> texts;
  std::map<WizardControl, bool> enabled, shown, checked;
  WizardPane pane = WizardPane::Name;
  WizardKind kind = WizardKind::PullDown;
  std::vector<std::pair<std::wstring, int>> commands;
  int selected = -1, topLine = -1, hides = 0, selections = 0;
  bool list = true, closed = false, keepFocus = true, hkFocus = false;
  std::set<int> keysDown;
  struct Selection {
    WizardField field;
    size_t start, length;
  } selection{};

  void SetTitle(const std::wstring& t) override { title = t; }
  void SetText(WizardControl c, const std::wstring& t) override { texts[c] = t; }
  void EnableControl(WizardControl c, bool on) override { enabled[c] = on; }
  void ShowControl(WizardControl c, bool on) override { shown[c] = on; }
  void ShowPane(WizardPane p) override { pane = p, hkFocus = p == WizardPane::HotKey; }
  void HideWindow() override { ++hides; }
  void ShowWindowAgain() override {}
  void Close() override { closed = true; }
  void SetName(const std::wstring&) override {}
  void SetKind(WizardKind k) override { kind = k; }
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
  void SelectText(WizardField f, size_t start, size_t length) override { selection = {f, start, length}, ++selections; }
  void SetHotKeyText(const std::wstring& t, bool keep) override { hotKeyText = t, keepFocus = keep, hkFocus |= !keep; }
  void FocusHotKey() override { hkFocus = true; }
  bool HotKeyHasFocus() const override { return hkFocus; }
  void SetUsedBy(const std::wstring& t) override { usedBy = t; }
  void SetChecked(WizardControl c, bool on) override { checked[c] = on; }
  bool Checked(WizardControl c) const override { return checked.count(c) && checked.at(c); }
  bool IsKeyDown(int key) const override { return keysDown.count(key) > 0; }
};

class FakeProcesses : public IProcesses {
 public:
  std::vector<std::wstring> started;
  bool Start(const std::wstring& line) override { return started.push_back(line), true; }
};

class OpenFilePrompts : public IPrompts {
 public:
  std::optional<std::wstring> chosen;
  std::wstring filter, folder;
  std::vector<std::wstring> messages;
  int Message(const std::wstring& text, unsigned, const std::wstring&) override {
    return messages.push_back(text), mb::kIdOk;
  }
  std::optional<std::wstring> OpenFile(const std::wstring& f, const std::wstring& d) override {
    return filter = f, folder = d, chosen;
  }
};

// Opens every display it makes, as when braille is switched on.
class OpeningBraille : public IBrailleOpener {
 public:
  test::FakeKoralFactory factory;
  int made = 0;
  std::unique_ptr<IBrailleDisplay> OpenNew() override {
    ++made;
    auto display = std::make_unique<cKoral>(factory);
    display->Initialize();
    return display;
  }
};

using Kind = WizardKind;

class WizardTest : public ::testing::Test {
 protected:
  WizardTest() {
    registry_.WriteString(kProductKey, L"Path", L"C:\\Narrix");
    info_.Inicialize(nullptr);
    session_.gMenuDir = L"C:\\Narrix\\Set";
    session_.gAppName = L"notepad";
    dir_.Write(L"gActions.def", "SayLine;reads the line\r\nSayTime;says the time\r\nBeep\r\n");
    dir_.Write(L"gKeyCode.def", "13=Enter\r\n27=Esc\r\n67=C\r\n74=J\r\n116=F5\r\n121=F10\r\n");
    Restart(L"");
    defs_.SetFolder(dir_.Path() + L"\\");
  }
  // A new wizard on a new item with the command `action`.
  void Restart(const std::wstring& action, int32_t hotKey = 0, const ICodePage* codePage = nullptr) {
    view_ = FakeWizardView();
    wizard_ =
        std::make_unique<fWizard>(view_, prompts_, processes_, session_, info_, defs_, codePage ? *codePage : page_);
    wizard_->Form_Load();
    wizard_->SetCaptionBase(L"New item");
    wizard_->LoadDefs(dir_.Path(L"gKeyCode.def"), dir_.Path(L"gActions.def"));
    wizard_->SetMenuItem({L"New item", action, hotKey, true});
  }
  // n Next, b Back, c and s the kinds Command and Script, x Cancel, m
  // changes every field of the command page.
  void Go(const std::string& keys) {
    for (char k : keys) {
      if (k == 'n') wizard_->cmdNext_Click();
      if (k == 'b') wizard_->cmdPrev_Click();
      if (k == 'c' || k == 's') wizard_->Kind_Click(k == 'c' ? Kind::Command : Kind::Script);
      if (k == 'x') wizard_->cmdCANCEL_Click();
      if (k == 'm') view_.selected = 1, view_.scriptPath = L"b.vbs", view_.commandText = L"  Other  ";
    }
  }
  const ItemFields& Out() const { return *wizard_->MenuItem(); }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefServer defs_{page_, profile_, L""};
  FakeWizardView view_;
  OpenFilePrompts prompts_;
  FakeProcesses processes_;
  std::unique_ptr<fWizard> wizard_;
};

// Every move hides the window and shows it again; only the type page of a
// pull-down and the hot-key page finish; Back stores nothing.
TEST_F(WizardTest, PagesTitlesAndTheNextButton) {
  const struct {
    const wchar_t* action;
    const char* keys;
    int page;
    const wchar_t *title, *next;
    Kind kind;
    const wchar_t* stored;  // the item's command afterwards; null: no item
    int response;
  } cases[] = {
      {L"", "", 0, L"Name", L"&Next >", Kind::PullDown, L"", 0},
      {L"", "n", 1, L"Type", L"&Finish", Kind::PullDown, L"", 0},  // no command yet: a pull-down
      {L"", "nb", 0, L"Name", L"&Next >", Kind::PullDown, L"", 0},
      {L"", "nbn", 1, L"Type", L"&Finish", Kind::PullDown, L"", 0},
      {L"", "nn", 1, L"Type", L"&Finish", Kind::PullDown, L"", 1},
      {L"", "nc", 1, L"Type", L"&Next >", Kind::Command, L"", 0},
      {L"", "ncn", 2, L"Narrix command", L"&Next >", Kind::Command, L"", 0},
      {L"", "ncnn", 3, L"Hot Key", L"&Finish", Kind::Command, L"SayLine", 0},  // the first command
      {L"", "ncnnn", 3, L"Hot Key", L"&Finish", Kind::Command, L"SayLine", 1},
      {L"", "ncnx", 2, L"Narrix command", L"&Next >", Kind::Command, nullptr, 2},
      {L"SayLine", "nnmb", 1, L"Type", L"&Next >", Kind::Command, L"SayLine", 0},
      {L"SayLine", "nnmn", 3, L"Hot Key", L"&Finish", Kind::Command, L"SayTime", 0},
      {L"Mine", "nnmb", 1, L"Type", L"&Next >", Kind::Command, L"Mine", 0},
      {L"Mine", "nnmn", 3, L"Hot Key", L"&Finish", Kind::Command, L"Other", 0},  // typed: trimmed
      {L"shell(a.vbs)", "nnmb", 1, L"Type", L"&Next >", Kind::Script, L"shell(a.vbs)", 0},
      {L"SHELL(a.vbs)", "nn", 2, L"Command", L"&Next >", Kind::Script, L"SHELL(a.vbs)", 0},
      {L"SHELL(a.vbs)", "nnmn", 3, L"Hot Key", L"&Finish", Kind::Script, L"shell(b.vbs)", 0},
  };
  const WizardPane panes[] = {WizardPane::Name, WizardPane::Type, WizardPane::Command, WizardPane::HotKey};
  for (const auto& c : cases) {
    Restart(c.action);
    Go(c.keys);
    const std::string keys = c.keys;
    EXPECT_EQ(wizard_->Page(), c.page) << keys;
    EXPECT_EQ(view_.title, L"New item - " + std::wstring(c.title)) << keys;
    EXPECT_EQ(view_.texts[WizardControl::Next], c.next) << keys;
    EXPECT_EQ(view_.enabled[WizardControl::Back], c.page > 0) << keys;
    EXPECT_EQ(wizard_->Kind(), c.kind) << keys;
    EXPECT_EQ(view_.pane, c.page == 2 && c.kind == Kind::Script ? WizardPane::Script : panes[c.page]) << keys;
    EXPECT_EQ(wizard_->MenuItem() ? wizard_->MenuItem()->Action : L"-", c.stored ? c.stored : L"-") << keys;
    EXPECT_EQ(wizard_->Response(), c.response) << keys;
    EXPECT_EQ(view_.closed, c.response != 0) << keys;
    const auto moves = std::count(keys.begin(), keys.end(), 'n') + std::count(keys.begin(), keys.end(), 'b');
    EXPECT_EQ(view_.hides, moves - (c.response == 1)) << keys;
  }
  Restart(L"");
  Go("b");  // there is nothing before the name page
  EXPECT_EQ(wizard_->Page(), 0);
  EXPECT_EQ(view_.hides, 0);
}

TEST_F(WizardTest, TheCommandPageShowsTheListOrTheText) {
  Go("ncn");
  ASSERT_EQ(view_.commands.size(), 3u);
  EXPECT_EQ(view_.commands[2].first, L"Beep");  // a command without comment shows its name
  EXPECT_EQ(view_.selected, 0);                 // a new item starts on the first command
  view_.selected = 1;
  Go("nb");  // back shows the stored command again
  EXPECT_EQ(view_.selected, 1);
  EXPECT_EQ(view_.topLine, 1);
  Restart(L"MyOwnCommand");
  Go("nn");
  EXPECT_FALSE(view_.list);
  EXPECT_EQ(view_.commandText, L"MyOwnCommand");
  Restart(L"SHELL(notepad.exe x.txt)");
  Go("nn");
  EXPECT_EQ(view_.scriptPath, L"notepad.exe x.txt");
}

// The command line only suggests a script: once the user has stored a
// command of their own, going back shows that command, not the suggestion.
TEST_F(WizardTest, TheCommandLinePathIsOfferedUntilTheUserChooses) {
  session_.gCmdScriptPath = L"$(appsetdir)\\hello.vbs";
  Restart(L"");
  Go("nbn");  // nothing stored yet: still offered
  EXPECT_EQ(view_.kind, Kind::Script);
  Go("n");
  EXPECT_EQ(view_.scriptPath, L"$(appsetdir)\\hello.vbs");
  EXPECT_TRUE(view_.enabled[WizardControl::Open]);
  view_.scriptPath = L"$(appsetdir)\\other.vbs";
  Go("nb");
  EXPECT_EQ(Out().Action, L"shell($(appsetdir)\\other.vbs)");
  EXPECT_EQ(view_.scriptPath, L"$(appsetdir)\\other.vbs");
  Go("b");
  EXPECT_EQ(view_.kind, Kind::Script);
  Go("cn");
  EXPECT_EQ(view_.pane, WizardPane::Command);
  view_.commandText = L"SayTime";  // the stored script is shown as text to edit
  Go("nbb");
  EXPECT_EQ(view_.kind, Kind::Command);
  Go("n");
  EXPECT_TRUE(view_.list);
  EXPECT_EQ(view_.selected, 1);
  Go("n");
  EXPECT_EQ(Out().Action, L"SayTime");
  wizard_->Form_Unload();
  EXPECT_EQ(session_.gCmdScriptPath, L"");  // offered to one wizard only
}

// Browse starts in the application's folder and writes the path with the
// folder's short name; the focus goes into the field, so that the new path is
// read. Edit opens a script in Notepad and starts anything else.
TEST_F(WizardTest, BrowseEditAndTips) {
  const struct {
    const wchar_t *app, *chosen, *folder, *path, *edited;
  } cases[] = {
      {L"notepad", L"C:\\Narrix\\Set\\notepad\\Mail.VBS", L"C:\\Narrix\\Set\\notepad",
       L"wscript.exe \"$(appsetdir)\\Mail.VBS\"", L"notepad.exe C:\\Narrix\\Set\\notepad\\mail.vbs"},
      {L"notepad", L"C:\\Narrix\\tools\\calc.exe", L"C:\\Narrix\\Set\\notepad", L"$(velkordir)\\tools\\calc.exe",
       L"C:\\Narrix\\tools\\calc.exe"},
      {L"(Narrix)", nullptr, L"C:\\Narrix\\Set", L"$(velkordir)\\tools\\calc.exe", L"C:\\Narrix\\tools\\calc.exe"},
  };
  for (const auto& c : cases) {
    session_.gAppName = c.app;
    prompts_.chosen = c.chosen ? std::optional<std::wstring>(c.chosen) : std::nullopt;
    view_.selection = {WizardField::ScriptPath, 0, 0};
    wizard_->cmdScriptBrowse_Click();
    EXPECT_EQ(prompts_.folder, c.folder);
    EXPECT_EQ(view_.scriptPath, c.path);
    EXPECT_EQ(view_.selection.field, WizardField::ScriptPath);
    EXPECT_EQ(view_.selection.length, c.chosen ? view_.scriptPath.size() : 0u);
    processes_.started.clear();
    wizard_->cmdScriptEdit_Click();
    EXPECT_EQ(processes_.started, std::vector<std::wstring>{c.edited});
  }
  EXPECT_EQ(prompts_.filter,
            L"Script Files (*.vbs)|*.vbs|Applications (*.exe, *.com, *.bat)|*.exe;*.bat;*.com|All|*.*");

  // Tips: the file is made once and never overwritten; the Form button of
  // the script before goes, as with any new path.
  registry_.WriteString(kProductKey, L"Path", dir_.Path());
  info_.Inicialize(nullptr);
  session_.gAppName = L"app";
  std::filesystem::create_directories(dir_.Fs() / "set" / "app");
  view_.shown[WizardControl::Form] = true;
  view_.enabled[WizardControl::Open] = false;
  view_.selections = 0;
  wizard_->cmdTips_Click();
  EXPECT_EQ(view_.scriptPath, L"notepad.exe $(velkordir)\\set\\app\\tips.txt");
  EXPECT_EQ(dir_.Read(L"set\\app\\tips.txt"), "");
  EXPECT_FALSE(view_.shown[WizardControl::Form]);
  EXPECT_TRUE(view_.enabled[WizardControl::Open]);
  EXPECT_EQ(view_.selections, 1);
  dir_.Write(L"set\\app\\tips.txt", "my tips");
  wizard_->cmdTips_Click();
  EXPECT_EQ(dir_.Read(L"set\\app\\tips.txt"), "my tips");
}

TEST_F(WizardTest, HotKeyCapture) {
  Restart(L"", 0x40000005);
  Go("ncnn");
  EXPECT_TRUE(view_.checked[WizardControl::Braille]);
  EXPECT_FALSE(view_.enabled[WizardControl::Discard]);
  // Key releases (`up`) change nothing; `captured` then means kept from the
  // window, whose default handling would start menu mode on an Alt release.
  const struct {
    int key, shift;
    std::set<int> held;
    bool captured;
    uint32_t code;
    const wchar_t* text;
    bool up = false;
  } presses[] = {
      {16, 1, {}, false, 0x40000005, L""},  // modifiers alone change nothing
      {16, 0, {}, false, 0x40000005, L"", true},
      {45, 0, {45}, false, 0x40000005, L""},
      {9, 0, {}, false, 0x40000005, L""},  // Tab and Shift+Tab leave the field
      {9, 1, {}, false, 0x40000005, L""},
      {67, 2, {}, true, 0x00020043, L"C+C"},
      {74, 0, {45}, true, 0x2000004A, L"Narrix+J"},
      {116, 5, {145}, true, 0x20050074, L"Narrix+A+S+F5"},
      {13, 0, {}, true, 0x0000000D, L"Enter"},  // not Finish
      {27, 0, {}, true, 0x0000001B, L"Esc"},    // not Cancel
      {18, 4, {}, false, 0x0000001B, L""},      // Alt+J, Alt released first
      {74, 4, {}, true, 0x0004004A, L"A+J"},    // not an access key
      {18, 0, {}, true, 0x0004004A, L"", true},
      {74, 0, {}, false, 0x0004004A, L"", true},
      {115, 4, {}, true, 0x00040073, L"A+key(115)"},  // not Close
      {115, 4, {}, true, 0x00040073, L"", true},
      {18, 0, {}, true, 0x00040073, L"", true},
      {121, 0, {}, true, 0x00000079, L"F10"},  // not the menu key
      {121, 0, {}, true, 0x00000079, L"", true},
      {122, 4, {}, true, 0x0004007A, L"A+key(122)"},
  };
  for (const auto& p : presses) {
    view_.keysDown = p.held;
    EXPECT_EQ(p.up ? wizard_->hk_KeyUp(p.key, p.shift) : wizard_->hk_KeyDown(p.key, p.shift), p.captured) << p.key;
    EXPECT_EQ(static_cast<uint32_t>(Out().HotKey), p.code) << p.key;
    if (p.captured && !p.up) {
      EXPECT_EQ(view_.hotKeyText, p.text);
      EXPECT_FALSE(view_.keepFocus);
      EXPECT_FALSE(view_.checked[WizardControl::Braille]);
      EXPECT_TRUE(view_.enabled[WizardControl::Discard]);
    }
  }
  EXPECT_FALSE(view_.closed);

  // Braille switches a code between key and button; a status button's code
  // unchecked is a key the field can name, not a code it shows as nothing.
  const struct {
    uint32_t code;
    bool braille;
    uint32_t result;
    const wchar_t* text;
  } switches[] = {
      {0x00000005, true, 0x40000005, L"[H1+H4]"},
      {0x4004007A, false, 0x0004007A, L"A+key(122)"},
      {0xC0020003, false, 0x00020003, L"C+key(3)"},
      {0xC0040003, false, 0x00040003, L"A+key(3)"},
  };
  for (const auto& c : switches) {
    wizard_->SetMenuItem({L"Item", L"", static_cast<int32_t>(c.code), true});
    wizard_->chkBraille_Click(c.braille);
    EXPECT_EQ(static_cast<uint32_t>(Out().HotKey), c.result) << c.code;
    EXPECT_EQ(view_.hotKeyText, c.text) << c.code;
    EXPECT_EQ(view_.enabled[WizardControl::Discard], !c.braille);
  }
  wizard_->cmdHotKeyDel_Click();
  wizard_->cmdNext_Click();
  EXPECT_EQ(Out().HotKey, 0);
  EXPECT_FALSE(Out().Discard);
}

TEST_F(WizardTest, DisplayButtonsAreCapturedInTheField) {
  OpeningBraille braille;
  wizard_->SetBrailleOpener(&braille);
  Go("ncnn");
  view_.hkFocus = false;
  wizard_->chkBrailleHook_Click(true);
  EXPECT_EQ(braille.made, 1);
  EXPECT_TRUE(view_.hkFocus);  // ready for the first button
  IKoralDisplayEvents& display = *braille.factory.koral.events;
  const struct {
    int kind;  // 0 normal, 1 cursor status, 2 auxiliary status
    int32_t value;
    uint32_t code;
  } presses[] = {
      {0, 5, 0x40000005},          {1, 3, 0xC0020003},  {2, 3, 0xC0040003},
      {0, 0x7FFFFFFF, 0x7FFFFFFF}, {1, -1, 0xC002FFFF}, {2, 0x12345, 0xC0042345},
  };
  for (const auto& p : presses) {
    view_.checked[WizardControl::Braille] = false;
    view_.enabled[WizardControl::Discard] = true;
    if (p.kind == 0) display.koral_BrailleBtnNormal(7, p.value, 1);
    if (p.kind == 1) display.koral_BrailleBtnCusorStatus(7, p.value);
    if (p.kind == 2) display.koral_BrailleBtnAuxStatus(7, p.value);
    EXPECT_EQ(static_cast<uint32_t>(Out().HotKey), p.code) << p.value;
    EXPECT_TRUE(view_.checked[WizardControl::Braille]);
    EXPECT_FALSE(view_.enabled[WizardControl::Discard]);
    EXPECT_FALSE(view_.keepFocus);
  }
  display.koral_BrailleBtnNormal(7, 5, 1);
  EXPECT_EQ(view_.hotKeyText, L"[H1+H4]");  // the names of buttons 0 and 2 without a key map

  // With the focus on a button the display only reads the wizard.
  view_.hkFocus = false;
  display.koral_BrailleBtnNormal(7, 6, 1);
  display.koral_BrailleBtnCusorStatus(7, 9);
  EXPECT_EQ(static_cast<uint32_t>(Out().HotKey), 0x40000005u);

  // Unchecked: the display is let go and the captured button stays.
  view_.hkFocus = true;
  wizard_->chkBrailleHook_Click(false);
  EXPECT_FALSE(wizard_->BrailleAttached());
  EXPECT_EQ(braille.factory.koral.log.back(), L"Shutdown");
  EXPECT_EQ(static_cast<uint32_t>(Out().HotKey), 0x40000005u);

  // The command page and closing let it go too.
  wizard_->chkBrailleHook_Click(true);
  view_.checked[WizardControl::BrailleHook] = true;
  Go("b");
  EXPECT_FALSE(wizard_->BrailleAttached());
  EXPECT_FALSE(view_.checked[WizardControl::BrailleHook]);
  Go("n");
  wizard_->chkBrailleHook_Click(true);
  EXPECT_TRUE(wizard_->BrailleAttached());
  wizard_->Form_Unload();
  EXPECT_FALSE(wizard_->BrailleAttached());
  EXPECT_EQ(braille.made, 3);
  EXPECT_EQ(braille.factory.koral.log.back(), L"Shutdown");
}

TEST_F(WizardTest, NamesOtherItemsWithTheSameKey) {
  auto root = cMenuItem::New();
  for (auto [caption, key] : {std::pair{L"Open", 0x00020043}, {L"Copy", 0x00020043}, {L"Other", 0x00020044}}) {
    auto item = root->SubItems.Add(1, root.get(), cMenuItem::New());
    item->SetFields({caption, L"", key});
  }
  Restart(L"", 0x00020043);
  wizard_->SetMenu(root.get(), root->SubItems.item(1).get());  // editing "Open": its own key does not count
  Go("ncnn");
  EXPECT_EQ(view_.usedBy, L"Copy");
  wizard_->hk_KeyDown(68, 2);
  EXPECT_EQ(view_.usedBy, L"Other");
  wizard_->hk_KeyDown(69, 2);
  EXPECT_EQ(view_.usedBy, L"");
}

// The menu file holds the system's single-byte code page: a caption, script
// path or typed command with a character it lacks is refused on Next, with
// the character named and selected in its field, and nothing is stored.
TEST_F(WizardTest, TextTheCodePageCannotHoldIsRefused) {
  constexpr size_t kAccepted = std::wstring::npos;
  const struct {
    unsigned codePage;
    WizardField field;
    const wchar_t* text;
    size_t at;
    const wchar_t* named;
  } cases[] = {
      {1252, WizardField::Name, L"Čtení", 0, L"\"Č\" (U+010C)"},
      {1250, WizardField::Name, L"Čtení", kAccepted, nullptr},
      {1250, WizardField::Name, L"Año €", 1, L"\"ñ\" (U+00F1)"},
      {1252, WizardField::Name, L"Año €", kAccepted, nullptr},
      {1252, WizardField::ScriptPath, L"wscript.exe \"$(appsetdir)\\čti.vbs\"", 26, L"\"č\" (U+010D)"},
      {1250, WizardField::ScriptPath, L"wscript.exe \"$(appsetdir)\\čti.vbs\"", kAccepted, nullptr},
      {1252, WizardField::Command, L" Přečti", 2, L"\"ř\" (U+0159)"},
      {1250, WizardField::Command, L"Say \U0001F600", 4, L"\"\U0001F600\" (U+1F600)"},
  };
  for (const auto& c : cases) {
    BuiltinCodePage codePage(c.codePage);
    const wchar_t* action = c.field == WizardField::Name      ? L""
                            : c.field == WizardField::Command ? L"Mine"
                                                              : L"shell(a)";
    Restart(action, 0, &codePage);
    wizard_->txtName_Change(c.field == WizardField::Name ? c.text : L"Item");
    if (c.field != WizardField::Name) Go("nn");
    view_.scriptPath = view_.commandText = c.text;
    const int page = wizard_->Page();
    prompts_.messages.clear();
    Go("n");
    EXPECT_EQ(wizard_->Page(), page + (c.at == kAccepted)) << c.text;
    EXPECT_EQ(prompts_.messages.size(), c.at == kAccepted ? 0u : 1u) << c.text;
    if (c.at == kAccepted) continue;
    EXPECT_EQ(Out().Action, action) << c.text;
    EXPECT_EQ(prompts_.messages[0], L"The character " + std::wstring(c.named) +
                                        L" cannot be stored in the menu file: the system's code page has no such "
                                        L"character. Remove it or write it another way.");
    EXPECT_EQ(view_.selections, 1);
    EXPECT_EQ(view_.selection.field, c.field) << c.text;
    EXPECT_EQ(view_.selection.start, c.at) << c.text;
    EXPECT_EQ(view_.selection.length, 1u) << c.text;
  }
}

// The Form button belongs to a script with a form file beside it and opens
// that file in the screen reader's form tool.
TEST_F(WizardTest, FormButtonFollowsTheFormFile) {
  registry_.WriteString(kProductKey, L"Path", dir_.Path());
  info_.Inicialize(nullptr);
  session_.gAppName = L"app";
  std::filesystem::create_directories(dir_.Fs() / "scripts");
  std::filesystem::create_directories(dir_.Fs() / "Set" / "app");
  dir_.Write(L"scripts\\mail.frm", "");
  dir_.Write(L"Set\\app\\hello.frm", "");
  const std::wstring tool = dir_.Path(L"scripts\\setscript.exe") + L" ";
  const struct {
    const wchar_t* path;
    const wchar_t* form;  // null: no button
  } cases[] = {
      {L"wscript.exe \"$(velkordir)\\scripts\\Mail.VBS\"", L"scripts\\mail.frm"},
      {L"$(appsetdir)\\hello.vbs", L"Set\\app\\hello.frm"},
      {L"wscript.exe \"$(velkordir)\\scripts\\none.vbs\"", nullptr},
      {L"$(velkordir)\\scripts\\mail.exe", nullptr},
  };
  for (const auto& c : cases) {
    processes_.started.clear();
    view_.scriptPath = c.path;
    wizard_->txtScriptPath_Change(c.path);
    EXPECT_EQ(view_.shown[WizardControl::Form], c.form != nullptr) << c.path;
    if (view_.shown[WizardControl::Form]) wizard_->cmdScriptForm_Click();
    EXPECT_EQ(processes_.started,
              c.form ? std::vector<std::wstring>{tool + dir_.Path(c.form)} : std::vector<std::wstring>{})
        << c.path;
  }

  // The command page of a stored script shows it too, and a form file that
  // has gone takes the button with it.
  Restart(L"shell(wscript.exe \"$(velkordir)\\scripts\\mail.vbs\")");
  Go("nn");
  EXPECT_TRUE(view_.shown[WizardControl::Form]);
  std::filesystem::remove(dir_.Fs() / "scripts" / "mail.frm");
  wizard_->txtScriptPath_Change(view_.scriptPath);
  EXPECT_FALSE(view_.shown[WizardControl::Form]);
}

}  // namespace
}  // namespace nx
