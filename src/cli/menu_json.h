// Menus as JSON: {"items": [ITEM, ...], "complete": BOOL}, where ITEM is
// {"caption", "action", "hotKey", "discard", "items"} and, in dumps,
// "menuId" and "hotKeyText" too. Texts are UTF-8.
#pragma once

#include <functional>
#include <string>

#include "cli/json.h"
#include "menu/menu_item.h"
#include "platform/code_page.h"

namespace nx {

struct MenuJsonOptions {
  bool withIds = false;                             // add "menuId"
  std::function<std::wstring(int32_t)> hotKeyText;  // add "hotKeyText" when set
};

// The tree below `root` as one JSON document, two-space indented; items
// deeper than ten levels are no further indented. Any tree is written, and
// reads back whatever its depth.
std::string MenuToJson(const cMenuItem& root, bool complete, const MenuJsonOptions& options);

// A tree from a JSON document; null with `error` naming the place and the
// problem when the document is not a menu, or (with `codePage`) when a
// caption or action holds a character that code page cannot store.
// "menuId", "hotKeyText" and "complete" are accepted and ignored, so a dump
// reads back.
MenuItemPtr MenuFromJson(const JsonValue& document, std::string& error, const ICodePage* codePage = nullptr);

}  // namespace nx
