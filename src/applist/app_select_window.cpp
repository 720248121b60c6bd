#include "applist/app_select_window.h"

#include "platform/win32/kit.h"
#include "resource.h"

namespace nx {

AppSelectWindow::AppSelectWindow(HINSTANCE instance, EditSession& session, cNarrixInfo& info, IMenuEditorEntry* editor,
                                 AppListPorts ports)
    : instance_(instance), logic_(*this, prompts_, session, info, editor, ports) {}

bool AppSelectWindow::Create() {
  loading_ = true;
  CreateDialogParamW(instance_, MAKEINTRESOURCEW(IDD_APPSELECT), nullptr, &DialogProcOf<AppSelectWindow>,
                     reinterpret_cast<LPARAM>(this));
  loading_ = false;
  if (hwnd_ && logic_.Ended()) {
    DestroyWindow(hwnd_);
    hwnd_ = nullptr;
  }
  return hwnd_ != nullptr;
}

void AppSelectWindow::Show() {
  ShowWindow(hwnd_, SW_SHOW);
  FocusList();
}

void AppSelectWindow::FocusList() {
  if (!hwnd_ || !IsWindowVisible(hwnd_)) return;
  SetForegroundWindow(hwnd_);
  SetActiveWindow(hwnd_);
  SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(List()), TRUE);
  SetFocus(List());
}

// Delete works anywhere in the window, as a key of the window, not of one
// control.
bool AppSelectWindow::PreTranslateMessage(MSG& msg) {
  if (!hwnd_) return false;
  if (msg.message == WM_KEYDOWN && (msg.hwnd == hwnd_ || IsChild(hwnd_, msg.hwnd)) &&
      logic_.Form_KeyDown(static_cast<int>(msg.wParam)))
    return true;
  return IsDialogMessageW(hwnd_, &msg);
}

INT_PTR AppSelectWindow::OnMessage(UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      prompts_.SetOwner(hwnd_);
      logic_.Form_Load(this);
      return TRUE;
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_DESTROY:
      PostQuitMessage(0);
      return TRUE;
    default:
      return FALSE;
  }
}

void AppSelectWindow::OnCommand(int id, int code) {
  switch (id) {
    case IDOK:
      logic_.cmdOK_Click();
      break;
    case IDCANCEL:
      logic_.cmdCANCEL_Click();
      break;
    case IDC_CMD_RENAME:
      logic_.cmdRename_Click();
      break;
    case IDC_CMD_REMOVE_APP:
      logic_.cmdRemoveApp_Click();
      break;
    case IDC_CMD_ADD_VER:
      logic_.cmdAddVer_Click();
      break;
    case IDC_CMD_EXPORT:
      logic_.cmdExport_Click();
      break;
    case IDC_LST_APPLICATION:
      if (code == LBN_SELCHANGE) logic_.lstApplication_Click();
      if (code == LBN_DBLCLK) logic_.lstApplication_DblClick();
      break;
    default:
      break;
  }
}

void AppSelectWindow::SetText(AppSelectText what, const std::wstring& text) {
  switch (what) {
    case AppSelectText::Window:
      SetWindowTextW(hwnd_, text.c_str());
      break;
    case AppSelectText::ListLabel:
      SetDlgItemTextW(hwnd_, IDC_LBL_APPLIST, text.c_str());
      break;
    case AppSelectText::Ok:
      SetDlgItemTextW(hwnd_, IDOK, text.c_str());
      break;
    case AppSelectText::Cancel:
      SetDlgItemTextW(hwnd_, IDCANCEL, text.c_str());
      break;
    case AppSelectText::Rename:
      SetDlgItemTextW(hwnd_, IDC_CMD_RENAME, text.c_str());
      break;
    case AppSelectText::Remove:
      SetDlgItemTextW(hwnd_, IDC_CMD_REMOVE_APP, text.c_str());
      break;
    case AppSelectText::AddVersion:
      SetDlgItemTextW(hwnd_, IDC_CMD_ADD_VER, text.c_str());
      break;
    case AppSelectText::Export:
      SetDlgItemTextW(hwnd_, IDC_CMD_EXPORT, text.c_str());
      break;
  }
}

HWND AppSelectWindow::List() const { return GetDlgItem(hwnd_, IDC_LST_APPLICATION); }

void AppSelectWindow::ClearList() { SendMessageW(List(), LB_RESETCONTENT, 0, 0); }

void AppSelectWindow::AddListEntry(const std::wstring& text) {
  SendMessageW(List(), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

int AppSelectWindow::ListCount() const { return static_cast<int>(SendMessageW(List(), LB_GETCOUNT, 0, 0)); }

std::wstring AppSelectWindow::ListEntry(int index) const {
  const LRESULT length = SendMessageW(List(), LB_GETTEXTLEN, static_cast<WPARAM>(index), 0);
  if (length == LB_ERR) return {};
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  SendMessageW(List(), LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<size_t>(length));
  return text;
}

int AppSelectWindow::SelectedIndex() const { return static_cast<int>(SendMessageW(List(), LB_GETCURSEL, 0, 0)); }

void AppSelectWindow::SelectEntry(int index) { SendMessageW(List(), LB_SETCURSEL, static_cast<WPARAM>(index), 0); }

void AppSelectWindow::EnableOk(bool enabled) { EnableWindow(GetDlgItem(hwnd_, IDOK), enabled ? TRUE : FALSE); }

void AppSelectWindow::EndProgram() {
  // While loading, Create() takes the window down once CreateDialog returns.
  if (hwnd_ && !loading_) DestroyWindow(hwnd_);
}

}  // namespace nx
