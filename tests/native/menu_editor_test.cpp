// The menu editor's logic through a fake view, scripted questions and a
// stand-in for the item wizard.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <set>
#include <vector>

#include "braille/braille_opener.h"
#include "fake_koral.h"
#include "menu/menu_editor.h"
#include "platform/folders.h"
#include "platform/string_table.h"
#include "platform/text.h"
#include "refusing_profile.h"
#include "startup/settings.h"
#include "temp_folder.h"

namespace nx {
namespace {

// A tree view in memory: nodes in insertion order with their parents.
class FakeEditorView : public IMenuEditorView {
 public:
  struct Node {
    std::wstring key, parent, text;
    bool expanded;
  };
  std::vector<Node> nodes;
  std::optional<std::wstring> selected;
  std::wstring title;
  std::array<std::wstring, 3> fields;  // name, command, hot key
  std::map<EditorCommand, bool> enabled;
  std::map<EditorCommand, std::wstring> commandTexts;
  bool applyEnabled = false, closed = false, nameFocused = false;
  int menusOpened = 0, previewAnswer = 0;

  void SetTitle(const std::wstring& text) override { title = text; }
  void SetText(EditorText, const std::wstring&) override {}
  void SetCommandText(EditorCommand c, const std::wstring& text) override { commandTexts[c] = text; }
  void EnableCommand(EditorCommand c, bool on) override { enabled[c] = on; }
  void EnableApply(bool on) override { applyEnabled = on; }
  void BeginTreeUpdate() override {}
  void EndTreeUpdate() override {}
  void ClearTree() override { nodes.clear(), selected.reset(); }
  void AddNode(const std::wstring& key, const std::wstring& parent, const std::wstring& text, bool expanded) override {
    nodes.push_back({key, parent, text, expanded});
  }
  int NodeCount() const override { return static_cast<int>(nodes.size()); }
  std::optional<std::wstring> SelectedNode() const override { return selected; }
  void SelectNode(const std::wstring& key) override { selected = key; }
  std::wstring NodeText(const std::wstring& key) const override { return Find(key) ? Find(key)->text : L""; }
  void SetFields(const std::wstring& a, const std::wstring& b, const std::wstring& c) override { fields = {a, b, c}; }
  void FocusNameField() override { nameFocused = true; }
  void OpenItemMenu() override { ++menusOpened; }
  int TrackPreview(NativeMenu) override { return previewAnswer; }
  void Close() override { closed = true; }

  const Node* Find(const std::wstring& key) const {
    auto it = std::find_if(nodes.begin(), nodes.end(), [&](const Node& n) { return n.key == key; });
    return it == nodes.end() ? nullptr : &*it;
  }
  // "text(children)" of the tree as shown.
  std::wstring Shape(const std::wstring& parent = L"") const {
    std::wstring out;
    for (const auto& n : nodes) {
      const std::wstring inner = n.parent == parent ? Shape(n.key) : L"";
      if (n.parent == parent) out += (out.empty() ? L"" : L" ") + n.text + (inner.empty() ? L"" : L"(" + inner + L")");
    }
    return out;
  }
  void SelectText(const std::wstring& text) {
    for (const auto& n : nodes)
      if (n.text == text) selected = n.key;
  }
};

class ScriptedPrompts : public IPrompts {
 public:
  struct Asked {
    std::wstring text;
    unsigned style;
  };
  std::deque<int> answers;
  std::vector<Asked> asked;
  int Message(const std::wstring& text, unsigned style, const std::wstring&) override {
    asked.push_back({text, style});
    if (answers.empty()) ADD_FAILURE() << "unexpected question: " << WideToUtf8(text);
    const int answer = answers.empty() ? mb::kIdCancel : answers.front();
    if (!answers.empty()) answers.pop_front();
    return answer;
  }
};

class NullMenus : public INativeMenus {
 public:
  NativeMenu CreatePopup() override { return 1; }
  void AppendPopup(NativeMenu, NativeMenu, const std::wstring&) override {}
  void AppendCommand(NativeMenu, int, const std::wstring&) override {}
  void Destroy(NativeMenu) override {}
};

// Stands in for the item wizard: gives back its own fields, or nothing when
// cancelled, and remembers what it was given.
class FakeWizard : public IItemWizard {
 public:
  std::vector<std::wstring> seen;
  bool finish = true;
  std::optional<ItemFields> Describe(const ItemFields& item, bool isNew, const cMenuItem*, const cMenuItem*) override {
    seen.push_back((isNew ? L"new " : L"edit ") + item.Caption + L"|" + item.Action + L"|" +
                   std::to_wstring(item.HotKey) + (item.Discard ? L"|discard" : L""));
    if (!finish) return std::nullopt;
    return ItemFields{L"Typed", L"SayTime", 0x00020043, !item.Discard};
  }
};

using C = EditorCommand;
constexpr int Yes = mb::kIdYes, No = mb::kIdNo, Ok = mb::kIdOk;
constexpr const wchar_t* kStart = L"File(Open Save) Edit(Copy) Quit";
constexpr const wchar_t* kTop = L"Application (notepad)";

// File(Open, Save) Edit(Copy) Quit in "notepad", where Open has a command
// and a hot key and Quit only a hot key.
class MenuEditorTest : public ::testing::Test {
 protected:
  MenuEditorTest() {
    std::filesystem::create_directories(dir_.Fs() / "Set" / "notepad");
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
    info_.Inicialize(nullptr);
    defs_.SetFolder(dir_.Path(L"Set\\"));
    WriteMenu({{L"File", L"", 0, 0},
               {L"Open", L"shell(open.vbs)", 0x123, 1},
               {L"Save", L"SaveIt", 0, 1},
               {L"Edit", L"", 0, 0},
               {L"Copy", L"CopyIt", 0, 1},
               {L"Quit", L"", 0x00020051, 0}});
    Restart(&wizard_);
  }

  struct ItemRow {
    std::wstring caption, action;
    int32_t hotKey;
    size_t level;
  };
  void WriteMenu(const std::vector<ItemRow>& items) {
    auto root = cMenuItem::New();
    std::vector<cMenuItem*> parents{root.get()};
    for (const ItemRow& row : items) {
      parents.resize(row.level + 1);
      auto item = parents.back()->SubItems.Add(1, parents.back(), cMenuItem::New());
      item->SetFields({row.caption, row.action, row.hotKey});
      parents.push_back(item.get());
    }
    ASSERT_TRUE(cMenuFile(defs_.CodePage(), defs_.Profile()).FlushCommand2Def(MenuFile(), L"", *root));
  }
  std::wstring MenuFile() const { return dir_.Path(L"Set\\notepad\\Command.mnu"); }
  // A new editor, without a clipboard, on the menu.
  void Restart(IItemWizard* wizard) {
    editor_ = std::make_unique<fMenuDef>(
        view_, prompts_, MenuEditorServices{session_, info_, defs_, profile_, menus_, braille_, &opener_, wizard});
    editor_->Form_Load();
    Open();
  }
  void Open() { editor_->LoadDefs(dir_.Path(L"Set"), L"notepad", false); }
  void Click(const std::wstring& text) {
    view_.SelectText(text);
    if (view_.selected) editor_->trvMenu_NodeClick(*view_.selected);
  }
  // The tree under the top node.
  std::wstring Tree() const {
    const std::wstring shape = view_.Shape(), top = kTop + std::wstring(L"(");
    return shape.rfind(top, 0) == 0 ? shape.substr(top.size(), shape.size() - top.size() - 1) : shape;
  }
  std::wstring Selected() const { return view_.selected ? view_.NodeText(*view_.selected) : L"(none)"; }
  static const cMenuItem* Find(const cMenuItem& in, const std::wstring& caption) {
    for (const auto& child : in.SubItems) {
      if (child->Caption == caption) return child.get();
      if (const cMenuItem* found = Find(*child, caption)) return found;
    }
    return nullptr;
  }
  // The saved menu as Tree() shows it.
  static std::wstring Outline(const cMenuItem& in) {
    std::wstring out;
    for (const auto& c : in.SubItems)
      out += (out.empty() ? L"" : L" ") + c->Caption + (c->SubItems.Count() ? L"(" + Outline(*c) + L")" : L"");
    return out;
  }
  std::wstring Saved() { return Outline(*cMenuFile(defs_.CodePage(), profile_).InitCommandDef(MenuFile(), L"")); }

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
  FakeWizard wizard_;
  std::unique_ptr<fMenuDef> editor_;
};

// The display's own description names its profile, unless the command line
// named one; the display is opened only when braille is switched on, and once.
TEST_F(MenuEditorTest, TheDisplayNamesItsProfile) {
  const struct {
    const char* setting;
    const wchar_t *commandLine, *name;
    bool opened;
  } cases[] = {
      {"[Braille]\r\nBrailleActive=1\r\n", L"", L"Focus 40", true},
      {"[Braille]\r\nBrailleActive=1\r\n", L"Other", L"Other", true},
      {"[Braille]\r\nBrailleActive=0\r\n", L"", L"", false},
      {"", L"", L"", false},
  };
  for (const auto& c : cases) {
    dir_.Write(L"Set\\setting.ini", c.setting);
    session_.gBrailleName.clear();
    session_.gCmdDisplayName = c.commandLine;
    braille_.reset();
    koral_.koral.log.clear();
    Open();
    EXPECT_EQ(session_.gBrailleName, c.name) << c.setting;
    Open();
    EXPECT_EQ(koral_.koral.log.size(), c.opened ? 5u : 0u) << koral_.koral.Log();
  }
}

TEST_F(MenuEditorTest, LoadingShowsTheTree) {
  EXPECT_EQ(view_.title, L"Menu - notepad");
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(File(Open Save) Edit(Copy) Quit)");
  EXPECT_EQ(view_.nodes[1].key, L"k256");
  EXPECT_TRUE(view_.Find(L"k256")->expanded);
  EXPECT_FALSE(view_.Find(L"k257")->expanded);
  EXPECT_EQ(view_.selected, view_.nodes[0].key);
  EXPECT_EQ(view_.fields[0], kTop);
  EXPECT_TRUE(view_.enabled[C::Preview]);
  EXPECT_FALSE(editor_->Dirty());
  Click(L"Open");
  EXPECT_EQ(view_.fields[1], L"shell(open.vbs)");
  EXPECT_EQ(view_.fields[2], L"key(291)");

  std::filesystem::remove(ToFsPath(MenuFile()));
  Open();
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_FALSE(view_.enabled[C::Preview]);
  editor_->LoadDefs(dir_.Path(L"Set"), L"app %1", true);  // no general menu file
  EXPECT_EQ(view_.title, L"Menu - app %1");
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_TRUE(prompts_.asked.empty());
}

TEST_F(MenuEditorTest, CopyAndPasteAsNextTwiceMakesIndependentCopies) {
  Click(L"File");
  editor_->mnuTreeCopy_Click();
  Click(L"Quit");
  editor_->mnuTreePasteAsNext_Click();
  editor_->mnuTreePasteAsNext_Click();  // the clipboard stays
  EXPECT_EQ(Tree(), L"File(Open Save) Edit(Copy) Quit File(Open Save) File(Open Save)");
  EXPECT_EQ(view_.fields[0], L"File");  // the pasted copy is selected and shown
  EXPECT_TRUE(view_.applyEnabled);
  std::set<std::wstring> keys;  // fresh numbers: every key once
  for (const auto& n : view_.nodes) keys.insert(n.key);
  EXPECT_EQ(keys.size(), view_.nodes.size());
  editor_->cmdApply_Click();
  EXPECT_FALSE(editor_->Dirty());
  EXPECT_EQ(Saved(), L"File(Open Save) Edit(Copy) Quit File(Open Save) File(Open Save)");
}

// Keys in the tree: each step selects an item, presses a key and answers.
TEST_F(MenuEditorTest, KeysRunTheCommands) {
  const struct {
    const wchar_t* at;
    int key, shift;
    std::vector<int> answers;
    bool handled, dirty;
    const wchar_t *tree, *selected;
  } steps[] = {
      {L"Open", 121, 0, {}, false, false, kStart, L"Open"},  // F10 alone is the menu bar's
      {L"Open", 121, 1, {}, true, false, kStart, L"Open"},   // Shift+F10: the item menu
      {L"Open", 93, 0, {}, true, false, kStart, L"Open"},    // the menu key
      {L"Quit", 40, 1, {}, true, false, kStart, L"Quit"},    // already last
      {L"Quit", 38, 1, {}, true, true, L"File(Open Save) Quit Edit(Copy)", L"Quit"},
      {L"Quit", 38, 1, {}, true, true, L"Quit File(Open Save) Edit(Copy)", L"Quit"},
      {L"Quit", 38, 1, {}, true, true, L"Quit File(Open Save) Edit(Copy)", L"Quit"},  // already first
      {L"Open", 40, 1, {}, true, true, L"Quit File(Save Open) Edit(Copy)", L"Open"},
      {L"Open", 'X', 2, {}, true, true, L"Quit File(Save Open) Edit(Copy)", L"Open"},
      {L"Copy", 'V', 2, {No}, true, true, L"Quit File(Save) Edit(Copy Open)", L"Open"},
      {L"Save", 'C', 2, {}, true, true, L"Quit File(Save) Edit(Copy Open)", L"Save"},
      {L"Quit", 'V', 2, {No}, true, true, L"Quit Save File(Save) Edit(Copy Open)", L"Save"},
      {L"Copy", 46, 0, {Yes}, true, true, L"Quit Save File(Save) Edit(Open)", L"Open"},
      {L"Open", 13, 4, {}, true, true, L"Quit Save File(Save) Edit(Typed)", L"Typed"},  // Alt+Enter
      {L"Quit", 'N', 2, {No}, true, true, L"Quit Typed Save File(Save) Edit(Typed)", L"Typed"},
  };
  for (const auto& s : steps) {
    Click(s.at);
    prompts_.answers.assign(s.answers.begin(), s.answers.end());
    EXPECT_EQ(editor_->trvMenu_KeyDown(s.key, s.shift), s.handled) << s.key;
    EXPECT_EQ(editor_->Dirty(), s.dirty) << s.key;
    EXPECT_EQ(Tree(), s.tree) << s.key;
    EXPECT_EQ(Selected(), s.selected) << s.key;
    EXPECT_EQ(view_.fields[0], s.selected) << s.key;
    EXPECT_TRUE(prompts_.answers.empty()) << s.key;
  }
  EXPECT_EQ(view_.menusOpened, 2);
}

TEST_F(MenuEditorTest, TheItemMenuFollowsTheSelectionAndTheClipboard) {
  const struct {
    const wchar_t *held, *at;
    bool wizard;
    const wchar_t* enabled;
  } cases[] = {
      {nullptr, L"Edit", true, L"New Edit Copy Cut Up Down"},
      {L"Save", L"Edit", true, L"New Edit Copy Cut Paste Next Child Up Down"},
      {L"Save", kTop, true, L"New Paste Child"},
      {kTop, L"Quit", true, L"New Edit Copy Cut Up"},  // the top node is not copied
      {nullptr, L"File", false, L"Copy Cut Down"},     // no wizard: no New, no Edit
  };
  // In the order of EditorCommand; Delete is always there.
  const wchar_t* names[] = {L"New", L"Edit", L"Copy", L"Cut", L"Paste", L"Next", L"Child", L"", L"Up", L"Down"};
  for (const auto& c : cases) {
    Restart(c.wizard ? &wizard_ : nullptr);
    if (c.held) {
      view_.SelectText(c.held);
      editor_->mnuTreeCopy_Click();
    }
    view_.SelectText(c.at);
    editor_->OpenContextMenu();
    std::wstring enabled;
    for (int i = 0; i < 10; ++i)
      if (view_.enabled[static_cast<C>(i)]) enabled += (enabled.empty() ? L"" : L" ") + std::wstring(names[i]);
    EXPECT_EQ(enabled, c.enabled) << WideToUtf8(c.at);
    EXPECT_EQ(view_.commandTexts[C::PasteAsNext], L"Paste As Ne&xt (" + std::wstring(c.at) + L")");
    EXPECT_EQ(view_.commandTexts[C::PasteAsChild], L"Paste As C&hild (" + std::wstring(c.at) + L")");
  }
  EXPECT_EQ(view_.menusOpened, 5);
}

// Paste asks "Save as subitem?" except on the top node; an item with a
// command or a hot key becomes a pull-down only if the user agrees. With no
// selection a paste goes under the top node; with nothing held nothing happens.
TEST_F(MenuEditorTest, PlacingAsksWhereAndAboutPullDowns) {
  const struct {
    const wchar_t* held;  // cut or copied first; null: a new item
    bool cut;
    const wchar_t* at;  // null: nothing selected
    EditorCommand command;
    std::vector<int> answers;
    const wchar_t* tree;
    bool bare;  // `at` has neither command nor hot key afterwards
  } cases[] = {
      {L"Quit", true, L"Open", C::Paste, {mb::kIdCancel}, kStart, false},
      {L"Quit", true, L"Open", C::Paste, {Yes, No}, kStart, false},
      {L"Quit", true, L"Open", C::Paste, {Yes, Yes}, L"File(Open(Quit) Save) Edit(Copy)", true},
      {L"Quit", true, kTop, C::Paste, {}, L"Quit File(Open Save) Edit(Copy)", true},
      {L"Quit", false, nullptr, C::PasteAsNext, {}, kStart, true},
      {L"Quit", false, nullptr, C::Paste, {}, L"Quit File(Open Save) Edit(Copy) Quit", true},
      {L"Quit", false, nullptr, C::PasteAsChild, {}, L"Quit File(Open Save) Edit(Copy) Quit", true},
      {kTop, false, L"Quit", C::Paste, {}, kStart, false},
      {kTop, true, L"Quit", C::PasteAsNext, {}, kStart, false},
      {nullptr, false, L"Quit", C::New, {Yes, Yes}, L"File(Open Save) Edit(Copy) Quit(Typed)", true},
      {nullptr, false, L"Edit", C::New, {Yes}, L"File(Open Save) Edit(Typed Copy) Quit", true},
      {nullptr, false, nullptr, C::New, {}, L"Typed File(Open Save) Edit(Copy) Quit", true},
  };
  for (const auto& c : cases) {
    const std::wstring at = c.at ? c.at : L"(none)";
    Restart(&wizard_);
    prompts_.asked.clear();
    prompts_.answers.assign(c.answers.begin(), c.answers.end());
    if (c.held) {
      view_.SelectText(c.held);
      editor_->Run(c.cut ? C::Cut : C::Copy);
    }
    view_.selected.reset();
    if (c.at) view_.SelectText(c.at);
    editor_->Run(c.command);
    EXPECT_EQ(Tree(), c.tree) << WideToUtf8(at);
    EXPECT_EQ(editor_->Dirty(), Tree() != kStart) << WideToUtf8(at);
    ASSERT_EQ(prompts_.asked.size(), c.answers.size()) << WideToUtf8(at);
    if (!c.answers.empty()) {
      EXPECT_EQ(prompts_.asked[0].text, L"Save as subitem?");
      EXPECT_EQ(prompts_.asked[0].style, mb::kYesNoCancel | mb::kIconQuestion | mb::kDefaultButton2);
    }
    if (c.answers.size() > 1) {
      EXPECT_EQ(prompts_.asked[1].text.rfind(L"Item " + at + L" contains action and/or hotkey\r\n\r\n", 0), 0u);
      EXPECT_EQ(prompts_.asked[1].style, mb::kYesNo | mb::kIconQuestion | mb::kDefaultButton2);
    }
    const cMenuItem* target = c.at ? Find(*editor_->Root(), c.at) : nullptr;
    EXPECT_EQ(target && (!target->Action.empty() || target->HotKey != 0), !c.bare) << WideToUtf8(at);
  }
}

// Refused with a message that names it, before "Save as subitem?".
TEST_F(MenuEditorTest, ACutItemCannotGoIntoItsOwnSubtree) {
  Click(L"File");
  editor_->mnuTreeCut_Click();
  prompts_.answers.assign(6, Ok);
  for (const wchar_t* target : {L"File", L"Save"}) {
    view_.SelectText(target);
    for (EditorCommand c : {C::Paste, C::PasteAsChild, C::PasteAsNext}) editor_->Run(c);
  }
  EXPECT_EQ(Tree(), kStart);
  EXPECT_FALSE(editor_->Dirty());
  ASSERT_EQ(prompts_.asked.size(), 6u);
  for (const auto& asked : prompts_.asked) {
    EXPECT_EQ(asked.text, L"The cut item File cannot be pasted into itself or below itself. Nothing was pasted.");
    EXPECT_EQ(asked.style, mb::kOkOnly | mb::kIconExclamation);
  }
  view_.SelectText(L"Quit");  // elsewhere it moves
  editor_->mnuTreePasteAsNext_Click();
  EXPECT_EQ(Tree(), L"Edit(Copy) Quit File(Open Save)");
}

// Afterwards the next sibling, else the previous one, else the parent is
// selected and shown; a script named after the item goes with it if wanted.
TEST_F(MenuEditorTest, DeleteAsksAndCleansUpScripts) {
  dir_.Write(L"Set\\notepad\\Open.vbs", "x");
  dir_.Write(L"Set\\notepad\\Open.frm", "x");
  const struct {
    const wchar_t* item;
    std::vector<int> answers;
    bool all;  // asked about its subitems too
    const wchar_t *tree, *selected;
  } steps[] = {
      {L"Edit", {No}, true, kStart, L"Edit"},
      {L"Open", {Yes, Yes}, false, L"File(Save) Edit(Copy) Quit", L"Save"},
      {L"Quit", {Yes}, false, L"File(Save) Edit(Copy)", L"Edit"},
      {L"Save", {Yes}, false, L"File Edit(Copy)", L"File"},
      {L"Edit", {Yes}, true, L"File", L"File"},
  };
  for (const auto& step : steps) {
    prompts_.asked.clear();
    prompts_.answers.assign(step.answers.begin(), step.answers.end());
    Click(step.item);
    editor_->mnuTreeDelete_Click();
    ASSERT_FALSE(prompts_.asked.empty());
    EXPECT_EQ(prompts_.asked[0].text,
              L"Are you sure to remove the item " + std::wstring(step.item) + (step.all ? L" and its subitems?" : L""));
    EXPECT_EQ(prompts_.asked[0].style, mb::kYesNo | mb::kIconQuestion);
    EXPECT_EQ(Tree(), step.tree);
    EXPECT_EQ(Selected(), step.selected) << WideToUtf8(step.item);
    EXPECT_EQ(view_.fields[0], step.selected) << WideToUtf8(step.item);
  }
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "Set" / "notepad" / "Open.vbs"));
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "Set" / "notepad" / "Open.frm"));

  prompts_.answers = {Yes};
  view_.selected = view_.nodes[0].key;
  editor_->mnuTreeDelete_Click();
  EXPECT_EQ(prompts_.asked.back().text, L"This action will completely remove the definion file.");
  EXPECT_EQ(prompts_.asked.back().style, mb::kYesNo | mb::kIconQuestion | mb::kDefaultButton2);
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_FALSE(view_.enabled[C::Preview]);
  editor_->cmdOK_Click();  // no tree: the file goes
  EXPECT_FALSE(std::filesystem::exists(ToFsPath(MenuFile())));
  EXPECT_TRUE(view_.closed);
}

TEST_F(MenuEditorTest, DirtyFlagAcrossApplyOkCancelAndClose) {
  EXPECT_TRUE(editor_->Form_QueryUnload());  // nothing changed: no question
  view_.SelectText(L"Quit");
  editor_->MoveSelected(false);
  prompts_.answers = {mb::kIdCancel};
  editor_->cmdCancel_Click();
  EXPECT_FALSE(editor_->Form_QueryUnload());  // Cancel keeps the window and the edit
  EXPECT_EQ(prompts_.asked.back().text, L"Save changes?");
  EXPECT_EQ(prompts_.asked.back().style, mb::kYesNoCancel | mb::kIconQuestion);
  prompts_.answers = {No};
  EXPECT_TRUE(editor_->Form_QueryUnload());
  EXPECT_EQ(Saved(), kStart);
  prompts_.answers = {Yes};
  EXPECT_TRUE(editor_->Form_QueryUnload());
  EXPECT_EQ(Saved(), L"File(Open Save) Quit Edit(Copy)");
  editor_->MoveSelected(false);
  editor_->cmdApply_Click();
  EXPECT_TRUE(editor_->Form_QueryUnload());  // Apply, then Cancel: no question
}

TEST_F(MenuEditorTest, PreviewChoiceSelectsTheItem) {
  view_.previewAnswer = 257;  // "Open"
  editor_->mnuPreview_Click();
  EXPECT_EQ(view_.fields[0], L"Open");
  EXPECT_TRUE(view_.nameFocused);
  view_.nameFocused = false;
  view_.previewAnswer = 0;
  editor_->mnuPreview_Click();
  EXPECT_FALSE(view_.nameFocused);
}

TEST_F(MenuEditorTest, DamagedFileIsReportedAndKept) {
  const std::string bytes = dir_.Read(L"Set\\notepad\\Command.mnu"), damaged = bytes.substr(0, bytes.size() - 3);
  dir_.Write(L"Set\\notepad\\Command.mnu", damaged);
  prompts_.answers = {Ok};
  Open();
  EXPECT_TRUE(prompts_.asked.empty());  // not before the window is shown
  editor_->Form_Activate();
  editor_->Form_Activate();
  ASSERT_EQ(prompts_.asked.size(), 1u);
  EXPECT_NE(prompts_.asked[0].text.find(MenuFile() + L" is damaged"), std::wstring::npos);
  EXPECT_EQ(Tree(), L"File(Open Save) Edit(Copy)");
  std::filesystem::create_directory(dir_.Fs() / "Set" / "notepad" / "Command.mnu.bak");
  prompts_.answers = {Ok};
  editor_->cmdApply_Click();
  EXPECT_EQ(prompts_.asked.back().text, L"The menu could not be saved to " + MenuFile() +
                                            L".\r\nThe damaged original could not be kept as " + MenuFile() +
                                            L".bak. Is a directory\r\nThe file was not changed.");
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu"), damaged);
  std::filesystem::remove(dir_.Fs() / "Set" / "notepad" / "Command.mnu.bak");
  editor_->cmdApply_Click();
  editor_->cmdApply_Click();
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu.bak"), damaged);
  Open();  // saved whole: nothing to report
  editor_->Form_Activate();
  EXPECT_EQ(prompts_.asked.size(), 2u);
}

// The window and the edits stay; the message names the file and, on a line
// of its own, why.
TEST_F(MenuEditorTest, AFailedSaveKeepsTheWindowAndTheEdits) {
  view_.SelectText(L"Quit");
  editor_->MoveSelected(false);
  std::filesystem::remove_all(dir_.Fs() / "Set" / "notepad");
  prompts_.answers = {Ok};
  editor_->cmdOK_Click();
  EXPECT_FALSE(view_.closed);
  EXPECT_TRUE(editor_->Dirty());
  EXPECT_NE(prompts_.asked.back().text.find(L"could not be saved"), std::wstring::npos);
  prompts_.answers = {Yes, Ok};  // "Save changes?" on closing: the window stays too
  EXPECT_FALSE(editor_->Form_QueryUnload());

  // Braille codes the profile cannot keep are a failed save too.
  std::filesystem::create_directories(dir_.Fs() / "Set" / "notepad");
  WriteMenu({{L"Quit", L"QuitIt", 0x40000005, 0}});
  session_.gBrailleName = L"Focus 40";
  test::RefusingProfile refusing(page_, L"QuitIt");
  cDefServer defs(page_, refusing, L"");
  fMenuDef editor(view_, prompts_,
                  MenuEditorServices{session_, info_, defs, refusing, menus_, braille_, &opener_, nullptr});
  editor.LoadDefs(dir_.Path(L"Set"), L"notepad", false);
  prompts_.answers = {Ok};
  editor.cmdOK_Click();
  EXPECT_FALSE(view_.closed);
  const std::wstring said = prompts_.asked.back().text,
                     head = L"The menu could not be saved to " + dir_.Path(L"Set\\notepad\\Focus 40.ini") + L".\r\n",
                     tail = L"\r\nThe file was not changed.";
  EXPECT_EQ(said.substr(0, head.size()), head);
  EXPECT_GT(said.size(), head.size() + tail.size());
  EXPECT_EQ(said.substr(said.size() - tail.size()), tail);
}

// New starts the wizard from a blank item it may discard, Edit from the
// item's fields; a cancelled wizard changes nothing.
TEST_F(MenuEditorTest, NewAndEditGoThroughTheWizard) {
  const struct {
    EditorCommand command;
    const wchar_t* at;
    bool finish;
    std::vector<int> answers;
    const wchar_t *seen, *tree;
  } cases[] = {
      {C::Edit, L"Open", false, {}, L"edit Open|shell(open.vbs)|291", kStart},
      {C::Edit, L"Edit", true, {}, L"edit Edit||0", L"File(Open Save) Typed(Copy) Quit"},
      {C::New, L"Save", false, {}, L"new New item||0|discard", kStart},
      {C::New, L"Save", true, {No}, L"new New item||0|discard", L"File(Open Save Typed) Edit(Copy) Quit"},
  };
  for (const auto& c : cases) {
    Open();
    wizard_.seen.clear();
    wizard_.finish = c.finish;
    prompts_.answers.assign(c.answers.begin(), c.answers.end());
    view_.SelectText(c.at);
    editor_->Run(c.command);
    EXPECT_EQ(wizard_.seen, std::vector<std::wstring>{c.seen});
    EXPECT_EQ(Tree(), c.tree);
    EXPECT_EQ(Selected(), c.finish ? L"Typed" : c.at);
    EXPECT_EQ(editor_->Dirty(), c.finish);
    EXPECT_EQ(prompts_.asked.size(), c.answers.size());  // no pull-down question on an edit
    prompts_.asked.clear();
  }

  // A new item leaves the clipboard alone, also when not placed.
  Click(L"Copy");
  editor_->mnuTreeCopy_Click();
  view_.SelectText(L"Save");
  prompts_.answers = {mb::kIdCancel, No};
  editor_->mnuNew_Click();
  view_.SelectText(L"Quit");
  editor_->mnuTreePaste_Click();
  EXPECT_EQ(Tree(), L"File(Open Save Typed) Edit(Copy) Quit Copy");

  // A script path on the command line starts one new item when the tree
  // first gets the focus.
  session_.gCmdScriptPath = L"$(appsetdir)\\hello.vbs";
  wizard_.seen.clear();
  prompts_.answers = {No};
  editor_->trvMenu_GotFocus();
  editor_->trvMenu_GotFocus();
  EXPECT_EQ(wizard_.seen.size(), 1u);
  EXPECT_EQ(Tree(), L"File(Open Save Typed) Edit(Copy) Quit Copy Typed");

  // In an empty menu the first new item makes the top node and goes under it unasked.
  std::filesystem::remove(ToFsPath(MenuFile()));
  Open();
  editor_->mnuNew_Click();
  EXPECT_EQ(view_.Shape(), L"Application (notepad)(Typed)");
  EXPECT_TRUE(view_.enabled[C::Preview]);
}

// A tree control and a pop-up menu hold 25 levels of items: a deeper file is
// not opened and never written; a paste or new item is not put deeper.
TEST_F(MenuEditorTest, MenusAreAtMost25LevelsDeep) {
  std::vector<ItemRow> items;
  for (size_t level = 0; level < 26; ++level) items.push_back({L"L" + std::to_wstring(level + 1), L"", 0, level});
  WriteMenu(items);
  const std::string bytes = dir_.Read(L"Set\\notepad\\Command.mnu");
  session_.gCmdScriptPath = L"a.vbs";
  Open();
  EXPECT_EQ(view_.NodeCount(), 0);
  EXPECT_TRUE(prompts_.asked.empty());
  prompts_.answers = {Ok};
  editor_->Form_Activate();
  ASSERT_EQ(prompts_.asked.size(), 1u);
  EXPECT_EQ(prompts_.asked[0].text.rfind(L"The menu file " + MenuFile() + L" has items nested more than 25 levels", 0),
            0u);
  EXPECT_TRUE(view_.closed);
  editor_->trvMenu_GotFocus();  // the script waits for the next menu
  editor_->mnuNew_Click();
  EXPECT_TRUE(wizard_.seen.empty());
  EXPECT_EQ(session_.gCmdScriptPath, L"a.vbs");
  session_.gCmdScriptPath.clear();
  editor_->cmdApply_Click();
  EXPECT_TRUE(editor_->Form_QueryUnload());
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu"), bytes);

  items.pop_back();
  WriteMenu(items);
  Open();
  EXPECT_EQ(view_.NodeCount(), 26);
  const std::wstring tooDeep = L"cannot go there: the menu would have more than 25 levels";
  const struct {
    const wchar_t *copy, *target;
    EditorCommand command;
    std::vector<int> answers;
    int told;     // how many of the messages said it was too deep
    bool pasted;  // under L24: after L25 or as its first child
  } cases[] = {
      {L"L25", L"L25", C::PasteAsChild, {Ok}, 1, false},
      {L"L24", L"L25", C::Paste, {Ok}, 1, false},  // refused before asking
      {L"L25", L"L25", C::Paste, {Yes, Ok, No}, 1, true},
      {nullptr, L"L25", C::New, {Yes, Ok, No}, 1, true},
      {L"L25", L"L24", C::PasteAsChild, {}, 0, true},
  };
  for (const auto& c : cases) {
    Open();
    prompts_.asked.clear();
    prompts_.answers.assign(c.answers.begin(), c.answers.end());
    if (c.copy) {
      view_.SelectText(c.copy);
      editor_->mnuTreeCopy_Click();
    }
    view_.SelectText(c.target);
    editor_->Run(c.command);
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
  WriteMenu({{L"Read", L"", 0, 0},
             {L"Line", L"SayLine", 0x00030074, 1},
             {L"Deeper", L"", 0, 1},
             {L"Word", L"SayWord", 0, 2},
             {L"Tips", L"shell(notepad $(appsetdir)\\TIPS.txt)", 0, 0},
             {L"Tipy", L"shell(tips tipy)", 0, 0}});
  EXPECT_EQ(editor_->ListDefs(dir_.Path(L"Set"), L"notepad", false),
            L"<H3>notepad</H3>\r\n"
            L"<UL><LI>Read</LI>\r\n"
            L"<UL><LI>Line ( C+S+key(116) ) </LI>\r\n"
            L"<LI>Deeper</LI>\r\n"
            L"<UL><LI>Word</LI>\r\n"
            L"</UL></UL><LI><A href=\"..\\..\\set\\notepad\\tips.txt\">Tips</A></LI>\r\n"
            L"<LI><A href=\"..\\..\\set\\notepad\\tipy.txt\">Tipy</A></LI>\r\n"
            L"</UL>");
  EXPECT_EQ(editor_->ListDefs(dir_.Path(L"Set"), L"nothing", false), L"");
}

}  // namespace
}  // namespace nx
