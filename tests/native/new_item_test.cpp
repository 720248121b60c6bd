// New and Edit in the menu editor, with a stand-in for the item wizard.
#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "fake_editor.h"
#include "menu/menu_editor.h"
#include "platform/text.h"
#include "startup/command_line.h"
#include "startup/settings.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

// Like the real wizard, it writes into the item it is given as the user
// types, also when the user then cancels.
class ScribblingWizard : public IItemWizard {
 public:
  struct Seen {
    std::wstring caption, action;
    int32_t hotKey;
    bool discard, isNew;
  };
  std::vector<Seen> seen;
  bool finish = true;
  std::wstring caption = L"Typed", action = L"SayTime";
  int32_t hotKey = 0x00020043;
  std::optional<ItemFields> Describe(const ItemFields& item, bool isNew, const cMenuItem*, const cMenuItem*) override {
    seen.push_back({item.Caption, item.Action, item.HotKey, item.Discard, isNew});
    if (!finish) return std::nullopt;
    return ItemFields{caption, action, hotKey, !item.Discard};
  }
};

// File(Open, Save) Edit(Copy) Quit, where Open has a command and a hot key
// and Quit only a hot key.
class NewItemTest : public ::testing::Test {
 protected:
  NewItemTest() {
    session_.gCmdScriptPath.clear();
    std::filesystem::create_directories(dir_.Fs() / "Set" / "notepad");
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
    info_.Inicialize(nullptr);
    defs_.SetFolder(dir_.Path(L"Set\\"));
    auto root = cMenuItem::New();
    auto add = [](cMenuItem* parent, const wchar_t* caption, const wchar_t* action, int32_t hotKey) {
      auto item = parent->SubItems.Add(1, parent, cMenuItem::New());
      item->Caption = caption;
      item->Action = action;
      item->HotKey = hotKey;
      return item.get();
    };
    cMenuItem* file = add(root.get(), L"File", L"", 0);
    add(file, L"Open", L"shell(open.vbs)", 0x123);
    add(file, L"Save", L"SaveIt", 0);
    add(add(root.get(), L"Edit", L"", 0), L"Copy", L"CopyIt", 0);
    add(root.get(), L"Quit", L"", 0x00020051);
    EXPECT_TRUE(cMenuFile(defs_.CodePage(), defs_.Profile())
                    .FlushCommand2Def(dir_.Path(L"Set\\notepad\\Command.mnu"), L"", *root));
    editor_.Form_Load();
    editor_.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
  }
  ~NewItemTest() override { session_.gCmdScriptPath.clear(); }

  const cMenuItem* Find(const std::wstring& caption) const {
    const cMenuItem* found = nullptr;
    WalkTree(
        static_cast<const cMenuItem&>(*editor_.Root()),
        [&](const cMenuItem& item, size_t, int) {
          if (item.Caption == caption) found = &item;
          return true;
        },
        [](const cMenuItem&, size_t) {});
    return found;
  }

  static constexpr const wchar_t* kStart = L"Application (notepad)(File(Open Save) Edit(Copy) Quit)";
  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefServer defs_{page_, profile_, L""};
  NullMenus menus_;
  std::unique_ptr<IBrailleDisplay> braille_;
  ScriptedPrompts prompts_;
  FakeEditorView view_;
  ScribblingWizard wizard_;
  fMenuDef editor_{view_, prompts_,
                   MenuEditorServices{session_, info_, defs_, profile_, menus_, braille_, nullptr, &wizard_}};
};

TEST_F(NewItemTest, CancelledEditChangesNothing) {
  view_.SelectText(L"Open");
  wizard_.finish = false;
  editor_.mnuTreeEdit_Click();
  ASSERT_EQ(wizard_.seen.size(), 1u);
  EXPECT_FALSE(wizard_.seen[0].isNew);
  EXPECT_EQ(wizard_.seen[0].action, L"shell(open.vbs)");  // the wizard starts from the item's fields
  EXPECT_EQ(wizard_.seen[0].hotKey, 0x123);
  const cMenuItem* open = Find(L"Open");
  ASSERT_NE(open, nullptr);
  EXPECT_EQ(open->Action, L"shell(open.vbs)");
  EXPECT_EQ(open->HotKey, 0x123);
  EXPECT_EQ(Find(L"Typed"), nullptr);
  EXPECT_EQ(view_.Shape(), kStart);
  EXPECT_FALSE(editor_.Dirty());
}

TEST_F(NewItemTest, FinishedEditCopiesTheFieldsBack) {
  view_.SelectText(L"Edit");
  wizard_.action = L"";
  wizard_.hotKey = 0;
  editor_.mnuTreeEdit_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Typed(Copy) Quit)");  // the children stay
  EXPECT_EQ(view_.NodeText(*view_.selected), L"Typed");
  EXPECT_TRUE(editor_.Dirty());
  EXPECT_TRUE(prompts_.asked.empty());  // no pull-down question on an edit
}

TEST_F(NewItemTest, CancelledNewChangesNothing) {
  view_.SelectText(L"Save");
  wizard_.finish = false;
  editor_.mnuNew_Click();
  EXPECT_EQ(view_.Shape(), kStart);
  EXPECT_FALSE(editor_.Dirty());
}

TEST_F(NewItemTest, NewItemStartsBlankWithDiscard) {
  view_.SelectText(L"Save");
  prompts_.answers = {mb::kIdNo};  // "Save as subitem?" No: after Save
  editor_.mnuNew_Click();
  ASSERT_EQ(wizard_.seen.size(), 1u);
  const auto& seen = wizard_.seen[0];
  EXPECT_TRUE(seen.isNew);
  EXPECT_EQ(seen.caption, L"New item");
  EXPECT_EQ(seen.action, L"");
  EXPECT_EQ(seen.hotKey, 0);
  EXPECT_TRUE(seen.discard);
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save Typed) Edit(Copy) Quit)");
}

// After a delete the neighbour is selected, and a new item goes next to it
// as asked; with nothing selected it goes under the top node unasked.
TEST_F(NewItemTest, NewAfterADeleteOrWithoutASelection) {
  const struct {
    const wchar_t* deleted;  // null: nothing selected
    std::vector<int> answers;
    const wchar_t* shape;
  } cases[] = {
      {L"Open", {mb::kIdYes, mb::kIdNo}, L"Application (notepad)(File(Save Typed) Edit(Copy) Quit)"},
      {L"Quit", {mb::kIdYes, mb::kIdYes}, L"Application (notepad)(File(Open Save) Edit(Typed Copy))"},
      {nullptr, {}, L"Application (notepad)(Typed File(Open Save) Edit(Copy) Quit)"},
  };
  for (const auto& c : cases) {
    editor_.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
    prompts_.answers.assign(c.answers.begin(), c.answers.end());
    view_.selected.reset();
    if (c.deleted) {
      view_.SelectText(c.deleted);
      editor_.mnuTreeDelete_Click();
    }
    EXPECT_TRUE(editor_.trvMenu_KeyDown('N', 2));
    EXPECT_EQ(view_.Shape(), c.shape);
    EXPECT_EQ(view_.fields[0], L"Typed");
    EXPECT_TRUE(prompts_.answers.empty());
  }
}

// New borrows the clipboard for its paste and gives it back.
TEST_F(NewItemTest, NewKeepsTheCopiedItem) {
  view_.SelectText(L"Copy");
  editor_.mnuTreeCopy_Click();
  view_.SelectText(L"Save");
  prompts_.answers = {mb::kIdNo};
  EXPECT_TRUE(editor_.trvMenu_KeyDown('N', 2));  // Ctrl+N
  view_.SelectText(L"Quit");
  prompts_.answers = {mb::kIdNo};
  editor_.mnuTreePaste_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save Typed) Edit(Copy) Quit Copy)");

  // Cancelled at the placement question: nothing placed, the clipboard kept.
  view_.SelectText(L"Save");
  prompts_.answers = {mb::kIdCancel};
  editor_.mnuNew_Click();
  view_.SelectText(L"Open");
  prompts_.answers = {mb::kIdNo};
  editor_.mnuTreePaste_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Copy Save Typed) Edit(Copy) Quit Copy)");
}

// A new item placed under an item with a command or hot key makes it a
// pull-down, after asking.
TEST_F(NewItemTest, NewChildOfAnItemWithACommandAsksFirst) {
  const struct {
    const wchar_t* target;
    int answer;  // to the pull-down question; 0: not asked
    const wchar_t* shape;
  } cases[] = {
      {L"Open", mb::kIdYes, L"Application (notepad)(File(Open(Typed) Save) Edit(Copy) Quit)"},
      {L"Quit", mb::kIdYes, L"Application (notepad)(File(Open Save) Edit(Copy) Quit(Typed))"},
      {L"Open", mb::kIdNo, kStart},
      {L"Edit", 0, L"Application (notepad)(File(Open Save) Edit(Typed Copy) Quit)"},
  };
  for (const auto& c : cases) {
    editor_.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
    prompts_.asked.clear();
    view_.SelectText(c.target);
    prompts_.answers = {mb::kIdYes};  // "Save as subitem?"
    if (c.answer) prompts_.answers.push_back(c.answer);
    editor_.mnuNew_Click();
    EXPECT_EQ(view_.Shape(), c.shape) << c.target;
    ASSERT_EQ(prompts_.asked.size(), c.answer ? 2u : 1u) << c.target;
    EXPECT_EQ(prompts_.asked[0].text, L"Save as subitem?");
    if (c.answer) {
      EXPECT_EQ(prompts_.asked[1].text.find(L"Item " + std::wstring(c.target) + L" contains"), 0u);
    }
    const cMenuItem* target = Find(c.target);
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(target->Action.empty() && target->HotKey == 0, c.answer != mb::kIdNo) << c.target;
  }
}

// A script path on the command line starts one new item when the tree
// first gets the focus, not every time.
TEST_F(NewItemTest, CommandLineScriptStartsNewOnce) {
  session_.gCmdScriptPath = L"$(appsetdir)\\hello.vbs";
  view_.SelectText(L"Quit");
  prompts_.answers = {mb::kIdNo};
  editor_.trvMenu_GotFocus();
  editor_.trvMenu_GotFocus();
  EXPECT_EQ(wizard_.seen.size(), 1u);
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Edit(Copy) Quit Typed)");
}

}  // namespace
}  // namespace nx
