#include "menu/menu_item.h"

#include <limits>
#include <stdexcept>
#include <unordered_set>

namespace nx {
namespace {

int32_t Increment(int32_t value) {
  if (value == std::numeric_limits<int32_t>::max()) throw std::overflow_error("menu id counter overflow");
  return value + 1;
}

// A depth-first pre-order walk that stops at the first child for which
// `visit` returns true, and then goes on with the siblings of the level above
// (a match only ends the walk of its own level). Iterative, so that trees of
// any depth are safe.
template <typename Visit>
void WalkUntilMatch(cMenuItem& root, Visit visit) {
  struct Frame {
    cMenuItem* node;
    int position;
  };
  std::vector<Frame> stack{{&root, 1}};
  while (!stack.empty()) {
    Frame& frame = stack.back();
    if (frame.position > frame.node->SubItems.Count()) {
      stack.pop_back();
      continue;
    }
    MenuItemPtr child = frame.node->SubItems.item(frame.position);
    if (visit(frame.node->SubItems, *child, frame.position)) {
      stack.pop_back();
      continue;
    }
    ++frame.position;
    stack.push_back({child.get(), 1});
  }
}

}  // namespace

bool cMenuItems::WouldOwnItself(const cMenuItem* item) const {
  // Parent links are only what the callers last set, so the new item's
  // subtree itself is searched for the owner.
  return item->Contains(owner_);
}

MenuItemPtr cMenuItems::Add(int16_t asChild, cMenuItem* reference, MenuItemPtr item, const std::wstring& key) {
  cMenuItem* added = Append(asChild, reference, std::move(item), key);
  return added ? items_.back() : nullptr;
}

cMenuItem* cMenuItems::Append(int16_t asChild, cMenuItem* reference, MenuItemPtr item, const std::wstring& key) {
  if (!item || WouldOwnItself(item.get())) return nullptr;
  if (asChild == 0) {
    item->Parent = reference ? reference->Parent : nullptr;
  } else if (asChild == 1 && reference) {
    item->Parent = reference;
  } else {
    return nullptr;
  }
  return Insert(items_.size(), std::move(item), key).get();
}

MenuItemPtr cMenuItems::AddAfter(MenuItemPtr item, int position, const std::wstring& key) {
  if (!item || position < 0 || position > Count() || WouldOwnItself(item.get())) return nullptr;
  return Insert(static_cast<size_t>(position), std::move(item), key);
}

const MenuItemPtr& cMenuItems::Insert(size_t index, MenuItemPtr item, const std::wstring& key) {
  if (!key.empty() && keys_.empty()) keys_.resize(items_.size());
  if (!keys_.empty()) keys_.insert(keys_.begin() + static_cast<std::ptrdiff_t>(index), key);
  // A list that gets one child mostly gets several: room for a pull-down's
  // usual few at once spares a menu's lists three moves of their children
  // and the allocations for one, two and four (at the cost of 128 bytes for
  // every list that has children at all).
  if (items_.capacity() == 0) items_.reserve(kFirstRoom);
  if (index == items_.size()) return items_.emplace_back(std::move(item));
  return *items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
}

MenuItemPtr cMenuItems::AddAsFirst(MenuItemPtr item, const std::wstring& key) { return AddAfter(item, 0, key); }

MenuItemPtr cMenuItems::item(int position) const {
  if (position < 1 || position > Count()) return nullptr;
  return items_[static_cast<size_t>(position - 1)];
}

std::wstring cMenuItems::Key(int position) const {
  if (position < 1 || position > Count() || keys_.empty()) return {};
  return keys_[static_cast<size_t>(position - 1)];
}

void cMenuItems::Remove(int position) {
  if (position < 1 || position > Count()) return;
  items_.erase(items_.begin() + (position - 1));
  if (!keys_.empty()) keys_.erase(keys_.begin() + (position - 1));
}

cMenuItem::cMenuItem() = default;

cMenuItem::~cMenuItem() {
  if (popup_ && menus_) menus_->Destroy(popup_);
  // Release the subtree without recursion: an item whose last holder is this
  // tree hands its children over before it goes.
  std::vector<MenuItemPtr> pending;
  auto takeChildren = [&pending](cMenuItem& item) {
    for (auto& child : item.SubItems.items_) pending.push_back(std::move(child));
    item.SubItems.items_.clear();
  };
  takeChildren(*this);
  while (!pending.empty()) {
    MenuItemPtr item = std::move(pending.back());
    pending.pop_back();
    if (item.use_count() == 1) takeChildren(*item);
  }
}

NativeMenu cMenuItem::CreateMenu(INativeMenus& menus, const std::function<std::wstring(int32_t)>& hotKeyText) {
  auto begin = [&menus](cMenuItem& item) {
    if (item.popup_ && item.menus_) item.menus_->Destroy(item.popup_);
    item.menus_ = &menus;
    item.popup_ = menus.CreatePopup();
  };
  // The pull-downs whose pop-ups are being filled; a pull-down goes into its
  // parent's pop-up once its own is whole.
  std::vector<cMenuItem*> filling{this};
  begin(*this);
  WalkTree(
      *this,
      [&](cMenuItem& child, size_t, int) {
        if (child.SubItems.Count() >= 1) {
          begin(child);
          filling.push_back(&child);
          return true;
        }
        std::wstring label = child.Caption;
        const std::wstring keyText = hotKeyText ? hotKeyText(child.HotKey) : std::wstring();
        if (!keyText.empty()) label += L"\t" + keyText;
        menus.AppendCommand(filling.back()->popup_, child.MenuId, label);
        return true;
      },
      [&](cMenuItem& done, size_t) {
        if (done.SubItems.Count() == 0) return;
        filling.pop_back();
        menus.AppendPopup(filling.back()->popup_, done.popup_, done.Caption);
      });
  return popup_;
}

void cMenuItem::DestroyMenu() {
  // Children before their parent. Forgetting each handle keeps a later
  // CreateMenu or the item's end from destroying it a second time.
  auto destroy = [](cMenuItem& item) {
    if (item.popup_ && item.menus_) item.menus_->Destroy(item.popup_);
    item.popup_ = 0;
  };
  WalkTree(
      *this, [](cMenuItem&, size_t, int) { return true; }, [&](cMenuItem& done, size_t) { destroy(done); });
  destroy(*this);
}

void cMenuItem::InsertAfter(const cMenuItem* reference, MenuItemPtr item) {
  if (!reference || !item) return;
  WalkUntilMatch(*this, [&](cMenuItems& list, cMenuItem& child, int position) {
    if (&child != reference) return false;
    list.AddAfter(item, position);
    return true;
  });
}

void cMenuItem::RemoveItem(const cMenuItem* item) {
  if (!item) return;
  WalkUntilMatch(*this, [&](cMenuItems& list, cMenuItem& child, int position) {
    if (&child != item) return false;
    list.Remove(position);
    return true;
  });
}

bool cMenuItem::Contains(const cMenuItem* item) const {
  if (item == this) return true;
  if (!item || SubItems.Count() == 0) return false;
  // An item may sit in several lists; each is searched once, so that a
  // subtree that shares items cannot make the search take exponential time.
  std::unordered_set<const cMenuItem*> seen{this};
  std::vector<const cMenuItem*> pending{this};
  while (!pending.empty()) {
    const cMenuItem* next = pending.back();
    pending.pop_back();
    for (const auto& child : next->SubItems) {
      if (child.get() == item) return true;
      if (child->SubItems.Count() > 0 && seen.insert(child.get()).second) pending.push_back(child.get());
    }
  }
  return false;
}

void cMenuItem::CreateMenuId(int32_t& next) {
  MenuId = next;
  next = Increment(next);
  WalkTree(
      *this,
      [&next](cMenuItem& item, size_t, int) {
        item.MenuId = next;
        next = Increment(next);
        return true;
      },
      // One number is left unused after every child's subtree.
      [&next](cMenuItem&, size_t) { next = Increment(next); });
}

std::wstring cNamedPoint::Dump() const {
  return Name + L"; " + std::to_wstring(X) + L"; " + std::to_wstring(Y) + L"; " + Text + L"; " +
         std::to_wstring(Number);
}

}  // namespace nx
