#include "braille/win32_busy_notice.h"

#include "resource.h"
#include "startup/string_table.h"

namespace nx {

namespace {

constexpr int kProductTitle = 2053;

INT_PTR CALLBACK NoticeProc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG ? TRUE : FALSE; }

}  // namespace

void Win32BusyNotice::Show(const std::wstring& text) {
  Hide();
  previous_ = GetActiveWindow();
  hwnd_ = CreateDialogParamW(instance_, MAKEINTRESOURCEW(IDD_BUSY), previous_, NoticeProc, 0);
  if (!hwnd_) return;
  SetWindowTextW(hwnd_, LoadResText(kProductTitle).c_str());
  SetDlgItemTextW(hwnd_, IDC_BUSY_TEXT, text.c_str());
  ShowWindow(hwnd_, SW_SHOW);
  // The caller keeps the thread busy until Hide, so the window is painted
  // now or never.
  UpdateWindow(hwnd_);
}

void Win32BusyNotice::Hide() {
  if (!hwnd_) return;
  DestroyWindow(hwnd_);
  hwnd_ = nullptr;
  if (previous_ && IsWindow(previous_)) SetActiveWindow(previous_);
  previous_ = nullptr;
}

}  // namespace nx
