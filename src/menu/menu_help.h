// A menu's section of the screen reader's help page: the application's name
// as a heading and the items as nested lists, each with its hot key.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "defs/def_actions.h"
#include "menu/menu_file.h"
#include "menu/menu_item.h"

namespace nx {

// "<H3>appName</H3>" and the items below `root` as nested "<UL>" lists, an
// item's hot key after its caption as " ( text ) " when `keyText` gives a
// text for it. An item whose command opens the application's tips links to
// its tips file. Never fails.
std::wstring RenderHelpSection(const cMenuItem& root, const std::wstring& appName,
                               const std::function<std::wstring(int32_t)>& keyText);

// Reads the menu with `defs`' code page and profiles and renders its section,
// the keys named by `defs` (whose button names become those of the menu's
// display); "" when there is no menu file.
std::wstring MenuHelpSection(cDefServer& defs, const MenuLocation& menu);

}  // namespace nx
