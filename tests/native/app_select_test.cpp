// The application list: choosing a menu, the command line, the folder
// buttons and the help-page export, on a temporary installation.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <vector>

#include "applist/app_select.h"
#include "applist/folder_name.h"
#include "applist/help_page.h"
#include "platform/code_page.h"
#include "platform/folders.h"
#include "platform/list_order.h"
#include "platform/string_table.h"
#include "platform/text.h"
#include "startup/settings.h"
#include "temp_folder.h"

namespace nx {
namespace {

// A list that sorts itself ignoring case, as a sorted Windows list box does.
class FakeView : public IAppSelectView {
 public:
  std::map<AppSelectText, std::wstring> texts;
  std::vector<std::wstring> entries;
  int selected = -1, endCalls = 0, focusCalls = 0;
  bool okEnabled = false;

  void SetText(AppSelectText what, const std::wstring& text) override { texts[what] = text; }
  void ClearList() override { entries.clear(), selected = -1; }
  void AddListEntry(const std::wstring& text) override {
    entries.insert(std::upper_bound(entries.begin(), entries.end(), text, ListOrderLess), text);
  }
  int ListCount() const override { return static_cast<int>(entries.size()); }
  std::wstring ListEntry(int i) const override { return entries.at(static_cast<size_t>(i)); }
  int SelectedIndex() const override { return selected; }
  void SelectEntry(int i) override { selected = i; }
  void EnableOk(bool enabled) override { okEnabled = enabled; }
  void FocusList() override { ++focusCalls; }
  void EndProgram() override { ++endCalls; }
};

template <typename T>
T Take(std::deque<T>& queue, T otherwise) {
  if (queue.empty()) return otherwise;
  T front = queue.front();
  queue.pop_front();
  return front;
}

// Answers from a script (OK and "" when it runs out) and remembers what was said.
class Answers : public IPrompts {
 public:
  std::deque<int> buttons;
  std::deque<std::wstring> inputs;
  std::vector<std::wstring> said;  // every message with its style, and every input box, in order
  std::wstring title;              // of the last message
  int Message(const std::wstring& text, unsigned style, const std::wstring& t) override {
    said.push_back(text + L" [" + std::to_wstring(style) + L"]");
    title = t;
    return Take(buttons, mb::kIdOk);
  }
  std::wstring InputBox(const std::wstring& label, const std::wstring& t, const std::wstring& value) override {
    said.push_back(t + L": " + label + L" " + value);
    return Take(inputs, std::wstring());
  }
};

struct EditorSpy : IMenuEditorEntry {
  std::vector<std::wstring> opened;  // "dirSet|name", "*" after the general menu
  void EditMenu(const std::wstring& dirSet, const std::wstring& name, bool general) override {
    opened.push_back(dirSet + L"|" + name + (general ? L"*" : L""));
  }
  std::wstring ListDefs(const std::wstring&, const std::wstring& name, bool general) override {
    return L"<H3>" + name + (general ? L"*" : L"") + L"</H3>";
  }
};

struct RunningApps : IRunningApps {
  std::map<std::wstring, std::wstring> versions;  // upper-case name -> version
  std::wstring GetRunningAppVersion(const std::wstring& name) override {
    auto it = versions.find(UpperCase(name));
    return it == versions.end() ? L"" : it->second;
  }
};

const std::wstring kCritical = L" [" + std::to_wstring(mb::kOkOnly | mb::kIconCritical) + L"]";
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
  std::vector<std::wstring> Folders() const { return *ListSubfolders(dir_.Path(L"Set")); }
  void Select(const std::wstring& name) {
    view_.selected =
        static_cast<int>(std::find(view_.entries.begin(), view_.entries.end(), name) - view_.entries.begin());
  }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  FakeView view_;
  Answers prompts_;
  EditorSpy editor_;
  FileSystemFolderOps folders_;
  RunningApps apps_;
  BuiltinCodePage codePage_{1250};
  fAppSelect app_{view_, prompts_, session_, info_, &editor_, AppListPorts{&folders_, &apps_, &codePage_}};
};

TEST_F(AppSelectTest, OkOpensTheSelectedMenuAndCancelEnds) {
  EXPECT_EQ(view_.texts[AppSelectText::Window], L"Menu modification");
  EXPECT_EQ(view_.texts[AppSelectText::ListLabel], L"&Menu list");
  EXPECT_EQ(view_.texts[AppSelectText::Ok], L"Edit...");
  EXPECT_EQ(view_.texts[AppSelectText::Cancel], L"Cancel");
  EXPECT_EQ(view_.entries, (std::vector<std::wstring>{L"(Narrix)", L"excel", L"notepad", L"Word"}));
  EXPECT_EQ(view_.selected, 0);
  EXPECT_TRUE(view_.okEnabled);
  app_.cmdOK_Click();
  view_.SelectEntry(3);
  app_.lstApplication_DblClick();
  EXPECT_EQ(editor_.opened,
            (std::vector<std::wstring>{dir_.Path(L"Set") + L"|(Narrix)*", dir_.Path(L"Set") + L"|Word"}));
  EXPECT_EQ(view_.focusCalls, 2);  // the list has the focus again after each
  view_.SelectEntry(-1);
  app_.lstApplication_Click();
  EXPECT_FALSE(view_.okEnabled);
  app_.cmdOK_Click();  // OK needs a selection
  EXPECT_EQ(editor_.opened.size(), 2u);
  app_.cmdCANCEL_Click();
  EXPECT_EQ(view_.endCalls, 1);
  EXPECT_TRUE(app_.Ended());
  EXPECT_TRUE(prompts_.said.empty());
}

// An existing menu is opened whatever the case; an unknown name is offered
// a new menu, if it can be a folder in Set under the rules of a rename.
TEST_F(AppSelectTest, TheCommandLineOpensOrOffersAMenu) {
  const std::wstring question = L" [" + std::to_wstring(mb::kYesNo | mb::kIconQuestion) + L"]";
  const std::wstring folder = L" cannot be a folder name: it must not ";
  const struct {
    const wchar_t* args;
    int answer;
    const wchar_t *opened, *script, *display;  // opened: null for none
    std::wstring said = L"";
  } cases[] = {
      {L"WORD", 0, L"Word", L"", L""},
      {L"excel*C:\\s\\a.vbs/Focus 40", 0, L"excel", L"C:\\s\\a.vbs", L"Focus 40"},
      {L"(narrix)", 0, L"(Narrix)", L"", L""},
      {L"/Focus 40", 0, nullptr, L"", L"Focus 40"},
      {L"*C:\\a.vbs", 0, nullptr, L"C:\\a.vbs", L""},  // kept for the first menu opened
      {L"", 0, nullptr, L"", L""},
      {L"calc", mb::kIdNo, nullptr, L"", L"", L"Create a new menu for \"calc\"?" + question},
      {L"calc", mb::kIdYes, L"calc", L"", L"", L"Create a new menu for \"calc\"?" + question},
      {L"..\\outside", 0, nullptr, L"", L"",
       L"The name \"..\\outside\"" + folder + L"contain \\ / : * ? \" < > |. No menu was created." + kExclamation},
      {L"..", 0, nullptr, L"", L"",
       L"The name \"..\"" + folder + L"be \".\" or \"..\" or end in a dot or a blank. No menu was created." +
           kExclamation},
      {L"con*a.vbs", 0, nullptr, L"a.vbs", L"",
       L"The name \"con\" is reserved by Windows for a device. No menu was created." + kExclamation},
      {L"setting.ini", 0, nullptr, L"", L"",
       L"The settings folder holds a file named \"setting.ini\", so no menu folder can have that name. No menu was "
       L"created." +
           kExclamation},
  };
  for (const auto& c : cases) {
    session_.gCmdScriptPath.clear();
    session_.gCmdDisplayName.clear();
    editor_.opened.clear();
    prompts_.said.clear();
    prompts_.buttons = {c.answer};
    app_.Form_Load(nullptr);
    app_.SelectAppByCommand(c.args);
    const std::string args = WideToUtf8(c.args);
    EXPECT_EQ(prompts_.said, c.said.empty() ? std::vector<std::wstring>{} : std::vector<std::wstring>{c.said}) << args;
    EXPECT_EQ(editor_.opened, c.opened ? std::vector<std::wstring>{dir_.Path(L"Set") + L"|" + c.opened +
                                                                   (c.opened[0] == L'(' ? L"*" : L"")}
                                       : std::vector<std::wstring>{})
        << args;
    EXPECT_EQ(view_.ListEntry(view_.selected), c.opened ? c.opened : L"(Narrix)") << args;
    EXPECT_EQ(session_.gCmdScriptPath, c.script) << args;
    EXPECT_EQ(session_.gCmdDisplayName, c.display) << args;
  }
  EXPECT_EQ(prompts_.title, L"Narrix - Screen Reader");
  EXPECT_EQ(*ListSubfolders(dir_.Path()), std::vector<std::wstring>{L"Set"});
  EXPECT_EQ(Folders().size(), 4u);
}

TEST_F(AppSelectTest, MissingSettingsFolderEndsTheProgram) {
  registry_.WriteString(kProductKey, L"Path", dir_.Path(L"nowhere"));
  app_.Form_Load(nullptr);
  EXPECT_TRUE(app_.Ended());
  EXPECT_EQ(prompts_.said, std::vector<std::wstring>{L"Bad program instalation" + kCritical});
  EXPECT_EQ(view_.endCalls, 1);
  // Nothing happens after the end, and nothing was written.
  app_.SelectAppByCommand(L"calc");
  app_.cmdOK_Click();
  EXPECT_TRUE(editor_.opened.empty());
  EXPECT_EQ(prompts_.said.size(), 1u);
  EXPECT_FALSE(PathExists(dir_.Path(L"nowhere")));
}

// A refused name is told, and offered again as typed: here the box is then
// cancelled, or given `then`.
TEST_F(AppSelectTest, RenameTakesOnlyNamesAFolderCanHave) {
  const struct {
    const wchar_t *answer, *message;  // message: "" for none
    const wchar_t* renamedTo;         // null: nothing moved
    const wchar_t* then = L"";
  } cases[] = {
      {L"", L"", nullptr},  // cancelled
      {L"notepad", L"", nullptr},
      {L"   ", L"The new name is empty.", nullptr},
      {L"a/b", L"The name \"a/b\" cannot be a folder name: it must not contain \\ / : * ? \" < > |.", nullptr},
      {L"x.", L"The name \"x.\" cannot be a folder name: it must not be \".\" or \"..\" or end in a dot or a blank.",
       nullptr},
      {L"nul.txt", L"The name \"nul.txt\" is reserved by Windows for a device.", nullptr},
      {L"Word", L"A menu named \"Word\" already exists.", nullptr},
      {L"(narrix)", L"A menu named \"(narrix)\" already exists.", nullptr},
      {L"a|b", L"The name \"a|b\" cannot be a folder name: it must not contain \\ / : * ? \" < > |.", L"Editor",
       L"Editor"},
  };
  for (const auto& c : cases) {
    Select(L"notepad");
    prompts_.said.clear();
    prompts_.inputs = {c.answer, c.then};
    app_.cmdRename_Click();
    std::vector<std::wstring> said{L"P\u0159ejmenovat: &New name: notepad"};
    if (*c.message) {
      said.push_back(c.message + std::wstring(L" Nothing was renamed.") + kExclamation);
      said.push_back(L"P\u0159ejmenovat: &New name: " + std::wstring(c.answer));
    }
    EXPECT_EQ(prompts_.said, said) << WideToUtf8(c.answer);
    const std::wstring expected = c.renamedTo ? c.renamedTo : L"notepad";
    EXPECT_TRUE(PathExists(dir_.Path(L"Set\\") + expected + L"\\Command.mnu")) << WideToUtf8(c.answer);
  }
  // The position selected before is selected again, with the focus in the list.
  EXPECT_EQ(view_.entries, (std::vector<std::wstring>{L"(Narrix)", L"Editor", L"excel", L"Word"}));
  EXPECT_EQ(view_.selected, 2);
  EXPECT_GT(view_.focusCalls, 0);

  prompts_.said.clear();
  Select(L"(Narrix)");
  app_.cmdRename_Click();
  app_.cmdRemoveApp_Click();
  EXPECT_EQ(prompts_.said,
            std::vector<std::wstring>(2, L"The general menu (Narrix) cannot be renamed or removed." + kExclamation));
  EXPECT_EQ(Folders().size(), 3u);
}

TEST_F(AppSelectTest, RemoveAsksWithNoAsTheDefault) {
  Select(L"excel");
  prompts_.buttons = {mb::kIdNo, mb::kIdYes};
  app_.cmdRemoveApp_Click();
  EXPECT_EQ(Folders().size(), 3u);
  EXPECT_TRUE(app_.Form_KeyDown(46));  // the Delete key
  EXPECT_FALSE(app_.Form_KeyDown(45));
  const std::wstring question =
      L"Smazat nab\u00eddku excel ? [" + std::to_wstring(mb::kYesNo | mb::kIconQuestion | mb::kDefaultButton2) + L"]";
  EXPECT_EQ(prompts_.said, (std::vector<std::wstring>{question, question}));
  EXPECT_EQ(Folders(), (std::vector<std::wstring>{L"notepad", L"Word"}));
  EXPECT_EQ(view_.entries.size(), 3u);
}

TEST_F(AppSelectTest, AddVersionCopiesTheMenuOfTheRunningVersion) {
  apps_.versions[L"WORD"] = L"11.0.6568";
  Select(L"Word");
  app_.cmdAddVer_Click();
  EXPECT_EQ(dir_.Read(L"Set\\Word_ver.11.0.6568\\Command.mnu"), "menu of Word");
  EXPECT_EQ(view_.entries.back(), L"Word_ver.11.0.6568");
  EXPECT_EQ(view_.selected, 3);  // the same position: Word
  app_.cmdAddVer_Click();
  Select(L"excel");
  app_.cmdAddVer_Click();
  EXPECT_EQ(prompts_.said, (std::vector<std::wstring>{L"Slo\u017eka ji\u017e existuje." + kCritical,
                                                      L"Nelze prov\u00e9st." + kCritical}));
  EXPECT_EQ(Folders().size(), 4u);
}

TEST_F(AppSelectTest, ExportWritesEveryMenuInListOrder) {
  const std::wstring page = dir_.Path(L"help\\narrix\\hotkey.htm");
  app_.cmdExport_Click();  // no page: nothing written, nothing said
  EXPECT_FALSE(PathExists(page));
  EXPECT_TRUE(prompts_.said.empty());

  CreateFolder(dir_.Path(L"help"));
  CreateFolder(dir_.Path(L"help\\narrix"));
  dir_.Write(L"help\\narrix\\hotkey.htm", "<p>Keys:\n<!-- app hotkey start -->\nold\n<!-- app hotkey end --></p>\n");
  app_.cmdExport_Click();
  const std::string once = dir_.Read(L"help\\narrix\\hotkey.htm");
  EXPECT_EQ(once,
            "<p>Keys:\r\n<!-- app hotkey start -->\r\n<H3>(Narrix)*</H3><H3>excel</H3><H3>notepad</H3><H3>Word</H3>"
            "\r\n<!-- app hotkey end --></p>\r\n");
  EXPECT_EQ(prompts_.said,
            std::vector<std::wstring>{L"N\u00e1pov\u011bda aktualizov\u00e1na v souboru " + page + L" [" +
                                      std::to_wstring(mb::kOkOnly | mb::kIconInformation) + L"]"});
  app_.cmdExport_Click();
  EXPECT_EQ(dir_.Read(L"help\\narrix\\hotkey.htm"), once);
}

TEST(HelpPage, ReplacesTheLinesBetweenTheMarkers) {
  const struct {
    const char* page;
    const char* updated;
  } cases[] = {
      // Markers inside other text: the whole lines are the markers and stay.
      {"a\r\nx <!-- app hotkey start --> y\r\nold 1\r\nold 2\r\nz <!-- app hotkey end -->\r\nb\r\n",
       "a\r\nx <!-- app hotkey start --> y\r\nNEW\r\nz <!-- app hotkey end -->\r\nb\r\n"},
      // No end marker: everything after the start goes.
      {"a\r\n<!-- app hotkey start -->\r\nold\r\nb\r\n", "a\r\n<!-- app hotkey start -->\r\nNEW\r\n"},
      // No markers: the same page, with CR LF line breaks only.
      {"a\nb\rc\r\n", "a\r\nb\r\nc\r\n"},
      // LF-only lines and no final line break.
      {"<!-- app hotkey start -->\nold\n<!-- app hotkey end -->",
       "<!-- app hotkey start -->\r\nNEW\r\n<!-- app hotkey end -->\r\n"},
      {"", ""},
  };
  for (const auto& c : cases) {
    const std::string once = ReplaceHelpSection(c.page, "NEW");
    EXPECT_EQ(once, c.updated) << c.page;
    EXPECT_EQ(ReplaceHelpSection(once, "NEW"), once) << c.page;  // a second export changes nothing
  }
  test::TempFolder dir;  // a missing page is left alone
  BuiltinCodePage page(1252);
  EXPECT_EQ(UpdateHelpPage(dir.Path(L"none.htm"), L"x", page), HelpPageResult::Unreadable);
  EXPECT_EQ(UpdateHelpPage(dir.Path(), L"x", page), HelpPageResult::Unreadable);  // a folder
  dir.Write(L"plain.htm", "text\n");
  EXPECT_EQ(UpdateHelpPage(dir.Path(L"plain.htm"), L"x", page), HelpPageResult::NoStartMarker);
  EXPECT_EQ(dir.Read(L"plain.htm"), "text\r\n");
}

TEST(FolderName, RefusesWhatWindowsCannotKeep) {
  const struct {
    const wchar_t* name;
    FolderNameProblem problem;
  } cases[] = {
      {L"winword", FolderNameProblem::None},      {L"Word 2003", FolderNameProblem::None},
      {L"a.b", FolderNameProblem::None},          {L"CONSOLE", FolderNameProblem::None},
      {L"COM0", FolderNameProblem::None},         {L"", FolderNameProblem::Empty},
      {L"   ", FolderNameProblem::Empty},         {L"a\\b", FolderNameProblem::BadCharacter},
      {L"a:b", FolderNameProblem::BadCharacter},  {L"a|b", FolderNameProblem::BadCharacter},
      {L"a\tb", FolderNameProblem::BadCharacter}, {L".", FolderNameProblem::Dots},
      {L"..", FolderNameProblem::Dots},           {L"word ", FolderNameProblem::Dots},
      {L"con", FolderNameProblem::Reserved},      {L"Lpt9", FolderNameProblem::Reserved},
      {L"aux.txt", FolderNameProblem::Reserved},  {L"COM1", FolderNameProblem::Reserved},
  };
  for (const auto& c : cases) EXPECT_EQ(CheckFolderName(c.name), c.problem) << WideToUtf8(c.name);
}

}  // namespace
}  // namespace nx
