#include "menu/menu_listing.h"

namespace nx {

MenuListing::MenuListing(MenuEditorServices services) : services_(services), editor_(view_, prompts_, services) {}

std::wstring MenuListing::ListDefs(const std::wstring& dirSet, const std::wstring& appName, bool general) {
  services_.defs.SetFolder(dirSet + L"\\");
  return editor_.ListDefs(dirSet, appName, general);
}

}  // namespace nx
