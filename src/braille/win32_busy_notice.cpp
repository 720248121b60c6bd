#include "braille/win32_busy_notice.h"

#include "resource.h"
#include "platform/string_table.h"

namespace nx {

namespace {

// How long the new notice answers questions before the thread goes busy.
constexpr DWORD kReadingTimeMs = 300;

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
  UpdateWindow(hwnd_);
  // The caller keeps the thread busy until Hide. A screen reader asks the
  // new window for its text (messages sent from its own process), so those
  // questions, and painting, are answered for a moment first; keys wait.
  const DWORD start = GetTickCount();
  for (DWORD waited = 0; waited < kReadingTimeMs; waited = GetTickCount() - start) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, kReadingTimeMs - waited, QS_SENDMESSAGE | QS_PAINT);
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE | PM_QS_SENDMESSAGE | PM_QS_PAINT)) DispatchMessageW(&msg);
  }
}

void Win32BusyNotice::Hide() {
  if (!hwnd_) return;
  DestroyWindow(hwnd_);
  hwnd_ = nullptr;
  if (previous_ && IsWindow(previous_)) SetActiveWindow(previous_);
  previous_ = nullptr;
}

}  // namespace nx
