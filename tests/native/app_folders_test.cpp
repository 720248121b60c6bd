// The application list's folder buttons and the help-page export, on a real
// temporary installation with a running application made up by the test.
#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <vector>

#include "applist/app_select.h"
#include "applist/folder_name.h"
#include "applist/help_page.h"
#include "platform/code_page.h"
#include "platform/folders.h"
#include "platform/text.h"
#include "startup/settings.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

class ListView : public IAppSelectView {
 public:
  std::vector<std::wstring> entries;  // sorted by the test's folder names already
  int selected = -1, focusCalls = 0;
  void SetText(AppSelectText, const std::wstring&) override {}
  void ClearList() override {
    entries.clear();
    selected = -1;
  }
  void AddListEntry(const std::wstring& text) override {
    entries.push_back(text);
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return UpperCase(a) < UpperCase(b); });
  }
  int ListCount() const override { return static_cast<int>(entries.size()); }
  std::wstring ListEntry(int i) const override { return entries.at(static_cast<size_t>(i)); }
  int SelectedIndex() const override { return selected; }
  void SelectEntry(int i) override { selected = i; }
  void EnableOk(bool) override {}
  void FocusList() override { ++focusCalls; }
  void EndProgram() override {}
};

class Answers : public IPrompts {
 public:
  std::deque<int> buttons;
  std::deque<std::wstring> inputs;
  std::vector<std::wstring> said;  // every message and input box, in order
  int Message(const std::wstring& text, unsigned style, const std::wstring&) override {
    said.push_back(text + L" [" + std::to_wstring(style) + L"]");
    int answer = buttons.empty() ? mb::kIdOk : buttons.front();
    if (!buttons.empty()) buttons.pop_front();
    return answer;
  }
  std::wstring InputBox(const std::wstring& label, const std::wstring& title, const std::wstring& value) override {
    said.push_back(title + L": " + label + L" " + value);
    std::wstring answer = inputs.empty() ? L"" : inputs.front();
    if (!inputs.empty()) inputs.pop_front();
    return answer;
  }
};

struct Sections : IMenuEditorEntry {
  void EditMenu(const std::wstring&, const std::wstring&, bool) override {}
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

constexpr unsigned kCritical = mb::kOkOnly | mb::kIconCritical;
constexpr unsigned kExclamation = mb::kOkOnly | mb::kIconExclamation;

class AppFoldersTest : public ::testing::Test {
 protected:
  AppFoldersTest() {
    CreateFolder(dir_.Path(L"Set"));
    for (const wchar_t* name : {L"excel", L"notepad", L"Word"}) {
      CreateFolder(dir_.Path(L"Set\\") + name);
      dir_.Write(std::wstring(L"Set\\") + name + L"\\Command.mnu", "menu of " + WideToUtf8(name));
    }
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
  ListView view_;
  Answers prompts_;
  Sections editor_;
  FileSystemFolderOps folders_;
  RunningApps apps_;
  BuiltinCodePage codePage_{1250};
  fAppSelect app_{view_, prompts_, session_, info_, &editor_, AppListPorts{&folders_, &apps_, &codePage_}};
};

// A refused name is told, and offered again as typed: here the box is then
// cancelled, or given `then`.
TEST_F(AppFoldersTest, RenameTakesOnlyNamesAFolderCanHave) {
  const struct {
    const wchar_t* answer;
    const wchar_t* message;    // "" for none
    const wchar_t* renamedTo;  // null: nothing moved
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
      said.push_back(c.message + std::wstring(L" Nothing was renamed. [") + std::to_wstring(kExclamation) + L"]");
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
}

TEST_F(AppFoldersTest, TheGeneralMenuStays) {
  Select(L"(Narrix)");
  app_.cmdRename_Click();
  app_.cmdRemoveApp_Click();
  EXPECT_EQ(prompts_.said, std::vector<std::wstring>(2, L"The general menu (Narrix) cannot be renamed or removed. [" +
                                                            std::to_wstring(kExclamation) + L"]"));
  EXPECT_EQ(Folders().size(), 3u);
}

TEST_F(AppFoldersTest, RemoveAsksWithNoAsTheDefault) {
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

TEST_F(AppFoldersTest, AddVersionCopiesTheMenuOfTheRunningVersion) {
  apps_.versions[L"WORD"] = L"11.0.6568";
  Select(L"Word");
  app_.cmdAddVer_Click();
  EXPECT_EQ(dir_.Read(L"Set\\Word_ver.11.0.6568\\Command.mnu"), "menu of Word");
  EXPECT_EQ(view_.entries.back(), L"Word_ver.11.0.6568");
  EXPECT_EQ(view_.selected, 3);  // the same position: Word
  app_.cmdAddVer_Click();
  Select(L"excel");
  app_.cmdAddVer_Click();
  EXPECT_EQ(prompts_.said,
            (std::vector<std::wstring>{L"Slo\u017eka ji\u017e existuje. [" + std::to_wstring(kCritical) + L"]",
                                       L"Nelze prov\u00e9st. [" + std::to_wstring(kCritical) + L"]"}));
  EXPECT_EQ(Folders().size(), 4u);
}

TEST_F(AppFoldersTest, ExportWritesEveryMenuInListOrder) {
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
}

TEST(HelpPage, AMissingPageIsLeftAlone) {
  test::TempFolder dir;
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
