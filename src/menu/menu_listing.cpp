#include "menu/menu_listing.h"

namespace nx {

MenuListing::MenuListing(cNarrixInfo& info, cDefServer& defs, IProfile& profile)
    : defs_(defs),
      editor_(view_, prompts_, MenuEditorServices{info, defs, profile, menus_, braille_, nullptr, nullptr}) {}

std::wstring MenuListing::ListDefs(const std::wstring& dirSet, const std::wstring& appName, bool general) {
  defs_.SetFolder(dirSet + L"\\");
  return editor_.ListDefs(dirSet, appName, general);
}

}  // namespace nx
