// Windows virtual-key codes that the portable window logic handles, by name,
// so that the logic reads the same without windows.h.
#pragma once

namespace nx::vk {

constexpr int kTab = 0x09, kReturn = 0x0D, kShift = 0x10, kControl = 0x11, kAlt = 0x12;
constexpr int kUp = 0x26, kDown = 0x28, kInsert = 0x2D, kDelete = 0x2E, kApps = 0x5D;
constexpr int kF3 = 0x72, kF10 = 0x79, kScrollLock = 0x91;

// The `shift` argument of the key handlers: which modifiers are held.
constexpr int kShiftHeld = 1, kControlHeld = 2, kAltHeld = 4;

}  // namespace nx::vk
