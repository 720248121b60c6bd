#include "platform/win32_prompts.h"

#include <commdlg.h>

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

}  // namespace nx
