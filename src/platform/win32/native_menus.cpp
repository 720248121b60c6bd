#include "platform/win32/native_menus.h"

#include <windows.h>

#include "platform/code_page.h"

namespace nx {
namespace {

HMENU H(NativeMenu menu) { return reinterpret_cast<HMENU>(menu); }

}  // namespace

NativeMenu Win32NativeMenus::CreatePopup() { return reinterpret_cast<NativeMenu>(CreatePopupMenu()); }

void Win32NativeMenus::AppendPopup(NativeMenu menu, NativeMenu child, const std::wstring& label) {
  AppendMenuA(H(menu), MF_POPUP, static_cast<UINT_PTR>(child), SystemCodePage().ToAnsi(label).c_str());
}

void Win32NativeMenus::AppendCommand(NativeMenu menu, int id, const std::wstring& label) {
  AppendMenuA(H(menu), 0, static_cast<UINT_PTR>(id), SystemCodePage().ToAnsi(label).c_str());
}

void Win32NativeMenus::Destroy(NativeMenu menu) {
  if (menu && IsMenu(H(menu))) DestroyMenu(H(menu));
}

}  // namespace nx
