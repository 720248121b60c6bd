// narrixmenu.exe: finds the screen reader's installation, opens the
// application list and acts on the command line.
#include <windows.h>
#include <commctrl.h>

#include <string>

#include "applist/app_select_window.h"
#include "platform/win32_registry.h"
#include "startup/command_line.h"
#include "startup/file_helpers.h"
#include "startup/narrix_info.h"

namespace {

std::wstring ExecutableFolder() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (n == 0) return {};
    if (n < path.size()) {
      path.resize(n);
      return nx::FolderOf(path);
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int) {
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES | ICC_TREEVIEW_CLASSES};
  InitCommonControlsEx(&controls);

  nx::Win32Registry registry;
  nx::cNarrixInfo info(registry, ExecutableFolder());
  // The menu editor is not part of this program yet: choosing a menu does
  // nothing until it is.
  nx::AppSelectWindow window(instance, info, nullptr);
  if (!window.Create()) return 1;
  window.Show();
  window.Logic().SelectAppByCommand(nx::ArgumentsOf(GetCommandLineW()));

  MSG msg;
  while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
    if (window.PreTranslateMessage(msg)) continue;
    TranslateMessage(&msg);
    DispatchMessageW(&msg);
  }
  return 0;
}
