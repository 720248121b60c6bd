#include "menu/edit/undo_history.h"

#include <utility>

namespace nx {

void UndoHistory::Clear() {
  done_.clear();
  undone_.clear();
  open_ = Step{};
  saved_ = Current();
}

void UndoHistory::Begin(StepKind kind, const cMenuItem& subject) {
  open_ = Step{};
  open_.kind = kind;
  open_.subject = std::const_pointer_cast<cMenuItem>(subject.shared_from_this());
}

void UndoHistory::Insert(cMenuItem& parent, int index, const MenuItemPtr& item) {
  open_.moves.push_back({Move::Op::Insert, item, parent.shared_from_this(), index, {}});
  Apply(open_.moves.back(), true);
}

void UndoHistory::Remove(cMenuItem& item) {
  auto indexIn = [&item](const cMenuItem* parent) {
    int index = 0;
    for (const auto& child : parent->SubItems) {
      if (child.get() == &item) return index;
      ++index;
    }
    return -1;
  };
  cMenuItem* parent = item.Parent;
  // The parent link is the quick way; the tree is searched when it is wrong.
  if ((!parent || indexIn(parent) < 0) && root_) {
    parent = indexIn(root_.get()) >= 0 ? root_.get() : nullptr;
    WalkTree(
        *root_,
        [&](cMenuItem& at, size_t, int) {
          if (!parent && indexIn(&at) >= 0) parent = &at;
          return parent == nullptr;
        },
        [](cMenuItem&, size_t) {});
  }
  if (!parent) return;
  open_.moves.push_back({Move::Op::Remove, item.shared_from_this(), parent->shared_from_this(), indexIn(parent), {}});
  Apply(open_.moves.back(), true);
}

void UndoHistory::SetFields(cMenuItem& item, const ItemFields& fields) {
  open_.moves.push_back({Move::Op::Fields, item.shared_from_this(), nullptr, 0, fields});
  Apply(open_.moves.back(), true);
}

void UndoHistory::SetRoot(MenuItemPtr value) {
  open_.moves.push_back({Move::Op::Root, std::move(value), nullptr, 0, {}});
  Apply(open_.moves.back(), true);
}

void UndoHistory::Commit() {
  Step step = std::move(open_);
  open_ = Step{};
  if (step.moves.empty()) return;
  step.caption = step.subject->Caption;
  step.serial = ++serial_;
  done_.push_back(std::move(step));
  undone_.clear();  // a new change ends what could be redone
  if (done_.size() > kMaxSteps) done_.pop_front();
}

// Every move is its own inverse once its direction is turned: what went in
// comes out of the same place, and fields and top nodes are exchanged.
void UndoHistory::Apply(Move& move, bool forward) {
  const bool insert = (move.op == Move::Op::Insert) == forward;
  switch (move.op) {
    case Move::Op::Insert:
    case Move::Op::Remove:
      if (insert) {
        move.parent->SubItems.AddAfter(move.item, move.index);
        move.item->Parent = move.parent.get();
      } else {
        move.parent->SubItems.Remove(move.index + 1);
      }
      return;
    case Move::Op::Fields: {
      const ItemFields had = move.item->Fields();
      move.item->SetFields(move.fields);
      move.fields = had;
      return;
    }
    case Move::Op::Root:
      std::swap(root_, move.item);
      return;
  }
}

cMenuItem* UndoHistory::Replay(std::deque<Step>& from, std::deque<Step>& to, bool forward) {
  if (from.empty()) return nullptr;
  Step step = std::move(from.back());
  from.pop_back();
  cMenuItem* parent = step.subject->Parent;
  const MenuItemPtr formerParent = parent ? parent->shared_from_this() : nullptr;
  if (forward) {
    for (auto& move : step.moves) Apply(move, true);
  } else {
    for (auto move = step.moves.rbegin(); move != step.moves.rend(); ++move) Apply(*move, false);
  }
  cMenuItem* subject = step.subject.get();
  to.push_back(std::move(step));
  if (!root_) return nullptr;
  if (root_->Contains(subject)) return subject;
  if (formerParent && root_->Contains(formerParent.get())) return formerParent.get();
  return root_.get();
}

cMenuItem* UndoHistory::Undo() { return Replay(done_, undone_, false); }

cMenuItem* UndoHistory::Redo() { return Replay(undone_, done_, true); }

}  // namespace nx
