// The menu as a tree of items. Items are shared: the tree, the editor's
// clipboard and the wizard may hold the same item, which lives as long as
// any of them does. A child's Parent does not own its parent and reads as
// null once the parent has ended, so a tree never owns itself and no link
// leads to freed memory; adding an item to a list inside its own subtree is
// refused.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/native_menus.h"

namespace nx {

class cMenuItem;
using MenuItemPtr = std::shared_ptr<cMenuItem>;

// The Parent of an item: used like a plain pointer, but it never outlives
// the item it names (that item's end turns it into null). Only an item that
// a MenuItemPtr holds (as every item made by cMenuItem::New is) can be
// named; any other item reads as null.
class ParentLink {
 public:
  ParentLink() = default;
  ParentLink(cMenuItem* item) { *this = item; }  // NOLINT: reads like the pointer it stands for
  ParentLink& operator=(cMenuItem* item);
  cMenuItem* get() const { return life_.expired() ? nullptr : item_; }
  operator cMenuItem*() const { return get(); }  // NOLINT
  cMenuItem* operator->() const { return get(); }

 private:
  cMenuItem* item_ = nullptr;
  std::weak_ptr<cMenuItem> life_;
};

// The ordered children of one item, positions counted from 1.
class cMenuItems {
 public:
  explicit cMenuItems(cMenuItem* owner) : owner_(owner) {}
  cMenuItems(const cMenuItems&) = delete;
  cMenuItems& operator=(const cMenuItems&) = delete;

  // Appends `item`. Flag 0: its Parent becomes reference's Parent. Flag 1
  // with a reference: its Parent becomes the reference. Any other flag, or
  // flag 1 without a reference, adds nothing and returns null, as does an
  // item whose subtree holds this list's owner.
  MenuItemPtr Add(int16_t asChild, cMenuItem* reference, MenuItemPtr item, const std::wstring& key = L"");
  // Add that hands back only the added item's address (null when nothing
  // was added), for a caller that builds a whole tree: the list is what
  // keeps the item, and a copy handed back would raise and lower its count
  // of holders once more for every item.
  cMenuItem* Append(int16_t asChild, cMenuItem* reference, MenuItemPtr item, const std::wstring& key = L"");
  // Inserts directly after `position` (0: at the front). Parent is left as
  // it is. Null when the position is out of range or the item's subtree
  // holds this list's owner.
  MenuItemPtr AddAfter(MenuItemPtr item, int position, const std::wstring& key = L"");
  MenuItemPtr AddAsFirst(MenuItemPtr item, const std::wstring& key = L"");

  bool IsFirst(const cMenuItem* item) const { return !items_.empty() && items_.front().get() == item; }
  bool IsLast(const cMenuItem* item) const { return !items_.empty() && items_.back().get() == item; }
  // The item at `position` (1-based); null outside 1..Count.
  MenuItemPtr item(int position) const;
  int Count() const { return static_cast<int>(items_.size()); }
  void Remove(int position);
  // The key the item at `position` was added with ("" when none).
  std::wstring Key(int position) const;

  // Iteration in order (the enumeration of the tree walks).
  using const_iterator = std::vector<MenuItemPtr>::const_iterator;
  const_iterator begin() const { return items_.begin(); }
  const_iterator end() const { return items_.end(); }

 private:
  friend class cMenuItem;
  bool WouldOwnItself(const cMenuItem* item) const;
  // The item's place in the list.
  const MenuItemPtr& Insert(size_t index, MenuItemPtr item, const std::wstring& key);

  static constexpr size_t kFirstRoom = 8;

  cMenuItem* owner_;
  std::vector<MenuItemPtr> items_;
  std::vector<std::wstring> keys_;  // empty until an item is added with a key, then beside items_
};

// What an item says of itself, without its place in the tree: what the item
// wizard is given and gives back.
struct ItemFields {
  std::wstring Caption;
  std::wstring Action;
  int32_t HotKey = 0;
  bool Discard = false;
};

class cMenuItem : public std::enable_shared_from_this<cMenuItem> {
 public:
  static MenuItemPtr New() { return std::make_shared<cMenuItem>(); }
  cMenuItem();
  ~cMenuItem();
  cMenuItem(const cMenuItem&) = delete;
  cMenuItem& operator=(const cMenuItem&) = delete;

  std::wstring Caption;
  std::wstring Action;
  int32_t HotKey = 0;
  bool Discard = false;
  std::wstring Tag;  // free for the windows' own use; never stored
  cMenuItems SubItems{this};
  ParentLink Parent;
  int32_t MenuId = 0;

  ItemFields Fields() const { return {Caption, Action, HotKey, Discard}; }
  void SetFields(const ItemFields& fields) {
    Caption = fields.Caption;
    Action = fields.Action;
    HotKey = fields.HotKey;
    Discard = fields.Discard;
  }

  // Builds the native pop-up of this item and of every pull-down below it,
  // each command labelled with its caption and, after a tab, the text
  // `hotKeyText` gives for its hot key. A pop-up made earlier is destroyed
  // first. The item owns the result until DestroyMenu or its end.
  NativeMenu CreateMenu(INativeMenus& menus, const std::function<std::wstring(int32_t)>& hotKeyText);
  // Destroys the pop-ups of the children, depth first, then this one's.
  void DestroyMenu();

  // Puts `item` after `reference`, wherever in this subtree the reference is
  // (the first found in pre-order). Parent is left to the caller. Nothing
  // happens when either is null or the reference is not in the subtree.
  void InsertAfter(const cMenuItem* reference, MenuItemPtr item);
  // Takes `item` out of this subtree (the first place found in pre-order).
  void RemoveItem(const cMenuItem* item);
  // True when `item` is this item or anywhere below it.
  bool Contains(const cMenuItem* item) const;
  // Numbers this subtree in pre-order from `next`, leaving one number unused
  // after every child's subtree. Throws std::overflow_error past INT32_MAX.
  void CreateMenuId(int32_t& next);

 private:
  NativeMenu popup_ = 0;
  INativeMenus* menus_ = nullptr;
};

// Visits every item below `root` in pre-order, without recursion so that
// trees of any depth are safe: enter(item, depth, position) before the item's
// children (depth 0 for the root's children, position from 1 among its
// siblings), leave(item, depth) after them. The walk stops when enter
// returns false. `Item` is cMenuItem or const cMenuItem.
template <typename Item, typename Enter, typename Leave>
bool WalkTree(Item& root, Enter enter, Leave leave) {
  struct Frame {
    Item* node;
    int position;
  };
  std::vector<Frame> stack{{&root, 1}};
  while (!stack.empty()) {
    Frame& frame = stack.back();
    if (frame.position > frame.node->SubItems.Count()) {
      Item* done = frame.node;
      stack.pop_back();
      if (!stack.empty()) leave(*done, stack.size() - 1);
      continue;
    }
    const int position = frame.position++;
    Item* child = frame.node->SubItems.item(position).get();
    if (!enter(*child, stack.size() - 1, position)) return false;
    stack.push_back({child, 1});
  }
  return true;
}

inline ParentLink& ParentLink::operator=(cMenuItem* item) {
  item_ = item;
  life_ = item ? item->weak_from_this() : std::weak_ptr<cMenuItem>();
  return *this;
}

// A named point beside the tree: name, a second text and three numbers.
class cNamedPoint {
 public:
  std::wstring Name;
  std::wstring Text;
  int32_t X = 0, Y = 0, Number = 0;
  // "name; x; y; text; number"
  std::wstring Dump() const;
};

}  // namespace nx
