// The program's small kit for Windows: one owner for handles and one for COM
// references, a window's text, the one dialog procedure of its windows, and
// the modifiers held.
#pragma once

#include <windows.h>

#include <string>
#include <type_traits>
#include <utility>

#include "platform/keys.h"

namespace nx {

// Owns one handle and closes it with `Close` when it goes; `Empty` is the
// value that owns nothing (both null and INVALID_HANDLE_VALUE count as
// nothing for kernel handles, whose functions fail with either).
template <typename Handle, auto Close>
class Owned {
 public:
  Owned() = default;
  explicit Owned(Handle handle) : handle_(handle) {}
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() {
    if (Valid()) Close(handle_);
  }
  bool Valid() const {
    if constexpr (std::is_same_v<Handle, HANDLE>) return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE;
    return handle_ != nullptr;
  }
  Handle Get() const { return handle_; }
  // Where a function that opens one writes it; only while nothing is owned.
  Handle* Out() { return &handle_; }

 private:
  Handle handle_ = nullptr;
};

using OwnedHandle = Owned<HANDLE, &CloseHandle>;
using OwnedKey = Owned<HKEY, &RegCloseKey>;

// One counted reference to a COM object; released when it goes.
template <typename T>
class ComRef {
 public:
  ComRef() = default;
  explicit ComRef(T* p) : p_(p) {}  // takes over a reference
  ~ComRef() { Reset(); }
  ComRef(ComRef&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  ComRef& operator=(ComRef&& other) noexcept {
    if (this != &other) {
      Reset();
      p_ = std::exchange(other.p_, nullptr);
    }
    return *this;
  }
  ComRef(const ComRef&) = delete;
  ComRef& operator=(const ComRef&) = delete;

  void Reset() {
    if (p_) std::exchange(p_, nullptr)->Release();
  }
  T* Get() const { return p_; }
  T* operator->() const { return p_; }
  T** Out() {
    Reset();
    return &p_;
  }
  explicit operator bool() const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};

// The text of a window or control; "" when it has none.
inline std::wstring WindowText(HWND hwnd) {
  const int length = GetWindowTextLengthW(hwnd);
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(hwnd, text.data(), length + 1)));
  return text;
}

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
// one message). T keeps its handle in hwnd_, which is null again once the
// window is destroyed, and declares this a friend.
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
  INT_PTR result = FALSE;
  try {
    result = self->OnMessage(message, wParam, lParam);
  } catch (...) {
  }
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrW(hwnd, DWLP_USER, 0);
    self->hwnd_ = nullptr;
  }
  return result;
}

// The modifiers held now, as the program's key handlers take them.
inline int KeyShiftMask() {
  return (GetKeyState(VK_SHIFT) < 0 ? vk::kShiftHeld : 0) | (GetKeyState(VK_CONTROL) < 0 ? vk::kControlHeld : 0) |
         (GetKeyState(VK_MENU) < 0 ? vk::kAltHeld : 0);
}

}  // namespace nx
