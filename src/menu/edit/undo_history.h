// The menu editor's undo and redo: every change of the tree is one step,
// kept as the few moves that made it (an item put in or taken out of a
// list, an item's fields, the top node), so that a step costs what the
// change cost and not a copy of the menu.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "menu/menu_item.h"

namespace nx {

// What a step did, for the captions of Undo and Redo.
enum class StepKind { New, Edit, Paste, Delete, DeleteMenu, MoveUp, MoveDown };

class UndoHistory {
 public:
  // The most steps kept; the oldest goes when a new one would pass it.
  static constexpr size_t kMaxSteps = 100;

  // `root` is the editor's top node, which a step may replace; it must
  // outlive the history.
  explicit UndoHistory(MenuItemPtr& root) : root_(root) {}

  // Forgets every step; the tree as it is counts as saved.
  void Clear();

  // A change is made between Begin and Commit through the calls below, which
  // change the tree and remember how. `subject` is the item the step is
  // about (its caption names the step). Commit drops the steps that could
  // be redone; a step with no change is not kept.
  void Begin(StepKind kind, const cMenuItem& subject);
  // Puts `item` into `parent`'s children at `index` (0: first).
  void Insert(cMenuItem& parent, int index, const MenuItemPtr& item);
  // Takes `item` out of its parent's children.
  void Remove(cMenuItem& item);
  void SetFields(cMenuItem& item, const ItemFields& fields);
  void SetRoot(MenuItemPtr value);
  void Commit();

  bool CanUndo() const { return !done_.empty(); }
  bool CanRedo() const { return !undone_.empty(); }
  // The step Undo (Redo) would take back (make again): its kind and the
  // caption of its subject as it was when the step was made.
  StepKind UndoKind() const { return done_.back().kind; }
  StepKind RedoKind() const { return undone_.back().kind; }
  const std::wstring& UndoCaption() const { return done_.back().caption; }
  const std::wstring& RedoCaption() const { return undone_.back().caption; }

  // Takes the last step back (makes the last undone step again) and returns
  // the item to select: the step's subject when it is in the tree now, else
  // the parent it had, else the top node (null without one). Nothing
  // happens, and null is returned, without such a step.
  cMenuItem* Undo();
  cMenuItem* Redo();

  // The tree is saved as it is now; AtSaved tells whether it is still (or
  // again, after undo or redo) the tree that was saved.
  void MarkSaved() { saved_ = Current(); }
  bool AtSaved() const { return saved_ == Current(); }

 private:
  struct Move {
    enum class Op { Insert, Remove, Fields, Root } op;
    MenuItemPtr item;    // inserted, removed, changed; Root: the other top node
    MenuItemPtr parent;  // Insert, Remove: the list's owner
    int index = 0;       // Insert, Remove: the place in the list
    ItemFields fields;   // Fields: the other fields
  };
  struct Step {
    StepKind kind;
    std::wstring caption;
    MenuItemPtr subject;
    std::vector<Move> moves;
    size_t serial = 0;
  };

  size_t Current() const { return done_.empty() ? 0 : done_.back().serial; }
  void Apply(Move& move, bool forward);
  cMenuItem* Replay(std::deque<Step>& from, std::deque<Step>& to, bool forward);

  MenuItemPtr& root_;
  std::deque<Step> done_, undone_;
  Step open_;
  size_t serial_ = 0, saved_ = 0;
};

}  // namespace nx
