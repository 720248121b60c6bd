// The one dialog procedure of the program's windows.
#pragma once

#include <windows.h>

namespace nx {

// The program's icon (icon 1 of the executable) in a window's title bar, on
// the taskbar and in Alt+Tab, in the sizes for the screen's DPI.
inline void SetProgramIcon(HWND hwnd) {
  const auto icon = [](int metric) {
    const int size = GetSystemMetrics(metric);
    return reinterpret_cast<LPARAM>(
        LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1), IMAGE_ICON, size, size, LR_SHARED));
  };
  SendMessageW(hwnd, WM_SETICON, ICON_BIG, icon(SM_CXICON));
  SendMessageW(hwnd, WM_SETICON, ICON_SMALL, icon(SM_CXSMICON));
}

// The dialog procedure of window class T: binds the object given to
// CreateDialogParam when the dialog is created, hands every message to its
// OnMessage, and lets no exception unwind into Windows (a failure ends that
// one message). T keeps its handle in hwnd_ and declares this a friend.
template <typename T>
INT_PTR CALLBACK DialogProcOf(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  T* self = nullptr;
  if (message == WM_INITDIALOG) {
    self = reinterpret_cast<T*>(lParam);
    self->hwnd_ = hwnd;
    SetWindowLongPtrW(hwnd, DWLP_USER, lParam);
    SetProgramIcon(hwnd);
  } else {
    self = reinterpret_cast<T*>(GetWindowLongPtrW(hwnd, DWLP_USER));
  }
  if (!self) return FALSE;
  try {
    return self->OnMessage(message, wParam, lParam);
  } catch (...) {
    return FALSE;
  }
}

// The modifiers held now, as the program's key handlers take them: Shift 1,
// Control 2, Alt 4.
inline int KeyShiftMask() {
  return (GetKeyState(VK_SHIFT) < 0 ? 1 : 0) | (GetKeyState(VK_CONTROL) < 0 ? 2 : 0) |
         (GetKeyState(VK_MENU) < 0 ? 4 : 0);
}

}  // namespace nx
