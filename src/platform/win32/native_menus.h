// INativeMenus on real Windows pop-up menus. Labels go through the ANSI code
// page (AppendMenuA), as the screen reader's own menus do.
#pragma once

#include "platform/native_menus.h"

namespace nx {

class Win32NativeMenus final : public INativeMenus {
 public:
  NativeMenu CreatePopup() override;
  void AppendPopup(NativeMenu menu, NativeMenu child, const std::wstring& label) override;
  void AppendCommand(NativeMenu menu, int id, const std::wstring& label) override;
  // Destroying a menu destroys its submenus too; a handle already gone that
  // way is passed over.
  void Destroy(NativeMenu menu) override;
};

}  // namespace nx
