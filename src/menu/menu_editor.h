// fMenuDef: the menu editor. It holds the tree of the menu being edited,
// shows it through IMenuEditorView (a tree, three read-only fields, the item
// menu) and saves it. The tree commands (copy, cut, paste, delete, move) are
// in menu/edit/tree_commands.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "braille/braille_display.h"
#include "defs/def_actions.h"
#include "menu/edit/undo_history.h"
#include "menu/menu_file.h"
#include "menu/menu_item.h"
#include "platform/native_menus.h"
#include "platform/profile.h"
#include "platform/prompts.h"
#include "startup/edit_session.h"
#include "startup/narrix_info.h"

namespace nx {

// The deepest menu the editor edits: 25 levels of items below the top node,
// as deep as a pop-up menu, which is how the screen reader offers the menu,
// can nest. A deeper file is not opened; a paste or new item that would
// make the menu deeper is refused.
constexpr int kMaxMenuLevels = 25;

enum class EditorText { TreeLabel, NameLabel, CommandLabel, HotKeyLabel, Ok, Cancel, Apply, ItemMenu };

enum class EditorCommand {
  New,
  Edit,
  Copy,
  Cut,
  Paste,
  PasteAsNext,
  PasteAsChild,
  Delete,
  MoveUp,
  MoveDown,
  Preview,
  Undo,
  Redo,
  FindName,
  FindNext,
  FindPrevious,
  FindKey,
};

class IMenuEditorView {
 public:
  virtual ~IMenuEditorView() = default;
  virtual void SetTitle(const std::wstring& text) = 0;
  virtual void SetText(EditorText what, const std::wstring& text) = 0;
  // Captions of the item menu and the preview entry.
  virtual void SetCommandText(EditorCommand command, const std::wstring& text) = 0;
  virtual void EnableCommand(EditorCommand command, bool enabled) = 0;
  virtual void EnableApply(bool enabled) = 0;

  // The tree: nodes are named by their keys ("k" + MenuId). Between
  // BeginTreeUpdate and EndTreeUpdate the tree is not redrawn.
  virtual void BeginTreeUpdate() = 0;
  virtual void EndTreeUpdate() = 0;
  virtual void ClearTree() = 0;
  // Adds a node as the last child of `parentKey` ("" for a top node), shown
  // expanded when `expanded` (an item with children).
  virtual void AddNode(const std::wstring& key, const std::wstring& parentKey, const std::wstring& text,
                       bool expanded) = 0;
  virtual int NodeCount() const = 0;
  virtual std::optional<std::wstring> SelectedNode() const = 0;
  virtual void SelectNode(const std::wstring& key) = 0;
  virtual std::wstring NodeText(const std::wstring& key) const = 0;

  virtual void SetFields(const std::wstring& name, const std::wstring& command, const std::wstring& hotKey) = 0;
  virtual void FocusNameField() = 0;
  // Opens the item menu at the selected node's text.
  virtual void OpenItemMenu() = 0;
  // Runs the find-by-hot-key dialog over the editor until it is closed; it
  // calls FindByKey for every chord.
  virtual void OpenFindKey() = 0;
  // Shows the preview pop-up and returns the command chosen (0: none).
  virtual int TrackPreview(NativeMenu menu) = 0;
  virtual void Close() = 0;
};

// Describes one item with the item wizard, starting from `fields`: the
// described fields when the user finished it, nothing when not. `root` is
// the menu the item goes into and `original` the item being edited (null
// for a new one), so that the wizard can name other items with the same hot
// key. The wizard changes nothing of the tree; the editor places the result.
class IItemWizard {
 public:
  virtual ~IItemWizard() = default;
  virtual std::optional<ItemFields> Describe(const ItemFields& fields, bool isNew, const cMenuItem* root,
                                             const cMenuItem* original) = 0;
};

// The item copied or cut last. It outlives the editors of one run, so that
// an item can be pasted into a menu opened later; a cut item moves only
// within the menu that holds it, and goes into any other menu as a copy.
struct EditorClipboard {
  MenuItemPtr item;
  bool cut = false;
};

// What the editor works with; everything must outlive the editor.
struct MenuEditorServices {
  EditSession& session;
  cNarrixInfo& info;
  cDefServer& defs;
  IProfile& profile;
  INativeMenus& menus;
  // The program's braille display, made by `brailleOpener` on the first
  // LoadDefs and kept; no opener: no display.
  std::unique_ptr<IBrailleDisplay>& braille;
  IBrailleOpener* brailleOpener;
  IItemWizard* wizard = nullptr;         // null: New and Edit are not available
  EditorClipboard* clipboard = nullptr;  // null: the editor keeps its own
};

class fMenuDef {
 public:
  fMenuDef(IMenuEditorView& view, IPrompts& prompts, MenuEditorServices services);

  // Captions from the string table; the window calls it once when it loads.
  void Form_Load();
  // Prepares the window for one menu: the application `appName` in `menuDir`
  // (or the general menu in `menuDir`). A damaged menu file is reported by
  // the next Form_Activate; a menu deeper than kMaxMenuLevels is not shown,
  // never written, and the next Form_Activate says so and closes the window.
  void LoadDefs(const std::wstring& menuDir, const std::wstring& appName, bool general);
  // The window is shown and modal: reports a damaged or too deep menu file
  // found by the last LoadDefs, once. Reported earlier, the box would stand
  // alone while the windows behind the editor still took input.
  void Form_Activate();
  // The menu's section of the help page (see RenderHelpSection), with the
  // braille display of the session; "" when there is no menu. The editor's
  // own menu is not changed.
  std::wstring ListDefs(const std::wstring& menuDir, const std::wstring& appName, bool general);

  // Writes the tree (or deletes the file when there is none; a file too deep
  // to open is left alone). False, after telling the user, when the file
  // could not be written.
  bool Save();
  void cmdOK_Click();
  void cmdApply_Click();
  void cmdCancel_Click();
  // The window is about to close: true to let it (asks 635 when dirty).
  bool Form_QueryUnload();

  void trvMenu_NodeClick(const std::wstring& key);
  // The tree got the focus: a new item is started once when the program was
  // given a script path on its command line.
  void trvMenu_GotFocus();
  // A key in the tree (`shift`: Shift 1, Control 2, Alt 4); true when used.
  bool trvMenu_KeyDown(int key, int shift);
  // The context menu for the selected node (keyboard or right click).
  void OpenContextMenu();
  // Sets the entries of the item menu for the selected node.
  void PrepareItemMenu();
  void Run(EditorCommand command);

  void mnuPreview_Click();
  void mnuNew_Click();
  void mnuTreeEdit_Click();
  void mnuTreeCopy_Click();
  void mnuTreeCut_Click();
  void mnuTreePaste_Click();
  void mnuTreePasteAsNext_Click();
  void mnuTreePasteAsChild_Click();
  void mnuTreeDelete_Click();
  void MoveSelected(bool down);
  // Takes the last change back (makes the last undone change again); says
  // so when there is none.
  void Undo(bool redo);
  // Asks for a part of a name and selects the next item whose caption holds
  // it, whatever its case.
  void mnuFindName_Click();
  // The next (previous) item whose caption holds the text last asked for,
  // in the tree's order from the selected item and round; with no text yet
  // asked for, asks first.
  void FindNext(bool forward);
  // The next item with the hot key `code` after the selected one is selected
  // and shown: "" then, else the text that tells the user none has it.
  std::wstring FindByKey(int32_t code);
  std::wstring KeyText(int32_t code) const { return HotKeyText(code); }
  // The program's braille display, when one is open (null: none).
  IBrailleDisplay* Braille() const;

  // Whether the menu differs from its file: a change made, and not undone,
  // since the last save or opening.
  bool Dirty() const { return !history_.AtSaved(); }
  const MenuItemPtr& Root() const { return root_; }

 private:
  MenuLocation Location() const;
  cMenuFile MenuFile() const;
  std::wstring MenuPath() const;
  std::wstring BraillePath() const;
  int32_t IdBase() const { return general_ ? 128 : 256; }
  std::wstring Title() const;
  std::wstring HotKeyText(int32_t code) const;
  // Apply is available exactly when the menu is changed.
  void ShowDirty();
  void FillTree();
  // Refills the view from the tree with its drawing suspended; the preview is
  // available exactly when there is a node.
  void Redraw();
  // Renumbers the tree, refills the view and selects `item`.
  void Refresh(const cMenuItem* item);
  cMenuItem* FindItem(int32_t menuId) const;
  cMenuItem* ItemOfNode(const std::wstring& key) const;
  cMenuItem* SelectedItem() const;
  bool SelectedIsTop() const;
  // Where a paste goes: the selected item, or the top node when none is.
  cMenuItem* PasteTarget() const;
  // An item going into the tree: the clipboard's (moved when it was cut,
  // else copied), or a new one (moved in as it is).
  struct Placing {
    MenuItemPtr item;
    bool move = false;
    StepKind kind = StepKind::Paste;
  };
  Placing Held() const;
  // The paste of `placing` at the selection: as a child of the top node, or
  // after asking whether as a child of the selected item.
  void Paste(const Placing& placing);
  // True, after saying why, when the item cannot go to `target`: a moved
  // item into its own subtree, or deeper than kMaxMenuLevels.
  bool PasteRefused(const Placing& placing, const cMenuItem* target, bool asChild);
  bool TooDeep(const cMenuItem& item, const cMenuItem* target, bool asChild) const;
  void PasteAt(const Placing& placing, cMenuItem* target, bool asChild);
  void Tell(const std::wstring& text);
  // Ends the change begun in history_: the tree is renumbered and shown
  // again with `item` selected.
  void Changed(const cMenuItem* item);
  // The caption of Undo (Redo) in the item menu, naming the step it takes.
  std::wstring UndoText(bool redo) const;
  // The first item after (before) the selected one, in the tree's order and
  // round, for which `match` holds; the selected item comes last.
  cMenuItem* Search(const std::function<bool(const cMenuItem&)>& match, bool forward) const;
  // Selects `item` and shows its fields.
  void Show(const cMenuItem& item);
  void CaptionRoot();

  IMenuEditorView& view_;
  IPrompts& prompts_;
  MenuEditorServices services_;
  EditSession& session_;
  MenuItemPtr root_;
  bool general_ = false;
  bool damaged_ = false;   // the file did not read completely
  bool backedUp_ = false;  // the damaged original is kept as .bak
  bool damageToReport_ = false;
  bool tooDeep_ = false;  // the file is deeper than the editor edits: nothing shown, nothing written
  bool pendingNewDone_ = false;
  EditorClipboard ownClipboard_;
  EditorClipboard& clipboard_;
  UndoHistory history_{root_};
  std::wstring findText_;
  std::wstring pasteNextTemplate_, pasteChildTemplate_;
};

// Keys of tree nodes: "k" followed by the MenuId.
std::wstring NodeKey(int32_t menuId);
std::optional<int32_t> MenuIdOfKey(const std::wstring& key);

}  // namespace nx
