// The one dialog procedure of the program's windows.
#pragma once

#include <windows.h>

namespace nx {

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
