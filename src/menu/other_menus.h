// The hot keys of the installation's other menus. An application's menu
// overrides the general menu for the keys both use, so a key chosen in one
// menu may hide, or be hidden by, an item of another.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "defs/def_actions.h"
#include "menu/menu_file.h"

namespace nx {

// The hot keys of an installation's other menus, seen from the menu being
// edited: from an application's menu, the general menu's items; from the
// general menu, the applications whose menus hold the same key.
class cOtherMenus {
 public:
  // `edited` is the menu being edited; `defs` must outlive this object. The
  // other menus are read on first use, once, each with the profile of the
  // edited menu's braille display beside it; unreadable or missing ones
  // count as empty.
  cOtherMenus(cDefServer& defs, const MenuLocation& edited);
  // Captions of the general menu's items with `code`, in tree order (empty
  // when the general menu is edited, or code 0).
  std::vector<std::wstring> GeneralItems(int32_t code);
  // The other menus' part of the wizard's "Also used by" line: the general
  // menu's items with `code`, or the first five applications that hold it
  // and how many more; "" when none.
  std::wstring Text(int32_t code);

 private:
  // Reads the other menus into users_, the first time only.
  void Read();
  // The names users_ holds for `code`.
  std::vector<std::wstring> Users(int32_t code);
  // Adds every hot key of the menu at `menu` to users_, with `name`, or with
  // the item's caption when `name` is null; a name once for each key.
  void Add(const MenuLocation& menu, const std::wstring* name);

  cDefServer& defs_;
  MenuLocation edited_;
  bool read_ = false;
  // Hot-key code -> the general menu's captions, or the applications' names.
  std::map<int32_t, std::vector<std::wstring>> users_;
};

}  // namespace nx
