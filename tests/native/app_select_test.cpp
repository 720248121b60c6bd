#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <vector>

#include "applist/app_select.h"
#include "platform/list_order.h"
#include "platform/folders.h"
#include "platform/text.h"
#include "startup/command_line.h"
#include "startup/settings.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

// A list that sorts itself ignoring case, as a sorted Windows list box does.
class FakeView : public IAppSelectView {
 public:
  std::map<AppSelectText, std::wstring> texts;
  std::vector<std::wstring> entries;
  int selected = -1;
  bool okEnabled = false;
  int endCalls = 0;
  int focusCalls = 0;

  void SetText(AppSelectText what, const std::wstring& text) override { texts[what] = text; }
  void ClearList() override {
    entries.clear();
    selected = -1;
  }
  void AddListEntry(const std::wstring& text) override {
    auto at = std::upper_bound(entries.begin(), entries.end(), text, ListOrderLess);
    entries.insert(at, text);
  }
  int ListCount() const override { return static_cast<int>(entries.size()); }
  std::wstring ListEntry(int i) const override { return entries.at(static_cast<size_t>(i)); }
  int SelectedIndex() const override { return selected; }
  void SelectEntry(int i) override { selected = i; }
  void EnableOk(bool enabled) override { okEnabled = enabled; }
  void FocusList() override { ++focusCalls; }
  void EndProgram() override { ++endCalls; }
};

// Answers each question from a script and remembers what was asked.
class ScriptedPrompts : public IPrompts {
 public:
  struct Asked {
    std::wstring text;
    unsigned style;
    std::wstring title;
  };
  std::deque<int> answers;
  std::vector<Asked> asked;

  int Message(const std::wstring& text, unsigned style, const std::wstring& title) override {
    asked.push_back({text, style, title});
    if (answers.empty()) ADD_FAILURE() << "unexpected question: " << WideToUtf8(text);
    int answer = answers.empty() ? mb::kIdCancel : answers.front();
    if (!answers.empty()) answers.pop_front();
    return answer;
  }
};

struct EditorSpy : IMenuEditorEntry {
  struct Call {
    std::wstring dirSet, name;
    bool general;
  };
  std::vector<Call> calls;
  void EditMenu(const std::wstring& dirSet, const std::wstring& name, bool general) override {
    calls.push_back({dirSet, name, general});
  }
  std::wstring ListDefs(const std::wstring&, const std::wstring& name, bool general) override {
    return L"<H3>" + name + (general ? L" general" : L"") + L"</H3>\r\n";
  }
};

class AppSelectTest : public ::testing::Test {
 protected:
  AppSelectTest() {
    session_.gCmdScriptPath.clear();
    session_.gCmdDisplayName.clear();
    CreateFolder(dir_.Path(L"Set"));
    for (const wchar_t* name : {L"Word", L"excel", L"7zip"}) CreateFolder(dir_.Path(L"Set\\") + name);
    dir_.Write(L"Set\\setting.ini", "[Braille]\r\n");  // files are not applications
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
  }

  void Load() {
    app_.Form_Load(nullptr);
    ASSERT_FALSE(app_.Ended());
  }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  FakeView view_;
  ScriptedPrompts prompts_;
  EditorSpy editor_;
  fAppSelect app_{view_, prompts_, session_, info_, &editor_};
};

TEST_F(AppSelectTest, LoadShowsCaptionsAndSortedList) {
  Load();
  EXPECT_EQ(view_.texts[AppSelectText::Window], L"Menu modification");
  EXPECT_EQ(view_.texts[AppSelectText::ListLabel], L"&Menu list");
  EXPECT_EQ(view_.texts[AppSelectText::Ok], L"Edit...");
  EXPECT_EQ(view_.texts[AppSelectText::Cancel], L"Cancel");
  EXPECT_EQ(view_.entries, (std::vector<std::wstring>{L"(Narrix)", L"7zip", L"excel", L"Word"}));
  EXPECT_EQ(view_.selected, 0);
  EXPECT_TRUE(view_.okEnabled);
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_F(AppSelectTest, OkOpensTheSelectedMenu) {
  Load();
  app_.cmdOK_Click();
  view_.SelectEntry(3);
  app_.lstApplication_DblClick();
  ASSERT_EQ(editor_.calls.size(), 2u);
  EXPECT_EQ(editor_.calls[0].dirSet, dir_.Path(L"Set"));
  EXPECT_EQ(editor_.calls[0].name, L"(Narrix)");
  EXPECT_TRUE(editor_.calls[0].general);
  EXPECT_EQ(editor_.calls[1].name, L"Word");
  EXPECT_FALSE(editor_.calls[1].general);
  EXPECT_EQ(view_.focusCalls, 2);  // the list has the focus again after each
}

TEST_F(AppSelectTest, OkNeedsASelection) {
  Load();
  view_.SelectEntry(-1);
  app_.lstApplication_Click();
  EXPECT_FALSE(view_.okEnabled);
  app_.cmdOK_Click();
  EXPECT_TRUE(editor_.calls.empty());
}

TEST_F(AppSelectTest, CommandLineOpensAnExistingMenuIgnoringCase) {
  const struct {
    const wchar_t* args;
    const wchar_t* opened;  // nullptr: nothing opened
    const wchar_t* script;
    const wchar_t* display;
  } cases[] = {
      {L"WORD", L"Word", L"", L""},
      {L"excel*C:\\s\\a.vbs/Focus 40", L"excel", L"C:\\s\\a.vbs", L"Focus 40"},
      {L"(narrix)", L"(Narrix)", L"", L""},
      {L"/Focus 40", nullptr, L"", L"Focus 40"},
      {L"*C:\\a.vbs", nullptr, L"C:\\a.vbs", L""},  // kept for the first menu opened
      {L"", nullptr, L"", L""},
  };
  for (const auto& c : cases) {
    session_.gCmdScriptPath.clear();
    session_.gCmdDisplayName.clear();
    editor_.calls.clear();
    Load();
    app_.SelectAppByCommand(c.args);
    if (c.opened) {
      ASSERT_EQ(editor_.calls.size(), 1u) << WideToUtf8(c.args);
      EXPECT_EQ(editor_.calls[0].name, c.opened);
      EXPECT_EQ(view_.ListEntry(view_.selected), c.opened);
    } else {
      EXPECT_TRUE(editor_.calls.empty()) << WideToUtf8(c.args);
      EXPECT_EQ(view_.selected, 0);
    }
    EXPECT_EQ(session_.gCmdScriptPath, c.script);
    EXPECT_EQ(session_.gCmdDisplayName, c.display);
  }
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_F(AppSelectTest, UnknownApplicationIsOfferedANewMenu) {
  Load();
  prompts_.answers = {mb::kIdYes};
  app_.SelectAppByCommand(L"notepad");
  ASSERT_EQ(prompts_.asked.size(), 1u);
  EXPECT_EQ(prompts_.asked[0].text, L"Create a new menu for \"notepad\"?");
  EXPECT_EQ(prompts_.asked[0].style, mb::kYesNo | mb::kIconQuestion);
  EXPECT_EQ(prompts_.asked[0].title, L"Narrix - Screen Reader");
  EXPECT_TRUE(IsFolder(dir_.Path(L"Set\\notepad")));
  ASSERT_EQ(editor_.calls.size(), 1u);
  EXPECT_EQ(editor_.calls[0].name, L"notepad");
  EXPECT_EQ(view_.ListEntry(view_.selected), L"notepad");
}

// A name becomes a folder in Set only under the rules of a rename: a refused
// one is told, without question 505, and nothing is created.
TEST_F(AppSelectTest, CommandLineNamesFollowTheFolderRules) {
  const struct {
    const wchar_t *args, *message;
  } cases[] = {
      {L"..\\outside", L"The name \"..\\outside\" cannot be a folder name: it must not contain \\ / : * ? \" < > |."},
      {L"..", L"The name \"..\" cannot be a folder name: it must not be \".\" or \"..\" or end in a dot or a blank."},
      {L"con*a.vbs", L"The name \"con\" is reserved by Windows for a device."},
      {L"notes.txt", L"The settings folder holds a file named \"notes.txt\", so no menu folder can have that name."},
  };
  Load();
  ASSERT_TRUE(WriteFileBytes(dir_.Path(L"Set\\notes.txt"), "x"));
  for (const auto& c : cases) {
    prompts_.asked.clear();
    prompts_.answers = {mb::kIdOk};
    app_.SelectAppByCommand(c.args);
    ASSERT_EQ(prompts_.asked.size(), 1u) << WideToUtf8(c.args);
    EXPECT_EQ(prompts_.asked[0].text, c.message + std::wstring(L" No menu was created."));
    EXPECT_EQ(prompts_.asked[0].style, mb::kOkOnly | mb::kIconExclamation);
  }
  EXPECT_EQ(*ListSubfolders(dir_.Path()), std::vector<std::wstring>{L"Set"});
  EXPECT_EQ(ListSubfolders(dir_.Path(L"Set"))->size(), 3u);
  EXPECT_TRUE(editor_.calls.empty());
}

TEST_F(AppSelectTest, DecliningTheNewMenuCreatesNothing) {
  Load();
  prompts_.answers = {mb::kIdNo};
  app_.SelectAppByCommand(L"notepad");
  EXPECT_FALSE(PathExists(dir_.Path(L"Set\\notepad")));
  EXPECT_TRUE(editor_.calls.empty());
  EXPECT_EQ(view_.selected, 0);
}

TEST_F(AppSelectTest, MissingSettingsFolderEndsTheProgram) {
  registry_.WriteString(kProductKey, L"Path", dir_.Path(L"nowhere"));
  prompts_.answers = {mb::kIdOk};
  app_.Form_Load(nullptr);
  EXPECT_TRUE(app_.Ended());
  ASSERT_EQ(prompts_.asked.size(), 1u);
  EXPECT_EQ(prompts_.asked[0].text, L"Bad program instalation");
  EXPECT_EQ(prompts_.asked[0].style, mb::kOkOnly | mb::kIconCritical);
  EXPECT_EQ(view_.endCalls, 1);
  // Nothing happens after the end, and nothing was written.
  app_.SelectAppByCommand(L"notepad");
  app_.cmdOK_Click();
  EXPECT_TRUE(editor_.calls.empty());
  EXPECT_EQ(prompts_.asked.size(), 1u);
  EXPECT_FALSE(PathExists(dir_.Path(L"nowhere")));
}

TEST_F(AppSelectTest, CancelEndsTheProgram) {
  Load();
  app_.cmdCANCEL_Click();
  EXPECT_EQ(view_.endCalls, 1);
  EXPECT_TRUE(app_.Ended());
}

}  // namespace
}  // namespace nx
