// The menu editor's logic through a fake view and scripted questions.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <vector>

#include "braille/braille_opener.h"
#include "fake_editor.h"
#include "fake_koral.h"
#include "menu/menu_editor.h"
#include "platform/text.h"
#include "refusing_profile.h"
#include "startup/command_line.h"
#include "startup/settings.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

// The demo-like menu: File(Open, Save) Edit(Copy) Quit, all in "notepad".
class MenuEditorTest : public ::testing::Test {
 protected:
  MenuEditorTest() {
    session_.gBrailleName.clear();
    session_.gCmdDisplayName.clear();
    std::filesystem::create_directories(dir_.Fs() / "Set" / "notepad");
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
    info_.Inicialize(nullptr);
    defs_.SetFolder(dir_.Path(L"Set\\"));
    WriteMenu({{L"File", L"", 0},
               {L"Open", L"open.vbs", 0x123},
               {L"Save", L"SaveIt", 0},
               {L"Edit", L"", 0},
               {L"Copy", L"CopyIt", 0},
               {L"Quit", L"QuitIt", 0}},
              {0, 1, 1, 0, 1, 0});
    editor_.Form_Load();
  }

  struct Spec {
    const wchar_t *caption, *action;
    int32_t hotKey;
  };
  void WriteMenu(const std::vector<Spec>& items, const std::vector<int>& levels) {
    auto root = cMenuItem::New();
    std::vector<cMenuItem*> parents{root.get()};
    for (size_t i = 0; i < items.size(); ++i) {
      parents.resize(static_cast<size_t>(levels[i]) + 1);
      cMenuItem* parent = parents.back();
      auto item = parent->SubItems.Add(1, parent, cMenuItem::New());
      item->Caption = items[i].caption;
      item->Action = items[i].action;
      item->HotKey = items[i].hotKey;
      parents.push_back(item.get());
    }
    ASSERT_TRUE(cMenuFile(defs_.CodePage(), defs_.Profile()).FlushCommand2Def(MenuFile(), L"", *root));
  }
  std::wstring MenuFile() const { return dir_.Path(L"Set\\notepad\\Command.mnu"); }
  void Open() { editor_.LoadDefs(dir_.Path(L"Set"), L"notepad", false); }
  std::wstring Saved() {
    cMenuFile file(defs_.CodePage(), defs_.Profile());
    file.ItemCounter = 256;
    auto root = file.InitCommandDef(MenuFile(), L"");
    std::wstring out;
    WalkTree(
        static_cast<const cMenuItem&>(*root),
        [&](const cMenuItem& item, size_t level, int) {
          out += std::wstring(level * 2, L' ') + item.Caption + L"\n";
          return true;
        },
        [](const cMenuItem&, size_t) {});
    return out;
  }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefServer defs_{page_, profile_, L""};
  NullMenus menus_;
  std::unique_ptr<IBrailleDisplay> braille_;
  test::FakeKoralFactory koral_;
  BrailleOpener opener_{koral_, profile_, info_, nullptr};
  ScriptedPrompts prompts_;
  FakeEditorView view_;
  fMenuDef editor_{view_, prompts_,
                   MenuEditorServices{session_, info_, defs_, profile_, menus_, braille_, &opener_, nullptr}};
};

// The display's own description names its profile, unless the command line
// named one; the display is opened only when braille is switched on.
TEST_F(MenuEditorTest, TheDisplayNamesItsProfile) {
  const struct {
    const char* setting;
    const wchar_t* commandLine;
    const wchar_t* name;
  } cases[] = {
      {"[Braille]\r\nBrailleActive=1\r\n", L"", L"Focus 40"},
      {"[Braille]\r\nBrailleActive=1\r\n", L"Other", L"Other"},
      {"[Braille]\r\nBrailleActive=0\r\n", L"", L""},
      {"", L"", L""},
  };
  for (const auto& c : cases) {
    dir_.Write(L"Set\\setting.ini", c.setting);
    session_.gBrailleName.clear();
    session_.gCmdDisplayName = c.commandLine;
    braille_.reset();
    koral_.koral.log.clear();
    Open();
    EXPECT_EQ(session_.gBrailleName, c.name) << c.setting;
    const bool opened = std::wstring(c.name) == L"Focus 40" || std::wstring(c.commandLine) == L"Other";
    EXPECT_EQ(koral_.koral.Log().empty(), !opened) << koral_.koral.Log();
    Open();  // the display is opened once for the whole program
    EXPECT_EQ(koral_.koral.log.size(), opened ? 5u : 0u);
  }
}

TEST_F(MenuEditorTest, LoadingShowsTheTree) {
  Open();
  EXPECT_EQ(view_.title, L"Menu - notepad");
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Edit(Copy) Quit)");
  EXPECT_EQ(view_.nodes[1].key, L"k256");
  EXPECT_TRUE(view_.Find(L"k256")->expanded);
  EXPECT_FALSE(view_.Find(L"k257")->expanded);
  EXPECT_EQ(view_.selected, view_.nodes[0].key);
  EXPECT_EQ(view_.fields[0], L"Application (notepad)");
  EXPECT_TRUE(view_.enabled[EditorCommand::Preview]);
  EXPECT_FALSE(editor_.Dirty());
  EXPECT_NE(braille_, nullptr);  // made once, on the first load

  view_.SelectText(L"Open");
  editor_.trvMenu_NodeClick(*view_.selected);
  EXPECT_EQ(view_.fields[1], L"open.vbs");
  EXPECT_EQ(view_.fields[2], L"key(291)");

  std::filesystem::remove(dir_.Fs() / "Set" / "notepad" / "Command.mnu");
  Open();
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_FALSE(view_.enabled[EditorCommand::Preview]);
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_F(MenuEditorTest, TitleTakesTheNameAsItIs) {
  editor_.LoadDefs(dir_.Path(L"Set"), L"app %1", false);
  EXPECT_EQ(view_.title, L"Menu - app %1");
  editor_.LoadDefs(dir_.Path(L"Set"), L"", true);
  EXPECT_EQ(view_.Shape(), L"");  // no general menu file
}

TEST_F(MenuEditorTest, CopyAndPasteAsNextTwiceMakesIndependentCopies) {
  Open();
  view_.SelectText(L"File");
  editor_.mnuTreeCopy_Click();
  view_.SelectText(L"Quit");
  editor_.mnuTreePasteAsNext_Click();
  editor_.mnuTreePasteAsNext_Click();  // the clipboard stays
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Edit(Copy) Quit File(Open Save) File(Open Save))");
  EXPECT_EQ(view_.fields[0], L"File");  // the pasted copy is selected and shown
  EXPECT_TRUE(editor_.Dirty());
  EXPECT_TRUE(view_.applyEnabled);
  // Fresh numbers: every key once.
  std::vector<std::wstring> keys;
  for (const auto& n : view_.nodes) keys.push_back(n.key);
  std::sort(keys.begin(), keys.end());
  EXPECT_EQ(std::unique(keys.begin(), keys.end()), keys.end());
  editor_.cmdApply_Click();
  EXPECT_FALSE(editor_.Dirty());
  EXPECT_EQ(Saved(), L"File\n  Open\n  Save\nEdit\n  Copy\nQuit\nFile\n  Open\n  Save\nFile\n  Open\n  Save\n");
}

TEST_F(MenuEditorTest, PasteAsksWhereAndChecksPullDowns) {
  Open();
  view_.SelectText(L"Quit");
  editor_.mnuTreeCut_Click();
  view_.SelectText(L"Open");
  const struct {
    std::vector<int> answers;
    const wchar_t* shape;
  } steps[] = {
      {{mb::kIdCancel}, L"Application (notepad)(File(Open Save) Edit(Copy) Quit)"},
      // Yes, as a child: Open has an action, so the pull-down question follows; No keeps it.
      {{mb::kIdYes, mb::kIdNo}, L"Application (notepad)(File(Open Save) Edit(Copy) Quit)"},
      {{mb::kIdYes, mb::kIdYes}, L"Application (notepad)(File(Open(Quit) Save) Edit(Copy))"},
  };
  for (const auto& step : steps) {
    prompts_.answers.assign(step.answers.begin(), step.answers.end());
    view_.SelectText(L"Open");
    editor_.mnuTreePaste_Click();
    EXPECT_EQ(view_.Shape(), step.shape);
  }
  EXPECT_EQ(prompts_.asked[0].text, L"Save as subitem?");
  EXPECT_EQ(prompts_.asked[0].style, 291u);
  EXPECT_EQ(prompts_.asked[2].text.rfind(L"Item Open contains action and/or hotkey\r\n\r\n", 0), 0u);
  EXPECT_EQ(prompts_.asked[2].style, 292u);
  editor_.cmdApply_Click();
  cMenuFile file(defs_.CodePage(), defs_.Profile());
  file.ItemCounter = 256;
  auto saved = file.InitCommandDef(MenuFile(), L"");
  const auto open = saved->SubItems.item(1)->SubItems.item(1);
  EXPECT_EQ(open->Action, L"");  // it became a pull-down
  EXPECT_EQ(open->HotKey, 0);

  // On the top node the paste asks nothing and puts the item first.
  view_.selected = view_.nodes[0].key;
  editor_.mnuTreePaste_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Quit File(Open Save) Edit(Copy))");
}

// Refused with a message that names it, before "Save as subitem?".
TEST_F(MenuEditorTest, ACutItemCannotGoIntoItsOwnSubtree) {
  Open();
  view_.SelectText(L"File");
  editor_.mnuTreeCut_Click();
  prompts_.answers.assign(6, mb::kIdOk);
  for (const wchar_t* target : {L"File", L"Save"}) {
    view_.SelectText(target);
    for (EditorCommand c : {EditorCommand::Paste, EditorCommand::PasteAsChild, EditorCommand::PasteAsNext})
      editor_.Run(c);
  }
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Edit(Copy) Quit)");
  EXPECT_FALSE(editor_.Dirty());
  ASSERT_EQ(prompts_.asked.size(), 6u);
  for (const auto& asked : prompts_.asked) {
    EXPECT_EQ(asked.text, L"The cut item File cannot be pasted into itself or below itself. Nothing was pasted.");
    EXPECT_EQ(asked.style, mb::kOkOnly | mb::kIconExclamation);
  }
  view_.SelectText(L"Quit");  // elsewhere it moves
  editor_.mnuTreePasteAsNext_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Edit(Copy) Quit File(Open Save))");
}

TEST_F(MenuEditorTest, TopNodeAndEmptyClipboardDoNothing) {
  Open();
  view_.selected = view_.nodes[0].key;
  editor_.mnuTreeCopy_Click();
  editor_.mnuTreeCut_Click();
  editor_.mnuTreePaste_Click();
  view_.SelectText(L"Quit");
  editor_.mnuTreePasteAsNext_Click();
  editor_.PrepareItemMenu();
  EXPECT_FALSE(view_.enabled[EditorCommand::Paste]);
  EXPECT_FALSE(view_.enabled[EditorCommand::PasteAsNext]);
  EXPECT_FALSE(view_.enabled[EditorCommand::PasteAsChild]);
  EXPECT_FALSE(view_.enabled[EditorCommand::New]);  // no wizard in this program yet
  EXPECT_FALSE(editor_.Dirty());
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_F(MenuEditorTest, ItemMenuFollowsTheSelection) {
  Open();
  view_.SelectText(L"Save");
  editor_.mnuTreeCopy_Click();
  view_.SelectText(L"Edit");
  EXPECT_TRUE(editor_.trvMenu_KeyDown(121, 1));   // Shift+F10
  EXPECT_FALSE(editor_.trvMenu_KeyDown(121, 0));  // F10 alone is the menu bar's
  EXPECT_TRUE(editor_.trvMenu_KeyDown(93, 0));
  EXPECT_EQ(view_.menusOpened, 2);
  EXPECT_EQ(view_.commandTexts[EditorCommand::PasteAsNext], L"Paste As Ne&xt (Edit)");
  EXPECT_EQ(view_.commandTexts[EditorCommand::PasteAsChild], L"Paste As C&hild (Edit)");
  EXPECT_TRUE(view_.enabled[EditorCommand::Paste]);
  EXPECT_TRUE(view_.enabled[EditorCommand::PasteAsNext]);
  EXPECT_TRUE(view_.enabled[EditorCommand::Copy]);
  EXPECT_TRUE(view_.enabled[EditorCommand::MoveUp]);
  EXPECT_TRUE(view_.enabled[EditorCommand::MoveDown]);
  view_.selected = view_.nodes[0].key;
  editor_.OpenContextMenu();
  EXPECT_EQ(view_.commandTexts[EditorCommand::PasteAsChild], L"Paste As C&hild (Application (notepad))");
  EXPECT_FALSE(view_.enabled[EditorCommand::PasteAsNext]);
  EXPECT_TRUE(view_.enabled[EditorCommand::PasteAsChild]);
  EXPECT_FALSE(view_.enabled[EditorCommand::Cut]);
}

TEST_F(MenuEditorTest, DeleteAsksAndCleansUpScripts) {
  Open();
  dir_.Write(L"Set\\notepad\\Open.vbs", "x");
  dir_.Write(L"Set\\notepad\\Open.frm", "x");
  // Afterwards the next sibling, else the previous one, else the parent is
  // selected and shown.
  const struct {
    const wchar_t* item;
    std::vector<int> answers;
    const wchar_t* question;
    const wchar_t* shape;
    const wchar_t* selected;
  } steps[] = {
      {L"Edit",
       {mb::kIdNo},
       L"Are you sure to remove the item Edit and its subitems?",
       L"Application (notepad)(File(Open Save) Edit(Copy) Quit)",
       L"Edit"},
      {L"Open",
       {mb::kIdYes, mb::kIdYes},
       L"Are you sure to remove the item Open",
       L"Application (notepad)(File(Save) Edit(Copy) Quit)",
       L"Save"},
      {L"Quit",
       {mb::kIdYes},
       L"Are you sure to remove the item Quit",
       L"Application (notepad)(File(Save) Edit(Copy))",
       L"Edit"},
      {L"Save",
       {mb::kIdYes},
       L"Are you sure to remove the item Save",
       L"Application (notepad)(File Edit(Copy))",
       L"File"},
      {L"Edit",
       {mb::kIdYes},
       L"Are you sure to remove the item Edit and its subitems?",
       L"Application (notepad)(File)",
       L"File"},
  };
  for (const auto& step : steps) {
    prompts_.asked.clear();
    prompts_.answers.assign(step.answers.begin(), step.answers.end());
    view_.SelectText(step.item);
    editor_.trvMenu_NodeClick(*view_.selected);
    EXPECT_TRUE(editor_.trvMenu_KeyDown(46, 0));
    ASSERT_FALSE(prompts_.asked.empty());
    EXPECT_EQ(prompts_.asked[0].text, step.question);
    EXPECT_EQ(prompts_.asked[0].style, 36u);
    EXPECT_EQ(view_.Shape(), step.shape);
    ASSERT_TRUE(view_.selected.has_value()) << WideToUtf8(step.item);
    EXPECT_EQ(view_.NodeText(*view_.selected), step.selected) << WideToUtf8(step.item);
    EXPECT_EQ(view_.fields[0], step.selected) << WideToUtf8(step.item);
  }
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "Set" / "notepad" / "Open.vbs"));
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "Set" / "notepad" / "Open.frm"));

  prompts_.answers = {mb::kIdYes};
  view_.selected = view_.nodes[0].key;
  editor_.mnuTreeDelete_Click();
  EXPECT_EQ(prompts_.asked.back().text, L"This action will completely remove the definion file.");
  EXPECT_EQ(prompts_.asked.back().style, 292u);
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_FALSE(view_.enabled[EditorCommand::Preview]);
  editor_.cmdOK_Click();  // no tree: the file goes
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "Set" / "notepad" / "Command.mnu"));
  EXPECT_TRUE(view_.closed);
}

// With no node selected a paste goes to the top node, as it does there.
TEST_F(MenuEditorTest, WithoutASelectionPasteGoesUnderTheTopNode) {
  Open();
  view_.SelectText(L"Quit");
  editor_.mnuTreeCopy_Click();
  for (EditorCommand c : {EditorCommand::PasteAsNext, EditorCommand::Paste, EditorCommand::PasteAsChild}) {
    view_.selected.reset();
    editor_.Run(c);
  }
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Quit Quit File(Open Save) Edit(Copy) Quit)");
  EXPECT_EQ(view_.fields[0], L"Quit");
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_F(MenuEditorTest, ShiftUpAndDownMoveAmongSiblings) {
  Open();
  view_.SelectText(L"Quit");
  EXPECT_TRUE(editor_.trvMenu_KeyDown(40, 1));  // already last: nothing
  EXPECT_FALSE(editor_.Dirty());
  editor_.trvMenu_KeyDown(38, 1);
  editor_.trvMenu_KeyDown(38, 1);
  editor_.trvMenu_KeyDown(38, 1);  // already first
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Quit File(Open Save) Edit(Copy))");
  EXPECT_EQ(view_.fields[0], L"Quit");
  view_.SelectText(L"Open");
  editor_.trvMenu_KeyDown(40, 1);
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Quit File(Save Open) Edit(Copy))");
  EXPECT_TRUE(editor_.Dirty());
}

TEST_F(MenuEditorTest, DirtyFlagAcrossApplyOkCancelAndClose) {
  Open();
  EXPECT_TRUE(editor_.Form_QueryUnload());  // nothing changed: no question
  view_.SelectText(L"Quit");
  editor_.trvMenu_KeyDown(38, 1);
  prompts_.answers = {mb::kIdCancel};
  editor_.cmdCancel_Click();
  EXPECT_FALSE(editor_.Form_QueryUnload());  // Cancel keeps the window and the edit
  EXPECT_EQ(prompts_.asked.back().text, L"Save changes?");
  EXPECT_EQ(prompts_.asked.back().style, 35u);
  prompts_.answers = {mb::kIdNo};
  EXPECT_TRUE(editor_.Form_QueryUnload());
  EXPECT_EQ(Saved(), L"File\n  Open\n  Save\nEdit\n  Copy\nQuit\n");
  prompts_.answers = {mb::kIdYes};
  EXPECT_TRUE(editor_.Form_QueryUnload());
  EXPECT_EQ(Saved(), L"File\n  Open\n  Save\nQuit\nEdit\n  Copy\n");
  editor_.trvMenu_KeyDown(38, 1);
  editor_.cmdApply_Click();
  EXPECT_TRUE(editor_.Form_QueryUnload());  // Apply, then Cancel: no question
}

TEST_F(MenuEditorTest, PreviewChoiceSelectsTheItem) {
  Open();
  view_.previewAnswer = 257;  // "Open"
  editor_.mnuPreview_Click();
  EXPECT_EQ(view_.fields[0], L"Open");
  EXPECT_TRUE(view_.nameFocused);
  view_.nameFocused = false;
  view_.previewAnswer = 0;
  editor_.mnuPreview_Click();
  EXPECT_FALSE(view_.nameFocused);
}

TEST_F(MenuEditorTest, DamagedFileIsReportedAndKept) {
  std::string bytes = dir_.Read(L"Set\\notepad\\Command.mnu");
  dir_.Write(L"Set\\notepad\\Command.mnu", bytes.substr(0, bytes.size() - 3));
  prompts_.answers = {mb::kIdOk};
  Open();
  EXPECT_TRUE(prompts_.asked.empty());  // not before the window is shown
  editor_.Form_Activate();
  editor_.Form_Activate();
  ASSERT_EQ(prompts_.asked.size(), 1u);
  EXPECT_NE(prompts_.asked[0].text.find(MenuFile() + L" is damaged"), std::wstring::npos);
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Edit(Copy))");
  std::filesystem::create_directory(dir_.Fs() / "Set" / "notepad" / "Command.mnu.bak");
  prompts_.answers = {mb::kIdOk};
  editor_.cmdApply_Click();
  EXPECT_EQ(prompts_.asked.back().text, L"The menu could not be saved to " + MenuFile() +
                                            L".\r\nThe damaged original could not be kept as " + MenuFile() +
                                            L".bak. Is a directory\r\nThe file was not changed.");
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu"), bytes.substr(0, bytes.size() - 3));
  std::filesystem::remove(dir_.Fs() / "Set" / "notepad" / "Command.mnu.bak");
  editor_.cmdApply_Click();
  editor_.cmdApply_Click();
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu.bak"), bytes.substr(0, bytes.size() - 3));
  Open();  // saved whole: nothing to report
  editor_.Form_Activate();
  EXPECT_EQ(prompts_.asked.size(), 2u);
}

TEST_F(MenuEditorTest, AFailedSaveKeepsTheWindowAndTheEdits) {
  Open();
  view_.SelectText(L"Quit");
  editor_.trvMenu_KeyDown(38, 1);
  std::filesystem::remove_all(dir_.Fs() / "Set" / "notepad");
  prompts_.answers = {mb::kIdOk};
  editor_.cmdOK_Click();
  EXPECT_FALSE(view_.closed);
  EXPECT_TRUE(editor_.Dirty());
  EXPECT_NE(prompts_.asked.back().text.find(L"could not be saved"), std::wstring::npos);
}

TEST_F(MenuEditorTest, LostBrailleCodesAreAFailedSave) {
  WriteMenu({{L"Quit", L"QuitIt", 0x40000005}}, {0});
  session_.gCmdDisplayName = L"Focus 40";
  test::RefusingProfile refusing(page_, L"QuitIt");
  cDefServer defs(page_, refusing, L"");
  fMenuDef editor(view_, prompts_,
                  MenuEditorServices{session_, info_, defs, refusing, menus_, braille_, &opener_, nullptr});
  editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
  prompts_.answers = {mb::kIdOk};
  editor.cmdOK_Click();
  EXPECT_FALSE(view_.closed);
  ASSERT_FALSE(prompts_.asked.empty());
  // The file and, on a line of its own, why.
  const std::wstring said = prompts_.asked.back().text,
                     head = L"The menu could not be saved to " + dir_.Path(L"Set\\notepad\\Focus 40.ini") + L".\r\n",
                     tail = L"\r\nThe file was not changed.";
  EXPECT_EQ(said.substr(0, head.size()), head);
  EXPECT_GT(said.size(), head.size() + tail.size());
  EXPECT_EQ(said.substr(said.size() - tail.size()), tail);
}

// Stands in for the item wizard: renames the item, or is cancelled.
class RenamingWizard : public IItemWizard {
 public:
  std::wstring newCaption;
  bool finish = true;
  std::vector<std::wstring> seen;
  std::optional<ItemFields> Describe(const ItemFields& item, bool isNew, const cMenuItem*, const cMenuItem*) override {
    seen.push_back((isNew ? L"new " : L"edit ") + item.Caption);
    if (!finish) return std::nullopt;
    ItemFields renamed = item;
    renamed.Caption = newCaption;
    return renamed;
  }
};

TEST_F(MenuEditorTest, NewAndEditGoThroughTheWizard) {
  RenamingWizard wizard;
  fMenuDef editor(view_, prompts_,
                  MenuEditorServices{session_, info_, defs_, profile_, menus_, braille_, nullptr, &wizard});
  editor.Form_Load();
  editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);

  view_.SelectText(L"Save");
  wizard.newCaption = L"Save as";
  EXPECT_TRUE(editor.trvMenu_KeyDown(13, 4));  // Alt+Enter
  wizard.finish = false;
  editor.mnuTreeEdit_Click();  // cancelled: nothing changes
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save as) Edit(Copy) Quit)");
  EXPECT_EQ(view_.fields[0], L"Save as");

  wizard.finish = true;
  wizard.newCaption = L"Print";
  prompts_.answers = {mb::kIdNo};  // "Save as subitem?" No: after the selected item
  EXPECT_TRUE(editor.trvMenu_KeyDown('N', 2));
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save as Print) Edit(Copy) Quit)");
  EXPECT_EQ(wizard.seen, (std::vector<std::wstring>{L"edit Save", L"edit Save as", L"new New item"}));
  EXPECT_TRUE(editor.Dirty());

  // In an empty menu the first new item makes the top node and goes under it unasked.
  std::filesystem::remove(dir_.Fs() / "Set" / "notepad" / "Command.mnu");
  editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
  editor.mnuNew_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Print)");
  EXPECT_TRUE(view_.enabled[EditorCommand::Preview]);
}

// A tree control and a pop-up menu hold 25 levels of items: a deeper file is
// not opened and never written; a paste or new item is not put deeper.
TEST_F(MenuEditorTest, MenusAreAtMost25LevelsDeep) {
  RenamingWizard wizard;
  fMenuDef editor(view_, prompts_,
                  MenuEditorServices{session_, info_, defs_, profile_, menus_, braille_, nullptr, &wizard});
  editor.Form_Load();
  std::vector<std::wstring> captions;
  std::vector<Spec> items;
  std::vector<int> levels;
  for (int level = 0; level < 26; ++level) captions.push_back(L"L" + std::to_wstring(level + 1));
  for (int level = 0; level < 26; ++level) {
    items.push_back({captions[static_cast<size_t>(level)].c_str(), L"", 0});
    levels.push_back(level);
  }
  WriteMenu(items, levels);
  const std::string bytes = dir_.Read(L"Set\\notepad\\Command.mnu");
  session_.gCmdScriptPath = L"a.vbs";
  editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_TRUE(prompts_.asked.empty());
  prompts_.answers = {mb::kIdOk};
  editor.Form_Activate();
  ASSERT_EQ(prompts_.asked.size(), 1u);
  EXPECT_EQ(prompts_.asked[0].text.rfind(L"The menu file " + MenuFile() + L" has items nested more than 25 levels", 0),
            0u);
  EXPECT_TRUE(view_.closed);
  editor.trvMenu_GotFocus();  // the script waits for the next menu
  editor.mnuNew_Click();
  EXPECT_TRUE(wizard.seen.empty());
  EXPECT_EQ(session_.gCmdScriptPath, L"a.vbs");
  session_.gCmdScriptPath.clear();
  editor.cmdApply_Click();
  EXPECT_TRUE(editor.Form_QueryUnload());
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu"), bytes);

  items.pop_back();
  levels.pop_back();
  WriteMenu(items, levels);
  editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
  EXPECT_EQ(view_.NodeCount(), 26);
  wizard.newCaption = L"Fresh";
  const std::wstring tooDeep = L"cannot go there: the menu would have more than 25 levels";
  const struct {
    const wchar_t *copy, *target;
    EditorCommand command;
    std::vector<int> answers;
    int told;     // how many of the messages said it was too deep
    bool pasted;  // under L24: after L25 or as its first child
  } cases[] = {
      {L"L25", L"L25", EditorCommand::PasteAsChild, {mb::kIdOk}, 1, false},
      {L"L24", L"L25", EditorCommand::Paste, {mb::kIdOk}, 1, false},  // refused before asking
      {L"L25", L"L25", EditorCommand::Paste, {mb::kIdYes, mb::kIdOk, mb::kIdNo}, 1, true},
      {nullptr, L"L25", EditorCommand::New, {mb::kIdYes, mb::kIdOk, mb::kIdNo}, 1, true},
      {L"L25", L"L24", EditorCommand::PasteAsChild, {}, 0, true},
  };
  for (const auto& c : cases) {
    editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
    prompts_.asked.clear();
    prompts_.answers.assign(c.answers.begin(), c.answers.end());
    if (c.copy) {
      view_.SelectText(c.copy);
      editor.mnuTreeCopy_Click();
    }
    view_.SelectText(c.target);
    editor.Run(c.command);
    EXPECT_EQ(std::count_if(prompts_.asked.begin(), prompts_.asked.end(),
                            [&](const auto& a) { return a.text.find(tooDeep) != std::wstring::npos; }),
              c.told)
        << WideToUtf8(c.target);
    EXPECT_EQ(view_.NodeCount(), c.pasted ? 27 : 26) << WideToUtf8(c.target);
    if (c.pasted) {
      EXPECT_EQ(view_.NodeText(view_.Find(*view_.selected)->parent), L"L24");
    }
  }
}

TEST_F(MenuEditorTest, ListDefsRendersTheHelpSection) {
  WriteMenu({{L"Read", L"", 0},
             {L"Line", L"SayLine", 0x00030074},
             {L"Deeper", L"", 0},
             {L"Word", L"SayWord", 0},
             {L"Tips", L"shell(notepad $(appsetdir)\\TIPS.txt)", 0},
             {L"Tipy", L"shell(tips tipy)", 0}},
            {0, 1, 1, 2, 0, 0});
  EXPECT_EQ(editor_.ListDefs(dir_.Path(L"Set"), L"notepad", false),
            L"<H3>notepad</H3>\r\n"
            L"<UL><LI>Read</LI>\r\n"
            L"<UL><LI>Line ( C+S+key(116) ) </LI>\r\n"
            L"<LI>Deeper</LI>\r\n"
            L"<UL><LI>Word</LI>\r\n"
            L"</UL></UL><LI><A href=\"..\\..\\set\\notepad\\tips.txt\">Tips</A></LI>\r\n"
            L"<LI><A href=\"..\\..\\set\\notepad\\tipy.txt\">Tipy</A></LI>\r\n"
            L"</UL>");
  EXPECT_EQ(editor_.ListDefs(dir_.Path(L"Set"), L"nothing", false), L"");
}

}  // namespace
}  // namespace nx
