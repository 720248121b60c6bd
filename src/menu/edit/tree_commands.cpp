// The tree commands of the menu editor: new, edit, copy, cut, paste, delete
// and moving an item among its siblings.
#include "menu/edit/tree_commands.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "menu/menu_editor.h"
#include "platform/folders.h"
#include "startup/file_helpers.h"
#include "platform/string_table.h"

namespace nx {
namespace {

constexpr int kNewItem = 704, kPullDownQuestion = 630, kSubitemQuestion = 631, kWholeMenuQuestion = 632;
constexpr int kRemoveQuestion = 633, kRemoveAllQuestion = 634, kPasteIntoItself = 661, kTooDeep = 663;
constexpr int kNothingHeld = 735;
// Yes/No with No as the default; Yes/No/Cancel with No as the default.
constexpr unsigned kYesNoDefaultNo = mb::kYesNo | mb::kIconQuestion | mb::kDefaultButton2;
constexpr unsigned kYesNoCancelDefaultNo = mb::kYesNoCancel | mb::kIconQuestion | mb::kDefaultButton2;

}  // namespace

MenuItemPtr DeepCopy(const cMenuItem& source) {
  MenuItemPtr copy = cMenuItem::New();
  // Copies without recursion: pairs of (original, its copy) still to fill.
  std::vector<std::pair<const cMenuItem*, cMenuItem*>> pending{{&source, copy.get()}};
  while (!pending.empty()) {
    auto [from, to] = pending.back();
    pending.pop_back();
    to->SetFields(from->Fields());
    for (const auto& child : from->SubItems) {
      MenuItemPtr childCopy = to->SubItems.Add(1, to, cMenuItem::New());
      pending.emplace_back(child.get(), childCopy.get());
    }
  }
  return copy;
}

int MenuLevels(const cMenuItem& item) {
  size_t levels = 0;
  WalkTree(
      item,
      [&](const cMenuItem&, size_t depth, int) {
        levels = std::max(levels, depth + 1);
        return true;
      },
      [](const cMenuItem&, size_t) {});
  return static_cast<int>(levels);
}

void fMenuDef::mnuTreeCopy_Click() {
  cMenuItem* item = SelectedItem();
  if (!item || SelectedIsTop()) return;
  clipboard_ = {item->shared_from_this(), false};
}

void fMenuDef::mnuTreeCut_Click() {
  cMenuItem* item = SelectedItem();
  if (!item || SelectedIsTop()) return;
  clipboard_ = {item->shared_from_this(), true};
}

// A cut item of a menu closed since (or taken out of this one) is pasted as
// a copy: the menu it came from keeps it as it was saved.
fMenuDef::Placing fMenuDef::Held() const {
  const MenuItemPtr& item = clipboard_.item;
  return {item, clipboard_.cut && item && root_ && item != root_ && root_->Contains(item.get())};
}

cMenuItem* fMenuDef::PasteTarget() const {
  cMenuItem* selected = SelectedItem();
  return selected ? selected : root_.get();
}

bool fMenuDef::TooDeep(const cMenuItem& item, const cMenuItem* target, bool asChild) const {
  int level = asChild ? 1 : 0;  // of the pasted item: the top node's children are on level 1
  for (const cMenuItem* at = target; at && at != root_.get(); at = at->Parent) ++level;
  return level + MenuLevels(item) > kMaxMenuLevels;
}

bool fMenuDef::PasteRefused(const Placing& placing, const cMenuItem* target, bool asChild) {
  // A cut item cannot go into its own subtree: taking it out first would
  // take the target with it.
  if (placing.move && placing.item->Contains(target)) {
    Tell(LoadResText(kPasteIntoItself, placing.item->Caption));
    return true;
  }
  if (!TooDeep(*placing.item, target, asChild)) return false;
  Tell(LoadResText(kTooDeep, placing.item->Caption));
  return true;
}

void fMenuDef::mnuTreePaste_Click() { Paste(Held()); }

void fMenuDef::Paste(const Placing& placing) {
  if (!placing.item) {
    Tell(LoadResText(kNothingHeld));
    return;
  }
  if (tooDeep_) return;
  cMenuItem* target = PasteTarget();
  if (!target || target == root_.get()) {
    PasteAt(placing, target, true);
    return;
  }
  // Refused whatever the answer: said before asking.
  if (PasteRefused(placing, target, false)) return;
  for (;;) {
    const int answer =
        prompts_.Message(LoadResText(kSubitemQuestion), kYesNoCancelDefaultNo, LoadResText(kProductTitle));
    // Too deep as a child: asked again, so that a new item is not lost.
    if (answer == mb::kIdYes && PasteRefused(placing, target, true)) continue;
    if (answer == mb::kIdYes) PasteAt(placing, target, true);
    if (answer == mb::kIdNo) PasteAt(placing, target, false);
    return;
  }
}

void fMenuDef::mnuTreePasteAsNext_Click() {
  cMenuItem* target = PasteTarget();
  if (!target || !clipboard_.item || target == root_.get()) return;
  PasteAt(Held(), target, false);
}

void fMenuDef::mnuTreePasteAsChild_Click() {
  cMenuItem* target = PasteTarget();
  if (!target || !clipboard_.item) return;
  PasteAt(Held(), target, true);
}

void fMenuDef::PasteAt(const Placing& placing, cMenuItem* target, bool asChild) {
  if (PasteRefused(placing, target, asChild)) return;
  if (!target) {
    // A menu without a file gets its top node with its first item.
    MenuItemPtr item = placing.move ? placing.item : DeepCopy(*placing.item);
    history_.Begin(placing.kind, *item);
    history_.SetRoot(cMenuItem::New());
    CaptionRoot();
    history_.Insert(*root_, 0, item);
    Changed(item.get());
    return;
  }
  const bool pullDown = asChild && (!target->Action.empty() || target->HotKey != 0);
  if (pullDown && prompts_.Message(LoadResText(kPullDownQuestion, target->Caption), kYesNoDefaultNo,
                                   LoadResText(kProductTitle)) != mb::kIdYes)
    return;
  // Every item but the top node has a parent; nothing goes beside the top.
  if (!asChild && !target->Parent) return;
  MenuItemPtr item = placing.move ? placing.item : DeepCopy(*placing.item);
  history_.Begin(placing.kind, *item);
  if (pullDown) {
    ItemFields fields = target->Fields();
    fields.Action.clear();
    fields.HotKey = 0;
    history_.SetFields(*target, fields);
  }
  if (placing.move) history_.Remove(*item);
  cMenuItem* parent = asChild ? target : target->Parent.get();
  int index = 0;
  if (!asChild) {
    for (const auto& sibling : parent->SubItems) {
      ++index;
      if (sibling.get() == target) break;
    }
  }
  history_.Insert(*parent, index, item);
  Changed(item.get());
}

void fMenuDef::mnuTreeDelete_Click() {
  if (!view_.SelectedNode()) return;
  if (SelectedIsTop()) {
    if (prompts_.Message(LoadResText(kWholeMenuQuestion), kYesNoDefaultNo, LoadResText(kProductTitle)) != mb::kIdYes)
      return;
    history_.Begin(StepKind::DeleteMenu, *root_);
    history_.SetRoot(nullptr);
    Changed(nullptr);
    return;
  }
  cMenuItem* item = SelectedItem();
  if (!item) return;
  const int question = item->SubItems.Count() > 0 ? kRemoveAllQuestion : kRemoveQuestion;
  if (prompts_.Message(LoadResText(question, item->Caption), mb::kYesNo | mb::kIconQuestion,
                       LoadResText(kProductTitle)) != mb::kIdYes)
    return;
  MenuItemPtr removed = item->shared_from_this();
  // Its next sibling, else the previous one, else its parent is selected
  // afterwards, and shown, so that the next command has a place.
  cMenuItem* parent = item->Parent;
  cMenuItem* neighbour = parent ? parent : root_.get();
  if (parent) {
    const cMenuItems& siblings = parent->SubItems;
    int position = 1;
    while (position <= siblings.Count() && siblings.item(position).get() != item) ++position;
    if (const auto next = siblings.item(position + 1))
      neighbour = next.get();
    else if (const auto previous = siblings.item(position - 1))
      neighbour = previous.get();
  }
  history_.Begin(StepKind::Delete, *item);
  history_.Remove(*item);
  Changed(neighbour);

  const std::wstring script =
      JoinPath(JoinPath(services_.info.DirSet(), session_.gAppName), removed->Caption + L".vbs");
  if (FileExists(script) && prompts_.Message(L"Smazat soubor " + removed->Caption + L".vbs?", kYesNoDefaultNo,
                                             LoadResText(kProductTitle)) == mb::kIdYes) {
    std::error_code ignored;
    std::filesystem::remove(ToFsPath(script), ignored);
    std::filesystem::remove(ToFsPath(script.substr(0, script.size() - 4) + L".frm"), ignored);
  }
}

void fMenuDef::MoveSelected(bool down) {
  cMenuItem* item = SelectedItem();
  if (!item || SelectedIsTop() || !item->Parent) return;
  cMenuItems& siblings = item->Parent->SubItems;
  if (down ? siblings.IsLast(item) : siblings.IsFirst(item)) return;
  int position = 1;
  while (siblings.item(position).get() != item) ++position;
  history_.Begin(down ? StepKind::MoveDown : StepKind::MoveUp, *item);
  history_.Remove(*item);
  history_.Insert(*item->Parent.get(), down ? position : position - 2, item->shared_from_this());
  Changed(item);
}

void fMenuDef::mnuNew_Click() {
  if (!services_.wizard || tooDeep_) return;
  ItemFields fields;
  fields.Caption = LoadResText(kNewItem);
  fields.Discard = true;
  const std::optional<ItemFields> described = services_.wizard->Describe(fields, true, root_.get(), nullptr);
  if (!described) return;
  MenuItemPtr item = cMenuItem::New();
  item->SetFields(*described);
  Paste({item, true, StepKind::New});
}

void fMenuDef::trvMenu_GotFocus() {
  if (pendingNewDone_) return;
  pendingNewDone_ = true;
  if (const auto key = view_.SelectedNode()) trvMenu_NodeClick(*key);
  if (!session_.gCmdScriptPath.empty()) mnuNew_Click();
}

void fMenuDef::mnuTreeEdit_Click() {
  cMenuItem* item = SelectedItem();
  if (!services_.wizard || !item || SelectedIsTop()) return;
  const std::optional<ItemFields> described = services_.wizard->Describe(item->Fields(), false, root_.get(), item);
  if (!described) return;
  history_.Begin(StepKind::Edit, *item);
  history_.SetFields(*item, *described);
  Changed(item);
}

}  // namespace nx
