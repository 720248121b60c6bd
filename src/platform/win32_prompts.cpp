#include "platform/win32_prompts.h"

namespace nx {

int Win32Prompts::Message(const std::wstring& text, unsigned style, const std::wstring& title) {
  // A box owned by a window that is not shown yet would have no taskbar
  // entry and could open behind other windows; such boxes stand alone.
  HWND owner = (owner_ && IsWindowVisible(owner_)) ? owner_ : nullptr;
  return MessageBoxW(owner, text.c_str(), title.c_str(), style | MB_SETFOREGROUND);
}

}  // namespace nx
