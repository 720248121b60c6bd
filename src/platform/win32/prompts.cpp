#include "platform/win32/prompts.h"

#include <commdlg.h>

#include "resource.h"
#include "platform/string_table.h"
#include "platform/win32/kit.h"

namespace nx {

int Win32Prompts::Message(const std::wstring& text, unsigned style, const std::wstring& title) {
  // A box owned by a window that is not shown yet would have no taskbar
  // entry and could open behind other windows; such boxes stand alone.
  HWND owner = (owner_ && IsWindowVisible(owner_)) ? owner_ : nullptr;
  return MessageBoxW(owner, text.c_str(), title.c_str(), style | MB_SETFOREGROUND);
}

std::optional<std::wstring> Win32Prompts::OpenFile(const std::wstring& filter, const std::wstring& folder) {
  std::wstring filters = filter + L"|";
  for (auto& c : filters)
    if (c == L'|') c = L'\0';
  wchar_t file[MAX_PATH * 4] = {};
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof(dialog);
  dialog.hwndOwner = owner_;
  dialog.lpstrFilter = filters.c_str();
  dialog.nFilterIndex = 1;
  dialog.lpstrFile = file;
  dialog.nMaxFile = MAX_PATH * 4;
  dialog.lpstrInitialDir = folder.c_str();
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  if (!GetOpenFileNameW(&dialog)) return std::nullopt;
  return std::wstring(file);
}

namespace {

struct InputRequest {
  const std::wstring& label;
  const std::wstring& title;
  const std::wstring& value;
  std::wstring answer;
};

INT_PTR CALLBACK InputBoxProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr int kOk = 100, kCancel = 101;
  switch (message) {
    case WM_INITDIALOG: {
      auto* request = reinterpret_cast<InputRequest*>(lParam);
      SetWindowLongPtrW(dialog, DWLP_USER, lParam);
      SetWindowTextW(dialog, request->title.c_str());
      SetDlgItemTextW(dialog, IDC_INPUT_LABEL, request->label.c_str());
      SetDlgItemTextW(dialog, IDC_INPUT_TEXT, request->value.c_str());
      SetDlgItemTextW(dialog, IDOK, LoadResText(kOk).c_str());
      SetDlgItemTextW(dialog, IDCANCEL, LoadResText(kCancel).c_str());
      // The proposed text is selected, so typing replaces it.
      SendDlgItemMessageW(dialog, IDC_INPUT_TEXT, EM_SETSEL, 0, -1);
      SetFocus(GetDlgItem(dialog, IDC_INPUT_TEXT));
      return FALSE;
    }
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) {
        auto* request = reinterpret_cast<InputRequest*>(GetWindowLongPtrW(dialog, DWLP_USER));
        request->answer = WindowText(GetDlgItem(dialog, IDC_INPUT_TEXT));
        EndDialog(dialog, IDOK);
        return TRUE;
      }
      if (LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, IDCANCEL);
        return TRUE;
      }
      return FALSE;
    default:
      return FALSE;
  }
}

}  // namespace

std::wstring Win32Prompts::InputBox(const std::wstring& label, const std::wstring& title, const std::wstring& value) {
  InputRequest request{label, title, value, {}};
  const INT_PTR result = DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_INPUTBOX), owner_,
                                         InputBoxProc, reinterpret_cast<LPARAM>(&request));
  return result == IDOK ? request.answer : std::wstring();
}

}  // namespace nx
