// The menu file "Command.mnu": item records in pre-order, with no header.
// Each record: level (int16), key word (int32: bit 31 Discard, bit 30 braille
// button, bits 0-29 the code), caption and action (uint16 length + bytes in
// the ANSI code page), all little-endian.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "menu/menu_item.h"
#include "platform/code_page.h"

namespace nx {

struct MenuReadResult {
  MenuItemPtr root;      // "[root]" with the items as its subtree
  bool complete = true;  // false when the read stopped at damaged data
};

// Builds the tree from file bytes. Items get MenuIds from `counter` in file
// order. `brailleCode(action)` gives the code of an item whose record marks a
// braille button. Never fails: damaged data ends the read, and what was
// attached up to there is the result.
MenuReadResult ParseMenu(std::string_view bytes, const ICodePage& codePage,
                         const std::function<int32_t(const std::wstring&)>& brailleCode, int32_t& counter);

// The file bytes of the tree below `root` (the root itself is not stored).
// `brailleEntry(action, code)` is called for every braille-button item, in
// file order, with the code without bit 30. Nothing when the file cannot
// hold the tree: a text longer than 65,535 bytes, more than 32,768 levels,
// or a character the code page does not have (never written as "?" or a
// look-alike); `reason` (optional) then says which, naming the item and the
// character, in the user's language.
std::optional<std::string> SerializeMenu(const cMenuItem& root, const ICodePage& codePage,
                                         const std::function<void(const std::wstring&, uint32_t)>& brailleEntry,
                                         std::wstring* reason = nullptr);

constexpr int32_t kBrailleBit = 0x40000000;
constexpr uint32_t kDiscardBit = 0x80000000u;

}  // namespace nx
