// IBusyNotice as a small window with the text, shown over the active window
// while the program works and gone afterwards. Being a window of its own,
// it is read out by a screen reader when it appears.
#pragma once

#include <windows.h>

#include "braille/braille_opener.h"

namespace nx {

class Win32BusyNotice final : public IBusyNotice {
 public:
  explicit Win32BusyNotice(HINSTANCE instance) : instance_(instance) {}
  ~Win32BusyNotice() override { Hide(); }
  Win32BusyNotice(const Win32BusyNotice&) = delete;
  Win32BusyNotice& operator=(const Win32BusyNotice&) = delete;

  void Show(const std::wstring& text) override;
  // Gives the activation back to the window that had it.
  void Hide() override;

 private:
  HINSTANCE instance_;
  HWND hwnd_ = nullptr;
  HWND previous_ = nullptr;
};

}  // namespace nx
