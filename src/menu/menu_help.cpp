#include "menu/menu_help.h"

#include "menu/menu_file.h"
#include "platform/folders.h"
#include "platform/text.h"

namespace nx {

std::wstring RenderHelpSection(const cMenuItem& root, const std::wstring& appName,
                               const std::function<std::wstring(int32_t)>& keyText) {
  std::wstring text = L"\r\n";  // the root: no list entry of its own
  size_t previous = 0;
  WalkTree(
      root,
      [&](const cMenuItem& item, size_t level, int) {
        const size_t depth = level + 1;
        if (depth > previous) text += L"<UL>";
        std::wstring key = keyText(item.HotKey);
        if (!key.empty()) key = L" ( " + key + L" ) ";
        std::wstring entry = item.Caption;
        const std::wstring action = LowerCase(item.Action);
        const wchar_t* tips = action.find(L"tipy") != std::wstring::npos   ? L"tipy"
                              : action.find(L"tips") != std::wstring::npos ? L"tips"
                                                                           : nullptr;
        if (tips) entry = L"<A href=\"..\\..\\set\\" + appName + L"\\" + tips + L".txt\">" + item.Caption + L"</A>";
        text += L"<LI>" + entry + key + L"</LI>\r\n";
        return true;
      },
      [&](const cMenuItem&, size_t level) {
        const size_t depth = level + 1;
        if (depth < previous) text += L"</UL>";
        previous = depth;
      });
  if (previous > 0) text += L"</UL>";
  return L"<H3>" + appName + L"</H3>" + text;
}

std::wstring MenuHelpSection(cDefServer& defs, const MenuLocation& menu) {
  const std::wstring braillePath = BrailleProfilePath(menu);
  const MenuItemPtr root = cMenuFile(defs.CodePage(), defs.Profile()).InitCommandDef(MenuFilePath(menu), braillePath);
  if (!root) return {};
  // Each application's buttons by the names of its own display profile, as
  // the editor shows them, not the last opened menu's.
  if (!braillePath.empty()) defs.DefActions().InitBrailleKeyMap(braillePath);
  return RenderHelpSection(*root, menu.appName, [&defs](int32_t code) { return defs.KeyText(code); });
}

}  // namespace nx
