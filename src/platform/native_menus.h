// Native pop-up menus, as the menu preview shows them. The Windows build
// makes real menus; tests record what would have been made.
#pragma once

#include <cstdint>
#include <string>

namespace nx {

using NativeMenu = std::uintptr_t;  // 0: no menu

class INativeMenus {
 public:
  virtual ~INativeMenus() = default;
  // A new empty pop-up menu (CreatePopupMenu); 0 on failure.
  virtual NativeMenu CreatePopup() = 0;
  // Appends `child` as a submenu entry (MF_POPUP) labelled `label`.
  virtual void AppendPopup(NativeMenu menu, NativeMenu child, const std::wstring& label) = 0;
  // Appends a plain command entry (flags 0) with the command identifier `id`.
  virtual void AppendCommand(NativeMenu menu, int id, const std::wstring& label) = 0;
  virtual void Destroy(NativeMenu menu) = 0;
};

}  // namespace nx
