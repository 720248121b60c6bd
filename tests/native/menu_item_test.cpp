#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "menu/menu_item.h"

namespace nx {
namespace {

MenuItemPtr Item(const wchar_t* caption) {
  auto item = cMenuItem::New();
  return item->Caption = caption, item;
}

MenuItemPtr Child(cMenuItem& parent, const wchar_t* caption) { return parent.SubItems.Add(1, &parent, Item(caption)); }

// The clipboard may keep an item of a tree that is closed: it stays whole
// and its Parent reads as null. No list takes in its own owner or one of
// the owner's ancestors, whatever their Parent says.
TEST(MenuItem, ListsKeepTheirOrderAndItemsOutliveTheirTree) {
  MenuItemPtr kept;
  {
    auto root = Item(L"root");
    auto file = Child(*root, L"File");
    Child(*file, L"Open");
    file->SubItems.AddAfter(Item(L"Close"), 1);  // after the last item
    file->SubItems.AddAsFirst(Item(L"New"));     // its Parent says nothing
    file->SubItems.AddAfter(Item(L"Save"), 2);
    EXPECT_EQ(file->SubItems.AddAfter(Item(L"far"), 5), nullptr);
    for (cMenuItem* into : {file.get(), file->SubItems.item(1).get()}) {
      for (const MenuItemPtr& ancestor : {root, file}) {
        EXPECT_EQ(into->SubItems.AddAsFirst(ancestor), nullptr) << into->Caption;
        EXPECT_EQ(into->SubItems.AddAfter(ancestor, 0), nullptr) << into->Caption;
        EXPECT_EQ(into->SubItems.Add(1, into, ancestor), nullptr) << into->Caption;
      }
    }
    kept = file;
  }
  EXPECT_EQ(kept->Parent, nullptr);
  std::wstring captions;
  for (const auto& child : kept->SubItems) captions += child->Caption + L" ";
  EXPECT_EQ(captions, L"New Open Save Close ");
}

// Records what the menu calls would have made.
struct FakeMenus : INativeMenus {
  std::vector<std::wstring> log;
  NativeMenu next = 100;
  int live = 0;
  NativeMenu CreatePopup() override { return log.push_back(L"create " + std::to_wstring(next)), ++live, next++; }
  void AppendPopup(NativeMenu menu, NativeMenu child, const std::wstring& label) override {
    log.push_back(std::to_wstring(menu) + L" popup " + std::to_wstring(child) + L" " + label);
  }
  void AppendCommand(NativeMenu menu, int id, const std::wstring& label) override {
    log.push_back(std::to_wstring(menu) + L" command " + std::to_wstring(id) + L" " + label);
  }
  void Destroy(NativeMenu menu) override { log.push_back(L"destroy " + std::to_wstring(menu)), --live; }
};

// The preview: a pop-up for every pull-down, each command with its hot key
// after a tab; every pop-up destroyed exactly once.
TEST(MenuItem, CreateMenuBuildsNestedPopups) {
  FakeMenus menus;
  auto root = Item(L"root");  // the tree alone holds the other items
  Child(*Child(*Child(*root, L"File"), L"Sub"), L"Deep")->HotKey = 5;
  Child(*root, L"Plain")->MenuId = 9;
  auto text = [](int32_t code) { return code ? L"key" + std::to_wstring(code) : std::wstring(); };

  EXPECT_EQ(root->CreateMenu(menus, text), 100u);
  EXPECT_EQ(menus.log,
            (std::vector<std::wstring>{L"create 100", L"create 101", L"create 102", L"102 command 0 Deep\tkey5",
                                       L"101 popup 102 Sub", L"100 popup 101 File", L"100 command 9 Plain"}));
  root->CreateMenu(menus, text);  // the old pop-ups go first
  EXPECT_EQ(menus.log.at(7), L"destroy 100");
  root->DestroyMenu();
  root->DestroyMenu();
  root.reset();
  EXPECT_EQ(menus.live, 0);
}

}  // namespace
}  // namespace nx
