// The menu editor's logic through a fake window: its view, scripted
// questions and a stand-in for the item wizard.
#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

#include "menu/menu_editor.h"
#include "menu_records.h"
#include "platform/text.h"
#include "startup/settings.h"
#include "temp_folder.h"

namespace nx {
namespace {

// The window around the editor, in memory: a tree view (nodes in insertion
// order with their parents), message boxes answered from a script, pop-up
// menus that hold nothing, and a stand-in for the item wizard that says what
// it was given as a message: OK finishes it with its own fields, anything
// else cancels it.
class FakeWindow : public IMenuEditorView, public IPrompts, public INativeMenus, public IItemWizard {
 public:
  struct Node {
    std::wstring key, parent, text;
  };
  std::vector<Node> nodes;
  std::optional<std::wstring> selected;
  std::wstring name;  // the Name field
  std::map<EditorCommand, bool> enabled;
  std::wstring menu;  // " {the item menu's commands}" when it was opened
  bool applyEnabled = false, closed = false, nameFocused = false;
  int previewAnswer = 0;
  std::string answers;              // to the questions to come: y Yes, n No, c Cancel, o OK
  std::vector<std::wstring> asked;  // each up to its first line break, " [No]" where No is the default button
  std::wstring last;                // the last message whole
  std::wstring input;               // typed into the next input box ("": cancelled)
  std::map<EditorCommand, std::wstring> captions;

  void SetTitle(const std::wstring&) override {}
  void SetText(EditorText, const std::wstring&) override {}
  void SetCommandText(EditorCommand c, const std::wstring& text) override { captions[c] = text; }
  void EnableCommand(EditorCommand c, bool on) override { enabled[c] = on; }
  void EnableApply(bool on) override { applyEnabled = on; }
  void BeginTreeUpdate() override {}
  void EndTreeUpdate() override {}
  void ClearTree() override { nodes.clear(), selected.reset(); }
  void AddNode(const std::wstring& key, const std::wstring& parent, const std::wstring& text, bool) override {
    nodes.push_back({key, parent, text});
  }
  int NodeCount() const override { return static_cast<int>(nodes.size()); }
  std::optional<std::wstring> SelectedNode() const override { return selected; }
  void SelectNode(const std::wstring& key) override { selected = key; }
  std::wstring NodeText(const std::wstring& key) const override {
    for (const auto& n : nodes)
      if (n.key == key) return n.text;
    return L"";
  }
  void SetFields(const std::wstring& text, const std::wstring&, const std::wstring&) override { name = text; }
  void FocusNameField() override { nameFocused = true; }
  void OpenItemMenu() override {  // the commands in the order of EditorCommand; Delete is always there
    const wchar_t* names[] = {L"New", L"Edit", L"Copy", L"Cut", L"Paste", L"Next", L"Child", L"", L"Up", L"Down"};
    for (int i = 0; i < 10; ++i)
      if (enabled[static_cast<EditorCommand>(i)]) menu += (menu.empty() ? L" {" : L" ") + std::wstring(names[i]);
    menu += menu.empty() ? L" {}" : L"}";
  }
  void OpenFindKey() override { asked.push_back(L"find key"); }
  int TrackPreview(NativeMenu) override { return previewAnswer; }
  void Close() override { closed = true; }

  int Message(const std::wstring& text, unsigned style, const std::wstring&) override {
    asked.push_back(text.substr(0, text.find(L"\r\n")) + (style & mb::kDefaultButton2 ? L" [No]" : L""));
    last = text;
    if (answers.empty()) ADD_FAILURE() << "unexpected question: " << WideToUtf8(text);
    const char answer = answers.empty() ? 'c' : answers[0];
    answers.erase(0, 1);
    return answer == 'y' ? mb::kIdYes : answer == 'n' ? mb::kIdNo : answer == 'o' ? mb::kIdOk : mb::kIdCancel;
  }

  std::wstring InputBox(const std::wstring& label, const std::wstring&, const std::wstring& value) override {
    asked.push_back(label + L" " + value);
    return std::exchange(input, L"");
  }

  NativeMenu CreatePopup() override { return 1; }
  void AppendPopup(NativeMenu, NativeMenu, const std::wstring&) override {}
  void AppendCommand(NativeMenu, int, const std::wstring&) override {}
  void Destroy(NativeMenu) override {}

  std::optional<ItemFields> Describe(const ItemFields& item, bool isNew, const cMenuItem*, const cMenuItem*) override {
    const std::wstring given = (isNew ? L"new " : L"edit ") + item.Caption + L"|" + item.Action + L"|" +
                               std::to_wstring(item.HotKey) + (item.Discard ? L"|discard" : L"");
    if (Message(given, mb::kOkOnly, L"") != mb::kIdOk) return std::nullopt;
    return ItemFields{L"Typed", L"SayTime", 0x00020043, !item.Discard};
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
};

using C = EditorCommand;
constexpr const wchar_t* kTop = L"Application (notepad)";
const std::wstring kMenu = L"Set\\notepad\\Command.mnu", kStart = L"File(Open Save) Edit(Copy) Quit",
                   kSub = L" | Save as subitem? [No]",
                   kTyped = L" | new New item||0|discard";  // what the wizard is given for a new item

// File(Open, Save) Edit(Copy) Quit in "notepad", where Open has a command
// and a hot key and Quit only a hot key.
class MenuEditorTest : public ::testing::Test {
 protected:
  MenuEditorTest() {
    std::filesystem::create_directories(dir_.Fs() / "Set" / "notepad");
    registry_.WriteString(kProductKey, L"Path", dir_.Path());
    info_.Inicialize(nullptr);
    defs_.SetFolder(dir_.Path(L"Set\\"));
    dir_.Write(kMenu, Record(0, 0, "File") + Record(1, 0x123, "Open", "shell(open.vbs)") +
                          Record(1, 0, "Save", "SaveIt") + Record(0, 0, "Edit") + Record(1, 0, "Copy", "CopyIt") +
                          Record(0, 0x00020051, "Quit"));
    Restart(&ui_);
  }
  // A new editor, with nothing held, on the menu.
  void Restart(IItemWizard* wizard) {
    clipboard_ = {};
    editor_ = std::make_unique<fMenuDef>(
        ui_, ui_, MenuEditorServices{session_, info_, defs_, profile_, ui_, braille_, nullptr, wizard, &clipboard_});
    editor_->Form_Load();
    Open();
  }
  void Open() { editor_->LoadDefs(dir_.Path(L"Set"), L"notepad", false); }
  // Selects the item as a click does (null: nothing), with the answers to
  // the questions to come.
  void At(const wchar_t* text, const char* answers = "") {
    ui_.selected.reset();
    for (const auto& n : ui_.nodes)
      if (text && n.text == text) ui_.selected = n.key;
    if (ui_.selected) editor_->trvMenu_NodeClick(*ui_.selected);
    ui_.answers = answers;
  }
  void Do(const wchar_t* at, EditorCommand command, const char* answers = "") {
    At(at, answers);
    editor_->Run(command);
  }
  // The tree under the top node, "[the selected item]" (and what the Name
  // field shows when that differs), " *" when changed, then the item menu
  // and what was said since the last look.
  std::wstring State() {
    std::wstring out = ui_.Shape(), top = kTop + std::wstring(L"(");
    if (out.rfind(top, 0) == 0) out = out.substr(top.size(), out.size() - top.size() - 1);
    const std::wstring selected = ui_.selected ? ui_.NodeText(*ui_.selected) : L"(none)";
    out += L" [" + selected + (ui_.selected && ui_.name != selected ? L" shows " + ui_.name : L"") + L"]";
    if (editor_->Dirty() || ui_.applyEnabled) out += editor_->Dirty() == ui_.applyEnabled ? L" *" : L" Apply?";
    out += ui_.menu + Said();
    ui_.menu.clear();
    return out;
  }
  // What was said since the last look, the folder as "~".
  std::wstring Said() {
    std::wstring out;
    for (const auto& said : ui_.asked) out += L" | " + ReplaceAll(said, dir_.Path(), L"~");
    ui_.asked.clear();
    return out;
  }
  static const cMenuItem* Find(const cMenuItem& in, const std::wstring& caption) {
    for (const auto& child : in.SubItems)
      if (const cMenuItem* found = child->Caption == caption ? child.get() : Find(*child, caption)) return found;
    return nullptr;
  }

  test::TempFolder dir_;
  EditSession session_;
  MemoryRegistry registry_;
  cNarrixInfo info_{registry_, L""};
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefServer defs_{page_, profile_, L""};
  std::unique_ptr<IBrailleDisplay> braille_;
  FakeWindow ui_;
  EditorClipboard clipboard_;
  std::unique_ptr<fMenuDef> editor_;
};

// Keys in the tree, step by step: each selects an item, presses a key and
// answers. The item menu offers what can be done there with what is held.
// Then, without a wizard, deletes: the next sibling, else the previous one,
// else the parent is selected; a script named after the item goes with it
// if wanted.
TEST_F(MenuEditorTest, KeysRunTheCommands) {
  const std::wstring remove = L" | Are you sure to remove the item ";
  dir_.Write(L"Set\\notepad\\Open.vbs", "x");
  dir_.Write(L"Set\\notepad\\Open.frm", "x");
  const struct {
    const wchar_t* at;
    int key, shift;  // no key: a new editor without a wizard
    const char* answers;
    std::wstring state;
  } steps[] = {
      {L"Open", 121, 0, "", L"not taken: " + kStart + L" [Open]"},          // F10 alone is the menu bar's
      {L"Open", 121, 1, "", kStart + L" [Open] {New Edit Copy Cut Down}"},  // Shift+F10: the item menu
      {kTop, 'C', 2, "", kStart + L" [" + kTop + L"]"},                     // the top node is not copied
      {L"Quit", 93, 0, "", kStart + L" [Quit] {New Edit Copy Cut Up}"},     // the menu key
      {L"Save", 'C', 2, "", kStart + L" [Save]"},
      {L"Edit", 93, 0, "", kStart + L" [Edit] {New Edit Copy Cut Paste Next Child Up Down}"},
      {kTop, 93, 0, "", kStart + L" [" + kTop + L"] {New Paste Child}"},
      {L"Quit", 40, 1, "", kStart + L" [Quit]"},  // already last
      {L"Quit", 38, 1, "", L"File(Open Save) Quit Edit(Copy) [Quit] *"},
      {L"Quit", 38, 1, "", L"Quit File(Open Save) Edit(Copy) [Quit] *"},
      {L"Quit", 38, 1, "", L"Quit File(Open Save) Edit(Copy) [Quit] *"},  // already first
      {L"Open", 40, 1, "", L"Quit File(Save Open) Edit(Copy) [Open] *"},
      {L"Open", 'X', 2, "", L"Quit File(Save Open) Edit(Copy) [Open] *"},
      {L"Copy", 'V', 2, "n", L"Quit File(Save) Edit(Copy Open) [Open] *" + kSub},
      {L"Save", 'C', 2, "", L"Quit File(Save) Edit(Copy Open) [Save] *"},
      {L"Quit", 'V', 2, "n", L"Quit Save File(Save) Edit(Copy Open) [Save] *" + kSub},
      {L"Copy", 46, 0, "y", L"Quit Save File(Save) Edit(Open) [Open] *" + remove + L"Copy"},
      {L"Open", 13, 4, "o", L"Quit Save File(Save) Edit(Typed) [Typed] * | edit Open|shell(open.vbs)|291"},
      {L"Quit", 'N', 2, "on", L"Quit Typed Save File(Save) Edit(Typed) [Typed] *" + kTyped + kSub},
      {L"Quit", 'N', 2, "oc", L"Quit Typed Save File(Save) Edit(Typed) [Quit] *" + kTyped + kSub},  // not placed
      {L"Quit", 'V', 2, "n", L"Quit Save Typed Save File(Save) Edit(Typed) [Save] *" + kSub},       // still held
      {kTop, 0, 0, "", kStart + L" [" + kTop + L"]"},
      {L"File", 93, 0, "", kStart + L" [File] {Copy Cut Down}"},  // no wizard: no New, no Edit
      {L"Edit", 46, 0, "n", kStart + L" [Edit]" + remove + L"Edit and its subitems?"},
      {L"Open", 46, 0, "yy", L"File(Save) Edit(Copy) Quit [Save] *" + remove + L"Open | Smazat soubor Open.vbs? [No]"},
      {L"Quit", 46, 0, "y", L"File(Save) Edit(Copy) [Edit] *" + remove + L"Quit"},
      {L"Save", 46, 0, "y", L"File Edit(Copy) [File] *" + remove + L"Save"},
      {L"Edit", 46, 0, "y", L"File [File] *" + remove + L"Edit and its subitems?"},
      {kTop, 46, 0, "y", L" [(none)] * | This action will completely remove the definion file. [No]"},
  };
  for (const auto& s : steps) {
    if (!s.key) Restart(nullptr);
    At(s.at, s.answers);
    const bool ignored = s.key && !editor_->trvMenu_KeyDown(s.key, s.shift);
    EXPECT_EQ((ignored ? L"not taken: " : L"") + State(), s.state) << s.key;
  }
  editor_->cmdOK_Click();  // no tree: the file goes
  for (const char* gone : {"Command.mnu", "Open.vbs", "Open.frm"})
    EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "Set" / "notepad" / gone)) << gone;
}

// Paste asks "Save as subitem?" except on the top node; an item with a
// command or a hot key becomes a pull-down only if the user agrees. With no
// selection a paste goes under the top node; with nothing held nothing
// happens. A cut item is refused in its own subtree, before any question.
// New starts the wizard from a blank item it may discard, Edit from the
// item's fields; a cancelled wizard changes nothing.
TEST_F(MenuEditorTest, PlacingAsksWhereAndAboutPullDowns) {
  const std::wstring pullDown = L" contains action and/or hotkey [No]",
                     itself = L" | The cut item File cannot be pasted into itself or below itself. Nothing was pasted.";
  const struct {
    const wchar_t* held;  // copied or cut (hold) first
    C hold;
    const wchar_t* at;  // null: nothing selected
    C command;
    const char* answers;
    std::wstring state;
  } cases[] = {
      {L"Quit", C::Cut, L"Open", C::Paste, "c", kStart + L" [Open]" + kSub},
      {L"Quit", C::Cut, L"Open", C::Paste, "yn", kStart + L" [Open]" + kSub + L" | Item Open" + pullDown},
      {L"Quit", C::Cut, L"Open", C::Paste, "yy",
       L"File(Open(Quit) Save) Edit(Copy) [Quit] *" + kSub + L" | Item Open" + pullDown},
      {L"Quit", C::Cut, kTop, C::Paste, "", L"Quit File(Open Save) Edit(Copy) [Quit] *"},
      {L"Quit", C::Copy, nullptr, C::PasteAsNext, "", kStart + L" [(none)]"},
      {nullptr, C::Copy, L"Quit", C::Paste, "o",
       kStart + L" [Quit] | Nothing has been copied or cut yet, so there is nothing to paste."},
      {L"Quit", C::Copy, nullptr, C::Paste, "", L"Quit " + kStart + L" [Quit] *"},
      {kTop, C::Cut, L"Quit", C::PasteAsNext, "", kStart + L" [Quit]"},
      {L"File", C::Copy, L"Quit", C::PasteAsNext, "", kStart + L" File(Open Save) [File] *"},
      {L"File", C::Cut, L"Quit", C::PasteAsNext, "", L"Edit(Copy) Quit File(Open Save) [File] *"},
      {L"File", C::Cut, L"File", C::Paste, "o", kStart + L" [File]" + itself},
      {L"File", C::Cut, L"File", C::PasteAsChild, "o", kStart + L" [File]" + itself},
      {L"File", C::Cut, L"Save", C::PasteAsChild, "o", kStart + L" [Save]" + itself},
      {nullptr, C::Copy, L"Quit", C::New, "oyy",
       L"File(Open Save) Edit(Copy) Quit(Typed) [Typed] *" + kTyped + kSub + L" | Item Quit" + pullDown},
      {nullptr, C::Copy, L"Edit", C::New, "oy", L"File(Open Save) Edit(Typed Copy) Quit [Typed] *" + kTyped + kSub},
      {nullptr, C::Copy, nullptr, C::New, "o", L"Typed " + kStart + L" [Typed] *" + kTyped},
      {nullptr, C::Copy, L"Save", C::New, "c", kStart + L" [Save]" + kTyped},
      {nullptr, C::Copy, L"Open", C::Edit, "c", kStart + L" [Open] | edit Open|shell(open.vbs)|291"},
      {nullptr, C::Copy, L"Edit", C::Edit, "o", L"File(Open Save) Typed(Copy) Quit [Typed] * | edit Edit||0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    Restart(&ui_);
    Do(c.held, c.hold);  // nothing held when null
    Do(c.at, c.command, c.answers);
    EXPECT_EQ(State(), c.state);
    // A pull-down has neither command nor hot key.
    for (const cMenuItem* item : {Find(*editor_->Root(), L"Open"), Find(*editor_->Root(), L"Quit")})
      EXPECT_EQ(item->Action.empty() && !item->HotKey, item->SubItems.Count() > 0) << WideToUtf8(item->Caption);
  }
}

// Every change is taken back by Ctrl+Z and made again by Ctrl+Y, whole:
// captions, commands, hot keys, Discard and order as in the file. After an
// undo the item is selected, or where it was when it is gone; back at the
// file's state the menu counts as unchanged.
TEST_F(MenuEditorTest, UndoAndRedoEveryChange) {
  const auto bytes = [this] { return editor_->Root() ? *SerializeMenu(*editor_->Root(), page_, nullptr) : ""; };
  const struct {
    const wchar_t* held;  // copied first, or cut when `cut`
    bool cut;
    const wchar_t* at;
    C command;
    const char* answers;
    const wchar_t *undo, *selected;  // Undo's caption, the item selected after it
  } cases[] = {
      {nullptr, false, L"Edit", C::Delete, "y", L"Undo delete \"Edit\"", L"Edit"},
      {L"Quit", true, L"Open", C::Paste, "yy", L"Undo paste \"Quit\"", L"Quit"},
      {L"File", false, L"Quit", C::PasteAsNext, "", L"Undo paste \"File\"", kTop},
      {nullptr, false, L"Quit", C::MoveUp, "", L"Undo move up \"Quit\"", L"Quit"},
      {nullptr, false, L"Open", C::Edit, "o", L"Undo edit \"Typed\"", L"Open"},
      {nullptr, false, L"Copy", C::New, "oyy", L"Undo new item \"Typed\"", L"Copy"},
      {nullptr, false, kTop, C::Delete, "y", L"Undo delete the whole menu", kTop},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    Restart(&ui_);
    const std::string before = bytes();
    Do(c.held, c.cut ? C::Cut : C::Copy);
    Do(c.at, c.command, c.answers);
    const std::string after = bytes();
    Said();
    editor_->PrepareItemMenu();
    EXPECT_EQ(ReplaceAll(ui_.captions[C::Undo], L"&", L""), c.undo + std::wstring(L"\tCtrl+Z"));
    editor_->trvMenu_KeyDown('Z', 2);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(State(), kStart + L" [" + c.selected + L"]");
    editor_->trvMenu_KeyDown('Y', 2);
    EXPECT_EQ(bytes(), after);
    EXPECT_TRUE(editor_->Dirty());
  }
}

// Undo and redo against the last save, a new change dropping what could be
// redone, and the 100 steps kept.
TEST_F(MenuEditorTest, UndoFollowsTheSavedMenu) {
  const struct {
    C command;
    std::wstring state;
  } steps[] = {
      {C::Undo, kStart + L" [Quit] | There is nothing to undo."},
      {C::MoveUp, L"File(Open Save) Quit Edit(Copy) [Quit] *"},
      {C::MoveUp, L"Quit File(Open Save) Edit(Copy) [Quit] *"},
      {C::Cut, L"Quit File(Open Save) Edit(Copy) [Quit]"},  // saved here (Apply)
      {C::Undo, L"File(Open Save) Quit Edit(Copy) [Quit] *"},
      {C::Redo, L"Quit File(Open Save) Edit(Copy) [Quit]"},
      {C::Redo, L"Quit File(Open Save) Edit(Copy) [Quit] | There is nothing to redo."},
      {C::Undo, L"File(Open Save) Quit Edit(Copy) [Quit] *"},
      {C::MoveDown, L"File(Open Save) Edit(Copy) Quit [Quit] *"},
      {C::Redo, L"File(Open Save) Edit(Copy) Quit [Quit] * | There is nothing to redo."},
  };
  for (const auto& s : steps) {
    SCOPED_TRACE(&s - steps);
    Do(L"Quit", s.command, "o");
    if (s.command == C::Cut) editor_->cmdApply_Click();
    EXPECT_EQ(State(), s.state);
  }
  for (int i = 0; i < 101; ++i) Do(L"Quit", i % 2 ? C::MoveDown : C::MoveUp);
  for (int i = 0; i < 101; ++i) Do(L"Quit", C::Undo, "o");
  EXPECT_EQ(State(), L"File(Open Save) Quit Edit(Copy) [Quit] * | There is nothing to undo.");
}

// Find by name from the selected item on and round, whatever the case; find
// by hot key; an item cut in one menu goes into the next menu as a copy.
TEST_F(MenuEditorTest, FindAndPasteIntoAnotherMenu) {
  const std::wstring none = L" | No item's name contains \"zz\".", label = L" | &Name contains: ";
  const struct {
    const wchar_t* at;
    C command;
    const wchar_t* typed;
    std::wstring state;
  } steps[] = {
      {nullptr, C::FindNext, L"o", L" [Open]" + label},
      {L"Open", C::FindNext, L"", L" [Copy]"},
      {L"Copy", C::FindPrevious, L"", L" [Open]"},
      {L"Open", C::FindName, L"SAVE", L" [Save]" + label + L"o"},
      {L"Save", C::FindName, L"zz", L" [Save]" + label + L"SAVE" + none},
      {L"Save", C::FindName, L"", L" [Save]" + label + L"zz"},
      {L"Save", C::FindKey, L"", L" [Save] | find key"},
  };
  for (const auto& s : steps) {
    SCOPED_TRACE(&s - steps);
    ui_.input = s.typed;
    Do(s.at, s.command, "o");
    EXPECT_EQ(State(), kStart + s.state);
  }
  EXPECT_EQ(editor_->FindByKey(0x00020051), L"");
  EXPECT_EQ(editor_->FindByKey(0x00020051), L"");  // the only one
  EXPECT_EQ(State(), kStart + L" [Quit]");
  dir_.Write(L"Set\\Command.mnu", Record(0, 0x00020052, "Help"));
  EXPECT_EQ(editor_->FindByKey(0x00020052),
            L"No item of this menu has the hot key C+key(82). Also used in the general menu by \"Help\"");

  Do(L"Edit", C::Cut);
  std::filesystem::create_directories(dir_.Fs() / "Set" / "winword");
  editor_ = std::make_unique<fMenuDef>(
      ui_, ui_, MenuEditorServices{session_, info_, defs_, profile_, ui_, braille_, nullptr, &ui_, &clipboard_});
  editor_->LoadDefs(dir_.Path(L"Set"), L"winword", false);
  Do(nullptr, C::Paste);        // a menu without a file gets its top node
  Do(L"Edit", C::PasteAsNext);  // a copy each time
  editor_->cmdOK_Click();
  Open();
  EXPECT_EQ(State(), kStart + L" [Application (notepad)]");
  editor_->LoadDefs(dir_.Path(L"Set"), L"winword", false);
  EXPECT_EQ(ui_.Shape(), L"Application (winword)(Edit(Copy) Edit(Copy))");
}

// Closing a changed menu asks "Save changes?": Cancel keeps the window, No
// the file as it was, Yes saves. A save that fails, through OK as well,
// keeps the window and the edits and says so.
TEST_F(MenuEditorTest, ClosingAsksToSave) {
  EXPECT_TRUE(editor_->Form_QueryUnload());  // nothing changed: nothing asked
  const std::string bytes = dir_.Read(kMenu);
  const std::wstring moved = L"File(Open Save) Quit Edit(Copy) [Quit]", save = L" | Save changes?",
                     failed = L" | The menu could not be saved to ~\\Set\\notepad\\Command.mnu.";
  const struct {
    const char* answers;  // to "Save changes?" and what follows; "o": OK is pressed
    bool fails;
    std::wstring state;    // "closed" when the window may close
    const wchar_t* saved;  // the menu opened again
  } cases[] = {
      {"c", false, moved + L" *" + save, L"File(Open Save) Edit(Copy) Quit"},
      {"n", false, L"closed " + moved + L" *" + save, L"File(Open Save) Edit(Copy) Quit"},
      {"y", false, L"closed " + moved + save, L"File(Open Save) Quit Edit(Copy)"},
      {"o", false, L"closed " + moved, L"File(Open Save) Quit Edit(Copy)"},
      {"yo", true, moved + L" *" + save + failed, L""},
      {"o", true, moved + L" *" + failed, L""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    std::filesystem::create_directories(dir_.Fs() / "Set" / "notepad");
    dir_.Write(kMenu, bytes);
    Restart(&ui_);
    ui_.closed = false;
    Do(L"Quit", C::MoveUp, c.answers);
    if (c.fails) std::filesystem::remove_all(dir_.Fs() / "Set" / "notepad");
    const bool closes = *c.answers == 'o' ? (editor_->cmdOK_Click(), ui_.closed) : editor_->Form_QueryUnload();
    EXPECT_EQ((closes ? L"closed " : L"") + State(), c.state);
    Restart(&ui_);
    EXPECT_EQ(State(), c.saved + std::wstring(c.fails ? L" [(none)]" : L" [Application (notepad)]"));
  }
}

// A choice in the preview is selected, with the focus in the Name field. An
// empty menu has no preview until its first new item, which makes the top
// node and goes under it unasked.
TEST_F(MenuEditorTest, PreviewFollowsTheTree) {
  ui_.previewAnswer = 257;  // "Open"
  editor_->mnuPreview_Click();
  EXPECT_EQ(State(), L"File(Open Save) Edit(Copy) Quit [Open]");
  EXPECT_TRUE(ui_.nameFocused);
  std::filesystem::remove(dir_.Fs() / "Set" / "notepad" / "Command.mnu");
  Open();
  EXPECT_FALSE(ui_.enabled[C::Preview]);
  ui_.answers = "o";
  editor_->mnuNew_Click();
  EXPECT_EQ(ui_.Shape(), L"Application (notepad)(Typed)");
  EXPECT_TRUE(ui_.enabled[C::Preview]);
}

// Told once the window is shown; the first save keeps the original beside
// it, or does not write when it cannot; later saves leave that copy alone.
TEST_F(MenuEditorTest, DamagedFileIsReportedAndKept) {
  const std::string bytes = dir_.Read(kMenu), damaged = bytes.substr(0, bytes.size() - 3);
  const std::wstring shown = L"File(Open Save) Edit(Copy) [Application (notepad)]";
  dir_.Write(kMenu, damaged);
  Open();
  EXPECT_EQ(State(), shown);
  ui_.answers = "oo";
  editor_->Form_Activate();
  editor_->Form_Activate();
  std::filesystem::create_directory(dir_.Fs() / "Set" / "notepad" / "Command.mnu.bak");
  editor_->cmdApply_Click();
  EXPECT_NE(ui_.last.find(L"\r\nThe damaged original could not be kept as "), std::wstring::npos);
  EXPECT_EQ(State(), shown + L" | The menu file ~\\Set\\notepad\\Command.mnu is damaged: only the items before the " +
                         L"damage could be read. | The menu could not be saved to ~\\Set\\notepad\\Command.mnu.");
  EXPECT_EQ(dir_.Read(kMenu), damaged);
  std::filesystem::remove(dir_.Fs() / "Set" / "notepad" / "Command.mnu.bak");
  editor_->cmdApply_Click();
  editor_->cmdApply_Click();
  EXPECT_EQ(dir_.Read(L"Set\\notepad\\Command.mnu.bak"), damaged);
  Open();  // saved whole: nothing to report
  editor_->Form_Activate();
  EXPECT_EQ(State(), shown);
}

// A tree control and a pop-up menu hold 25 levels of items: a deeper file is
// not opened and never written; a paste or new item is not put deeper. A
// script named on the command line waits for a menu that opens.
TEST_F(MenuEditorTest, MenusAreAtMost25LevelsDeep) {
  std::string bytes;  // L1(L2(...(L26)))
  for (int16_t level = 0; level < 26; ++level) bytes += Record(level, 0, "L" + std::to_string(level + 1));
  dir_.Write(kMenu, bytes);
  session_.gCmdScriptPath = L"a.vbs";
  Open();
  EXPECT_EQ(State(), L" [(none)]");
  ui_.answers = "o";
  editor_->Form_Activate();
  editor_->trvMenu_GotFocus();
  editor_->mnuNew_Click();
  editor_->cmdApply_Click();
  EXPECT_NE(State().find(L" | The menu file ~\\Set\\notepad\\Command.mnu has items nested more than 25 levels"),
            std::wstring::npos);
  EXPECT_TRUE(ui_.closed);
  EXPECT_EQ(dir_.Read(kMenu), bytes);

  dir_.Write(kMenu, bytes.substr(0, bytes.size() - Record(25, 0, "L26").size()));
  Restart(&ui_);
  ui_.answers = "o";
  editor_->trvMenu_GotFocus();
  editor_->trvMenu_GotFocus();
  ASSERT_EQ(Said(), kTyped);  // once
  const std::wstring deep =
      L" cannot go there: the menu would have more than 25 levels, the most the menu editor can edit.";
  const struct {
    const wchar_t *copy, *target;
    EditorCommand command;
    const char* answers;
    std::wstring said;
    bool pasted;  // under L24: after L25 or as its first child
  } cases[] = {
      {L"L25", L"L25", C::PasteAsChild, "o", L" | The item L25" + deep, false},
      {L"L24", L"L25", C::Paste, "o", L" | The item L24" + deep, false},  // refused before asking
      {L"L25", L"L25", C::Paste, "yon", kSub + L" | The item L25" + deep + kSub, true},
      {nullptr, L"L25", C::New, "oyon", kTyped + kSub + L" | The item Typed" + deep + kSub, true},
      {L"L25", L"L24", C::PasteAsChild, "", L"", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    Open();
    Do(c.copy, C::Copy);
    Do(c.target, c.command, c.answers);
    EXPECT_EQ(Said(), c.said);
    EXPECT_EQ(ui_.NodeCount(), c.pasted ? 27 : 26);
    EXPECT_EQ(Find(*editor_->Root(), L"L24")->SubItems.Count(), c.pasted ? 2 : 1);
  }
}

}  // namespace
}  // namespace nx
