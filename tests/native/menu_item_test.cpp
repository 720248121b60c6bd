#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "menu/menu_item.h"

namespace nx {
namespace {

MenuItemPtr Item(const wchar_t* caption) {
  auto item = cMenuItem::New();
  item->Caption = caption;
  return item;
}

MenuItemPtr Child(cMenuItem& parent, const wchar_t* caption) { return parent.SubItems.Add(1, &parent, Item(caption)); }

std::wstring Captions(const cMenuItem& item) {
  std::wstring out;
  for (const auto& child : item.SubItems) {
    out += child->Caption;
    if (child->SubItems.Count()) out += L"(" + Captions(*child) + L")";
    out += L" ";
  }
  return out;
}

// Append is Add handing back the address only: both are held to the same cases.
TEST(MenuItems, AddAndAppendTestTheFlagForExactlyOne) {
  auto root = Item(L"root");
  auto a = Child(*root, L"a");
  const struct {
    int16_t flag;
    bool withReference;
    bool added;
    cMenuItem* parent;
  } cases[] = {{0, true, true, root.get()},
               {1, true, true, a.get()},
               {1, false, false, nullptr},
               {-1, true, false, nullptr},
               {2, true, false, nullptr}};
  for (const bool append : {false, true}) {
    for (const auto& c : cases) {
      cMenuItems& list = c.flag == 1 ? a->SubItems : root->SubItems;
      auto item = Item(L"x");
      const int before = list.Count();
      cMenuItem* reference = c.withReference ? a.get() : nullptr;
      const cMenuItem* result = append ? list.Append(c.flag, reference, item) : list.Add(c.flag, reference, item).get();
      EXPECT_EQ(result, c.added ? item.get() : nullptr) << c.flag << " append " << append;
      EXPECT_EQ(list.Count(), before + (c.added ? 1 : 0)) << c.flag << " append " << append;
      if (c.added) {
        EXPECT_EQ(item->Parent, c.parent) << c.flag;
        EXPECT_TRUE(list.IsLast(item.get()));
      }
    }
  }
}

TEST(MenuItems, PositionsAndIdentity) {
  auto root = Item(L"root");
  EXPECT_FALSE(root->SubItems.IsFirst(root.get()));
  EXPECT_FALSE(root->SubItems.IsLast(nullptr));
  auto b = Child(*root, L"b");
  EXPECT_TRUE(root->SubItems.IsFirst(b.get()) && root->SubItems.IsLast(b.get()));
  auto twin = Item(L"b");  // equal fields, another item
  EXPECT_FALSE(root->SubItems.IsFirst(twin.get()));
  root->SubItems.AddAsFirst(Item(L"a"));
  root->SubItems.AddAfter(Item(L"c"), 2, L"key");
  root->SubItems.AddAfter(Item(L"a2"), 1);
  EXPECT_EQ(Captions(*root), L"a a2 b c ");
  EXPECT_EQ(root->SubItems.Key(4), L"key");
  EXPECT_EQ(root->SubItems.item(0), nullptr);
  EXPECT_EQ(root->SubItems.item(5), nullptr);
  EXPECT_EQ(root->SubItems.AddAfter(Item(L"far"), 9), nullptr);
  root->SubItems.Remove(2);
  root->SubItems.Remove(9);  // out of range: nothing
  EXPECT_EQ(Captions(*root), L"a b c ");
}

TEST(MenuItem, InsertAfterAndRemoveItemSearchTheWholeTree) {
  auto root = Item(L"root");
  auto file = Child(*root, L"File");
  auto open = Child(*file, L"Open");
  auto recent = Child(*file, L"Recent");
  Child(*recent, L"one");
  auto edit = Child(*root, L"Edit");

  root->InsertAfter(open.get(), Item(L"Save"));
  root->InsertAfter(edit.get(), Item(L"View"));
  root->InsertAfter(Item(L"stranger").get(), Item(L"lost"));
  root->InsertAfter(nullptr, Item(L"lost"));
  EXPECT_EQ(Captions(*root), L"File(Open Save Recent(one ) ) Edit View ");

  root->RemoveItem(recent.get());
  root->RemoveItem(Item(L"Edit").get());  // equal caption, not the same item
  EXPECT_EQ(Captions(*root), L"File(Open Save ) Edit View ");
}

TEST(MenuItem, MenuIdsLeaveAGapAfterEverySubtree) {
  auto root = Item(L"root");
  auto a = Child(*root, L"a");
  auto b = Child(*root, L"b");
  int32_t next = 1;
  root->CreateMenuId(next);
  EXPECT_EQ(root->MenuId, 1);
  EXPECT_EQ(a->MenuId, 2);
  EXPECT_EQ(b->MenuId, 4);
  EXPECT_EQ(next, 6);

  auto a1 = Child(*a, L"a1");
  next = 256;
  root->CreateMenuId(next);
  EXPECT_EQ((std::vector<int32_t>{root->MenuId, a->MenuId, a1->MenuId, b->MenuId}),
            (std::vector<int32_t>{256, 257, 258, 261}));

  next = INT32_MAX - 2;
  EXPECT_THROW(root->CreateMenuId(next), std::overflow_error);
}

TEST(MenuItem, SharedItemsOutliveTheTreeAndCyclesAreRefused) {
  MenuItemPtr clipboard;
  {
    auto root = Item(L"root");
    auto file = Child(*root, L"File");
    Child(*file, L"Open");
    clipboard = file;
    // Neither the item itself nor an ancestor can go into its subtree.
    EXPECT_EQ(file->SubItems.Add(1, file.get(), file), nullptr);
    EXPECT_EQ(file->SubItems.AddAsFirst(root), nullptr);
    EXPECT_EQ(file->SubItems.item(1)->SubItems.AddAfter(file, 0), nullptr);
  }
  EXPECT_EQ(clipboard->Parent, nullptr);
  EXPECT_EQ(Captions(*clipboard), L"Open ");
  EXPECT_EQ(clipboard->SubItems.item(1)->Parent, clipboard.get());
}

// Parent is whatever the callers last set, so neither a stale nor a missing
// link may let a list take in its own ancestor, and a link never outlives
// the parent it names.
TEST(MenuItem, ParentNeverOutlivesItsItemAndCyclesAreRefusedWhateverItSays) {
  auto withChild = Item(L"pull-down");
  Child(*withChild, L"inside");

  auto x = Item(L"x");
  {
    auto p = Item(L"p");
    p->SubItems.Add(1, p.get(), x);
    p->SubItems.Remove(1);
    EXPECT_EQ(x->Parent, p.get());  // Remove leaves Parent as it was
  }
  EXPECT_EQ(x->Parent.get(), nullptr);  // ...until that parent ends
  EXPECT_NE(x->SubItems.Add(1, x.get(), withChild), nullptr);

  // AddAfter and AddAsFirst leave Parent alone, so here it says nothing.
  auto a = Item(L"a"), b = Item(L"b");
  const struct {
    cMenuItem* into;
    MenuItemPtr item;
  } refused[] = {{b.get(), a}, {b.get(), b}, {withChild->SubItems.item(1).get(), withChild}};
  ASSERT_NE(a->SubItems.AddAsFirst(b), nullptr);
  Child(*b, L"b1");
  for (const auto& c : refused) {
    EXPECT_EQ(c.into->SubItems.AddAsFirst(c.item), nullptr) << c.into->Caption;
    EXPECT_EQ(c.into->SubItems.AddAfter(c.item, 0), nullptr) << c.into->Caption;
    EXPECT_EQ(c.into->SubItems.Add(1, c.into, c.item), nullptr) << c.into->Caption;
  }
  EXPECT_EQ(Captions(*a), L"b(b1 ) ");
  EXPECT_EQ(b->Parent.get(), nullptr);
  // One item in two lists of the same subtree is no cycle.
  EXPECT_NE(a->SubItems.AddAsFirst(b->SubItems.item(1)), nullptr);
}

TEST(MenuItem, DeepTreesAreReleasedWithoutRecursion) {
  auto root = Item(L"root");
  cMenuItem* last = root.get();
  for (int i = 0; i < 1000000; ++i) last = Child(*last, L"deeper").get();
  int32_t next = 0;
  root->CreateMenuId(next);
  EXPECT_EQ(last->MenuId, 1000000);
  root.reset();  // a recursive release would overflow the stack here
}

// Records what the menu calls would have made.
class FakeMenus : public INativeMenus {
 public:
  std::vector<std::wstring> log;
  NativeMenu next = 100;
  int live = 0;
  NativeMenu CreatePopup() override {
    ++live;
    log.push_back(L"create " + std::to_wstring(next));
    return next++;
  }
  void AppendPopup(NativeMenu menu, NativeMenu child, const std::wstring& label) override {
    log.push_back(std::to_wstring(menu) + L" popup " + std::to_wstring(child) + L" " + label);
  }
  void AppendCommand(NativeMenu menu, int id, const std::wstring& label) override {
    log.push_back(std::to_wstring(menu) + L" command " + std::to_wstring(id) + L" " + label);
  }
  void Destroy(NativeMenu menu) override {
    --live;
    log.push_back(L"destroy " + std::to_wstring(menu));
  }
};

TEST(MenuItem, CreateMenuBuildsNestedPopups) {
  FakeMenus menus;
  auto root = Item(L"root");  // the tree alone holds the other items
  cMenuItem* deep = Child(*Child(*Child(*root, L"File"), L"Sub"), L"Deep").get();
  deep->MenuId = 7;
  deep->HotKey = 5;
  Child(*root, L"Plain")->MenuId = 9;
  auto text = [](int32_t code) { return code ? L"key" + std::to_wstring(code) : std::wstring(); };

  EXPECT_EQ(root->CreateMenu(menus, text), 100u);
  EXPECT_EQ(menus.log,
            (std::vector<std::wstring>{L"create 100", L"create 101", L"create 102", L"102 command 7 Deep\tkey5",
                                       L"101 popup 102 Sub", L"100 popup 101 File", L"100 command 9 Plain"}));
  menus.log.clear();
  root->CreateMenu(menus, text);  // the old pop-ups go first
  EXPECT_EQ(menus.log.front(), L"destroy 100");
  root->DestroyMenu();
  root->DestroyMenu();  // nothing is destroyed twice
  root.reset();
  EXPECT_EQ(menus.live, 0);  // every pop-up destroyed exactly once
}

TEST(MenuItem, DeepMenusArePreviewedWithoutRecursion) {
  FakeMenus menus;
  constexpr int kLevels = 100000;
  auto root = Item(L"root");
  cMenuItem* last = root.get();
  for (int i = 0; i < kLevels; ++i) last = Child(*last, L"deeper").get();
  last->MenuId = 42;
  root->CreateMenu(menus, nullptr);
  ASSERT_EQ(menus.log.size(), 2u * kLevels);  // the deepest item is a command
  EXPECT_EQ(menus.log[kLevels - 1], L"create " + std::to_wstring(100 + kLevels - 1));
  EXPECT_EQ(menus.log[kLevels], std::to_wstring(100 + kLevels - 1) + L" command 42 deeper");
  EXPECT_EQ(menus.log[kLevels + 1],
            std::to_wstring(100 + kLevels - 2) + L" popup " + std::to_wstring(100 + kLevels - 1) + L" deeper");
  EXPECT_EQ(menus.log.back(), L"100 popup 101 deeper");
  menus.log.clear();
  root->DestroyMenu();
  EXPECT_EQ(menus.live, 0);
  EXPECT_EQ(menus.log.front(), L"destroy " + std::to_wstring(100 + kLevels - 1));
  EXPECT_EQ(menus.log.back(), L"destroy 100");
}

TEST(NamedPoint, Dump) {
  cNamedPoint p;
  p.Name = L"home";
  p.X = 10;
  p.Y = 20;
  p.Text = L"top";
  p.Number = 3;
  EXPECT_EQ(p.Dump(), L"home; 10; 20; top; 3");
}

}  // namespace
}  // namespace nx
