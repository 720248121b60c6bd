// A dialog that runs modally over its owner with the program's own message
// loop, so that a window can see keys before the dialog manager does.
#pragma once

#include <windows.h>

#include "platform/win32/kit.h"

namespace nx {

class ModalDialog {
 public:
  ModalDialog(const ModalDialog&) = delete;
  ModalDialog& operator=(const ModalDialog&) = delete;
  HWND Handle() const { return hwnd_; }

  // Shows the window and returns when it has ended (EndModal). The owner is
  // disabled meanwhile; it is enabled and activated before this window goes,
  // so that the activation passes to it and not to some other program. The
  // window is destroyed afterwards.
  void RunModal() {
    if (owner_) EnableWindow(owner_, FALSE);
    ShowWindow(hwnd_, SW_SHOW);
    SetForegroundWindow(hwnd_);
    OnShown();
    MSG msg{};
    while (!ended_ && GetMessageW(&msg, nullptr, 0, 0) > 0) {
      if (PreTranslate(msg) || IsDialogMessageW(hwnd_, &msg)) continue;
      TranslateMessage(&msg);
      DispatchMessageW(&msg);
    }
    if (msg.message == WM_QUIT) PostQuitMessage(static_cast<int>(msg.wParam));
    OnEnded();
    if (owner_) {
      EnableWindow(owner_, TRUE);
      SetActiveWindow(owner_);
    }
    if (hwnd_) DestroyWindow(hwnd_);
  }

 protected:
  explicit ModalDialog(HINSTANCE instance) : instance_(instance) {}
  virtual ~ModalDialog() {
    if (hwnd_) DestroyWindow(hwnd_);
  }

  // Creates the window from dialog template `resource`, hidden; its load
  // handler runs now. False on failure.
  template <typename T>
  bool CreateFrom(int resource, HWND owner, T* self) {
    owner_ = owner;
    CreateDialogParamW(instance_, MAKEINTRESOURCEW(resource), owner, &DialogProcOf<T>, reinterpret_cast<LPARAM>(self));
    return hwnd_ != nullptr;
  }
  void EndModal() { ended_ = true; }

  // A message of the loop before the dialog sees it; true when handled.
  virtual bool PreTranslate(const MSG&) { return false; }
  // The window has just been shown: where the focus goes.
  virtual void OnShown() {}
  virtual void OnEnded() {}

  HINSTANCE instance_;
  HWND hwnd_ = nullptr;
  HWND owner_ = nullptr;

 private:
  bool ended_ = false;
};

}  // namespace nx
