#include "menu/other_menus.h"

#include <algorithm>

#include "defs/hot_key.h"
#include "platform/folders.h"
#include "platform/list_order.h"
#include "platform/string_table.h"

namespace nx {
namespace {

constexpr int kGeneralItems = 675, kOneApp = 676, kApps = 677, kFewMore = 678, kManyMore = 679;
// Applications named in the "Also used by" line; the rest are counted.
constexpr size_t kNamedApps = 5;

std::wstring Joined(const std::vector<std::wstring>& names, size_t count) {
  std::wstring text;
  for (size_t i = 0; i < count; ++i) text += (i ? L", " : L"") + names[i];
  return text;
}

}  // namespace

cOtherMenus::cOtherMenus(cDefServer& defs, const MenuLocation& edited) : defs_(defs), edited_(edited) {}

std::vector<std::wstring> cOtherMenus::GeneralItems(int32_t code) {
  return edited_.general ? std::vector<std::wstring>() : Users(code);
}

std::wstring cOtherMenus::Text(int32_t code) {
  const std::vector<std::wstring> names = Users(code);
  if (names.empty()) return {};
  if (!edited_.general) return LoadResText(kGeneralItems, Joined(names, names.size()));
  std::wstring text = Joined(names, std::min(names.size(), kNamedApps));
  if (names.size() > kNamedApps) {
    // Czech counts "a 2 další" but "a 5 dalších".
    const size_t more = names.size() - kNamedApps;
    text += L" " + LoadResText(more < 5 ? kFewMore : kManyMore, std::to_wstring(more));
  }
  return LoadResText(names.size() == 1 ? kOneApp : kApps, text);
}

std::vector<std::wstring> cOtherMenus::Users(int32_t code) {
  if (code == 0) return {};
  Read();
  const auto found = users_.find(code);
  return found == users_.end() ? std::vector<std::wstring>() : found->second;
}

void cOtherMenus::Read() {
  if (read_) return;
  read_ = true;
  if (!edited_.general) {
    Add({edited_.menuDir, L"", edited_.brailleName, true}, nullptr);
    return;
  }
  auto apps = ListSubfolders(edited_.menuDir);
  if (!apps) return;
  std::stable_sort(apps->begin(), apps->end(), ListOrderLess);
  for (const auto& app : *apps) Add({edited_.menuDir, app, edited_.brailleName, false}, &app);
}

void cOtherMenus::Add(const MenuLocation& menu, const std::wstring* name) {
  // A damaged menu gives the items read before the damage.
  const MenuItemPtr root =
      cMenuFile(defs_.CodePage(), defs_.Profile()).InitCommandDef(MenuFilePath(menu), BrailleProfilePath(menu));
  if (!root) return;
  WalkTree(
      *root,
      [&](const cMenuItem& item, size_t, int) {
        // A display button whose code the profile lacks (or with no display
        // named) is no key of the display: it clashes with nothing.
        if (item.HotKey == 0 || static_cast<uint32_t>(item.HotKey) == hotkey::kBrailleBit) return true;
        std::vector<std::wstring>& names = users_[item.HotKey];
        if (!name)
          names.push_back(item.Caption);
        else if (names.empty() || names.back() != *name)
          names.push_back(*name);
        return true;
      },
      [](const cMenuItem&, size_t) {});
}

}  // namespace nx
