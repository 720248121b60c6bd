// The application list: the command line, the folder buttons and the
// help-page export, on a temporary installation.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <vector>

#include "applist/app_select.h"
#include "platform/code_page.h"
#include "platform/folders.h"
#include "platform/list_order.h"
#include "platform/text.h"
#include "startup/settings.h"
#include "temp_folder.h"

namespace nx {
namespace {

// A list that sorts itself ignoring case, as a sorted Windows list box does.
class FakeView : public IAppSelectView {
 public:
  std::vector<std::wstring> entries;
  int selected = -1, focusCalls = 0;

  void SetText(AppSelectText, const std::wstring&) override {}
  void ClearList() override { entries.clear(), selected = -1; }
  void AddListEntry(const std::wstring& text) override {
    entries.insert(std::upper_bound(entries.begin(), entries.end(), text, ListOrderLess), text);
  }
  int ListCount() const override { return static_cast<int>(entries.size()); }
  std::wstring ListEntry(int i) const override { return entries.at(static_cast<size_t>(i)); }
  int SelectedIndex() const override { return selected; }
  void SelectEntry(int i) override { selected = i; }
  void EnableOk(bool) override {}
  void FocusList() override { ++focusCalls; }
  void EndProgram() override {}
};

// Answers from a script (OK and "" when it runs out) and remembers what was
// said: every message with its style, and every input box, in order.
class Answers : public IPrompts {
 public:
  std::deque<int> buttons;
  std::deque<std::wstring> inputs;
  std::vector<std::wstring> said;
  int Message(const std::wstring& text, unsigned style, const std::wstring&) override {
    said.push_back(text + L" [" + std::to_wstring(style) + L"]");
    const int button = buttons.empty() ? mb::kIdOk : buttons.front();
    if (!buttons.empty()) buttons.pop_front();
    return button;
  }
  std::wstring InputBox(const std::wstring& label, const std::wstring& t, const std::wstring& value) override {
    said.push_back(t + L": " + label + L" " + value);
    const std::wstring input = inputs.empty() ? L"" : inputs.front();
    if (!inputs.empty()) inputs.pop_front();
    return input;
  }
};

struct EditorSpy : IMenuEditorEntry {
  std::vector<std::wstring> opened;  // "*" after the general menu
  void EditMenu(const std::wstring&, const std::wstring& name, bool general) override {
    opened.push_back(name + (general ? L"*" : L""));
  }
  std::wstring ListDefs(const std::wstring&, const std::wstring& name, bool general) override {
    return L"<H3>" + name + (general ? L"*" : L"") + L"</H3>";
  }
};

const std::wstring kExclamation = L" [" + std::to_wstring(mb::kOkOnly | mb::kIconExclamation) + L"]";

// Menus for excel, notepad and Word, and a file that is no application.
class AppSelectTest : public ::testing::Test {
 protected:
  AppSelectTest() {
    CreateFolder(dir_.Path(L"Set"));
    for (const wchar_t* name : {L"excel", L"notepad", L"Word"}) {
      CreateFolder(dir_.Path(L"Set\\") + name);
      dir_.Write(std::wstring(L"Set\\") + name + L"\\Command.mnu", "menu of " + WideToUtf8(name));
    }
    dir_.Write(L"Set\\setting.ini", "[Braille]\r\n");
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
    app_.Form_Load(nullptr);
  }
  // "[the selected entry]", "> the menu opened", then "| what was said",
  // since the last look.
  std::wstring State() {
    std::wstring out = L"[" + (view_.selected < 0 ? L"" : view_.ListEntry(view_.selected)) + L"]";
    for (const auto& name : editor_.opened) out += L" > " + name;
    for (const auto& said : prompts_.said) out += L" | " + said;
    editor_.opened.clear(), prompts_.said.clear();
    return out;
  }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  FakeView view_;
  Answers prompts_;
  EditorSpy editor_;
  FileSystemFolderOps folders_;
  BuiltinCodePage codePage_{1250};
  fAppSelect app_{view_, prompts_, session_, info_, &editor_, AppListPorts{&folders_, nullptr, &codePage_}};
};

// An existing menu is opened whatever the case; an unknown name is offered
// a new menu, if it can be a folder in Set under the rules of a rename. The
// answer to every question is No.
TEST_F(AppSelectTest, TheCommandLineOpensOrOffersAMenu) {
  const struct {
    const wchar_t* args;
    std::wstring state;  // then the script and the display taken from the arguments
  } cases[] = {
      {L"WORD*C:\\s\\a.vbs/Focus 40", L"[Word] > Word C:\\s\\a.vbs/Focus 40"},
      {L"(narrix)", L"[(Narrix)] > (Narrix)* /"},
      {L"*C:\\a.vbs/Focus 40", L"[(Narrix)] C:\\a.vbs/Focus 40"},  // the script waits for the first menu opened
      {L"calc",
       L"[(Narrix)] | Create a new menu for \"calc\"? [" + std::to_wstring(mb::kYesNo | mb::kIconQuestion) + L"] /"},
      {L"setting.ini", L"[(Narrix)] | The settings folder holds a file named \"setting.ini\", so no menu folder can " +
                           std::wstring(L"have that name. No menu was created.") + kExclamation + L" /"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(WideToUtf8(c.args));
    session_ = EditSession{};
    prompts_.buttons = {mb::kIdNo};
    app_.Form_Load(nullptr);
    app_.SelectAppByCommand(c.args);
    EXPECT_EQ(State() + L" " + session_.gCmdScriptPath + L"/" + session_.gCmdDisplayName, c.state);
  }
  EXPECT_EQ(ListSubfolders(dir_.Path(L"Set"))->size(), 3u);  // none made
}

// Rename: a refused name is told, and offered again as typed (here the box
// is then cancelled); afterwards the same position is selected, the focus in
// the list. Remove asks with No as the default: Enter keeps the menu; Yes
// removes the folder with all it holds. The general menu is neither renamed
// nor removed.
TEST_F(AppSelectTest, TheFolderButtons) {
  const struct {
    const wchar_t *answer, *message;  // message: "" for none
  } cases[] = {
      {L"", L""},  // cancelled
      {L"notepad", L""},
      {L"   ", L"The new name is empty."},
      {L"a|b", L"The name \"a|b\" cannot be a folder name: it must not contain \\ / : * ? \" < > |."},
      {L"x.", L"The name \"x.\" cannot be a folder name: it must not be \".\" or \"..\" or end in a dot or a blank."},
      {L"nul.txt", L"The name \"nul.txt\" is reserved by Windows for a device."},
      {L"Word", L"A menu named \"Word\" already exists."},
      {L"(narrix)", L"A menu named \"(narrix)\" already exists."},
  };
  const std::wstring box = L" | P\u0159ejmenovat: &New name: ";
  for (const auto& c : cases) {
    view_.selected = 2;  // notepad
    prompts_.inputs = {c.answer};
    app_.cmdRename_Click();
    EXPECT_EQ(State(), L"[notepad]" + box + L"notepad" +
                           (*c.message ? L" | " + std::wstring(c.message) + L" Nothing was renamed." + kExclamation +
                                             box + c.answer
                                       : L""));
  }
  prompts_.inputs = {L"Editor"};
  view_.focusCalls = 0;
  app_.cmdRename_Click();
  EXPECT_EQ(State(), L"[excel]" + box + L"notepad");  // the same position: after Editor
  EXPECT_GT(view_.focusCalls, 0);
  EXPECT_EQ(dir_.Read(L"Set\\Editor\\Command.mnu"), "menu of notepad");

  prompts_.buttons = {mb::kIdNo, mb::kIdYes};
  app_.cmdRemoveApp_Click();
  EXPECT_TRUE(app_.Form_KeyDown(46));  // the Delete key
  view_.selected = 0;                  // (Narrix)
  app_.cmdRename_Click();
  app_.cmdRemoveApp_Click();
  const std::wstring question = L" | Smazat nab\u00eddku excel ? [" +
                                std::to_wstring(mb::kYesNo | mb::kIconQuestion | mb::kDefaultButton2) + L"]",
                     refused = L" | The general menu (Narrix) cannot be renamed or removed." + kExclamation;
  EXPECT_EQ(State(), L"[(Narrix)]" + question + question + refused + refused);
  EXPECT_EQ(view_.entries, (std::vector<std::wstring>{L"(Narrix)", L"Editor", L"Word"}));  // read again from Set
}

// The export puts every menu, in the list's order, between the marker lines
// (whole lines, also with other text on them; without an end marker, in
// place of all after the start) with CR LF line breaks, and says where.
// Without the page nothing is written or said.
TEST_F(AppSelectTest, ExportWritesEveryMenuInListOrder) {
  const std::wstring page = dir_.Path(L"help\\narrix\\hotkey.htm");
  app_.cmdExport_Click();
  EXPECT_EQ(State(), L"[(Narrix)]");
  EXPECT_FALSE(PathExists(page));
  CreateFolder(dir_.Path(L"help"));
  CreateFolder(dir_.Path(L"help\\narrix"));
  const std::string menus = "\r\n<H3>(Narrix)*</H3><H3>excel</H3><H3>notepad</H3><H3>Word</H3>\r\n";
  const struct {
    const char* page;
    std::string updated;
  } cases[] = {
      {"<p>Keys: <!-- app hotkey start --> x\nold\n<!-- app hotkey end --></p>",
       "<p>Keys: <!-- app hotkey start --> x" + menus + "<!-- app hotkey end --></p>\r\n"},
      {"a\r\n<!-- app hotkey start -->\r\nold 1\r\nold 2\r\nb\r\n", "a\r\n<!-- app hotkey start -->" + menus},
  };
  for (const auto& c : cases) {
    dir_.Write(L"help\\narrix\\hotkey.htm", c.page);
    app_.cmdExport_Click();
    EXPECT_EQ(dir_.Read(L"help\\narrix\\hotkey.htm"), c.updated) << c.page;
    EXPECT_EQ(State(), L"[(Narrix)] | N\u00e1pov\u011bda aktualizov\u00e1na v souboru " + page + L" [" +
                           std::to_wstring(mb::kOkOnly | mb::kIconInformation) + L"]");
  }
}

}  // namespace
}  // namespace nx
