// A menu item's hot key as one 32-bit code, the way the menu file, the key
// texts, the wizard and nxmenu see it:
// - a keyboard chord: the key code in the low word and the modifier mask
//   (Shift 1, Control 2, Alt 4, the screen reader's key 0x2000) in the high
//   word; 0 is no hot key;
// - a set of the braille display's buttons: kBrailleBit and one bit per
//   button in bits 0-29;
// - a status button: kStatusButton (bits 31 and 30), the button's family in
//   bits 16-29 and its cell in the low word.
// The menu file keeps an item's Discard flag in bit 31 of a keyboard chord.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/keys.h"

namespace nx::hotkey {

constexpr uint32_t kBrailleBit = 0x40000000u;
constexpr uint32_t kDiscardBit = 0x80000000u;
constexpr uint32_t kStatusButton = kDiscardBit | kBrailleBit;
constexpr uint32_t kButtonBits = kBrailleBit - 1;
// The families of status buttons.
constexpr uint32_t kCursorStatus = 2, kAuxStatus = 4;
// The screen reader's own key in a chord's modifier mask (the others are
// those of the key handlers, vk::kShiftHeld and the like).
constexpr int kNarrixKey = 0x2000;

constexpr bool IsBraille(int32_t code) { return (static_cast<uint32_t>(code) & kBrailleBit) != 0; }

constexpr int32_t Chord(int key, int mask) {
  return static_cast<int32_t>((static_cast<uint32_t>(mask & 0xFFFF) << 16) | static_cast<uint32_t>(key & 0xFFFF));
}

constexpr int32_t Buttons(int32_t buttons) {
  return static_cast<int32_t>((static_cast<uint32_t>(buttons) & kButtonBits) | kBrailleBit);
}

constexpr int32_t StatusButton(int32_t cell, uint32_t family) {
  return static_cast<int32_t>(kStatusButton | (family << 16) | (static_cast<uint32_t>(cell) & 0xFFFFu));
}

// The code with its braille bit cleared: what the display profile stores.
constexpr uint32_t WithoutBraille(int32_t code) { return static_cast<uint32_t>(code) & ~kBrailleBit; }

// The code of a key pressed in a hot-key capture field (`shift` as
// vk::kShiftHeld and the like, `narrixHeld` when Insert or Scroll Lock is
// held down), or nothing for the keys the field lets pass: Shift, Control
// and Alt alone, the screen reader's modifiers alone, which count only with
// a key, and Tab and Shift+Tab, so that the focus is never trapped.
inline std::optional<int32_t> CapturedKey(int key, int shift, bool narrixHeld) {
  if (key == vk::kShift || key == vk::kControl || key == vk::kAlt) return std::nullopt;
  if (key == vk::kInsert || key == vk::kScrollLock) return std::nullopt;
  if (key == vk::kTab && (shift == 0 || shift == vk::kShiftHeld)) return std::nullopt;
  return Chord(key, narrixHeld ? shift | kNarrixKey : shift);
}

// Whether a key's release must stop in the capture field. The window's
// default handling starts menu mode when Alt (or F10) is released with no
// key seen since it went down, and the captured keys never reach it; menu
// mode would then eat the next keys meant as hot keys. So the release of
// Alt or F10, and of any key while Alt is held, stops there.
constexpr bool SwallowedRelease(int key, int shift) {
  return key == vk::kAlt || key == vk::kF10 || (shift & vk::kAltHeld) != 0;
}

}  // namespace nx::hotkey
