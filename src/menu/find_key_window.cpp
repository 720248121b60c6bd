#include "menu/find_key_window.h"

namespace nx {

void FindKeyWindow::SetTexts(const std::wstring& title, const std::wstring& label, const std::wstring& cancel) {
  SetWindowTextW(hwnd_, title.c_str());
  SetDlgItemTextW(hwnd_, IDC_FINDKEY_LABEL, label.c_str());
  SetDlgItemTextW(hwnd_, IDCANCEL, cancel.c_str());
}

void FindKeyWindow::SetKeyText(const std::wstring& text) { SetWindowTextW(Field(), text.c_str()); }

// The focus stays in the field for the next key; the screen reader hears
// the new line through the alert raised for it.
void FindKeyWindow::SetStatus(const std::wstring& text) {
  HWND status = GetDlgItem(hwnd_, IDC_FINDKEY_STATUS);
  SetWindowTextW(status, text.c_str());
  NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, status, OBJID_CLIENT, CHILDID_SELF);
  NotifyWinEvent(EVENT_SYSTEM_ALERT, status, OBJID_CLIENT, CHILDID_SELF);
}

bool FindKeyWindow::KeyHasFocus() const { return GetFocus() == Field(); }

void FindKeyWindow::OnShown() { SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Field()), TRUE); }

bool FindKeyWindow::PreTranslate(const MSG& msg) {
  if (msg.hwnd != Field()) return false;
  switch (msg.message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
      return logic_.KeyDown(static_cast<int>(msg.wParam), KeyShiftMask());
    case WM_KEYUP:
    case WM_SYSKEYUP:
      return logic_.KeyUp(static_cast<int>(msg.wParam), KeyShiftMask());
    default:
      return false;
  }
}

INT_PTR FindKeyWindow::OnMessage(UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      logic_.Form_Load();
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDCANCEL) EndModal();
      return TRUE;
    case WM_CLOSE:
      EndModal();
      return TRUE;
    case WM_SYSCOMMAND:
      // Menu mode never starts from the capture field: it would take the
      // keys meant as hot keys.
      return (wParam & 0xFFF0) == SC_KEYMENU && KeyHasFocus();
    default:
      return FALSE;
  }
}

}  // namespace nx
