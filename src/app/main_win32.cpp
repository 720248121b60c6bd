// narrixmenu.exe: finds the screen reader's installation, opens the
// application list and acts on the command line.
#include <windows.h>
#include <commctrl.h>
#include <objbase.h>

#include <string>

#include "applist/app_select_window.h"
#include "menu/menu_help.h"
#include "braille/braille_opener.h"
#include "braille/win32_busy_notice.h"
#include "braille/win32_koral.h"
#include "menu/menu_editor_window.h"
#include "platform/win32/native_menus.h"
#include "platform/win32/profile.h"
#include "platform/win32/registry.h"
#include "platform/win32/running_apps.h"
#include "wizard/wizard_window.h"
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

// The menu editor as the application list opens it, and the menus' sections
// of the help page for its export.
class MenuEditorLauncher final : public nx::IMenuEditorEntry {
 public:
  MenuEditorLauncher(HINSTANCE instance, nx::MenuEditorServices services)
      : instance_(instance), services_(std::move(services)) {}
  void SetOwner(HWND owner) { owner_ = owner; }

  void EditMenu(const std::wstring& dirSet, const std::wstring& appName, bool general) override {
    services_.defs.SetFolder(dirSet + L"\\");
    nx::MenuEditorWindow window(instance_, services_);
    if (!window.Create(owner_)) return;
    window.Logic().LoadDefs(dirSet, appName, general);
    window.RunModal();
  }

  std::wstring ListDefs(const std::wstring& dirSet, const std::wstring& appName, bool general) override {
    services_.defs.SetFolder(dirSet + L"\\");
    return nx::MenuHelpSection(services_.defs, {dirSet, appName, services_.session.gBrailleName, general});
  }

 private:
  HINSTANCE instance_;
  nx::MenuEditorServices services_;
  HWND owner_ = nullptr;
};

// COM for the braille component, in this thread's apartment, so that the
// display's events arrive with the window messages.
class ComApartment {
 public:
  ComApartment() : ok_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
  ~ComApartment() {
    if (ok_) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  bool ok_;
};

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int) {
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES | ICC_TREEVIEW_CLASSES};
  InitCommonControlsEx(&controls);

  ComApartment com;
  nx::Win32Registry registry;
  nx::Win32Profile profile;
  nx::Win32NativeMenus menus;
  nx::cNarrixInfo info(registry, ExecutableFolder());
  nx::EditSession session;
  nx::cDefServer defs(nx::SystemCodePage(), profile, L"");
  nx::Win32KoralFactory koral;
  nx::Win32BusyNotice notice(instance);
  nx::BrailleOpener brailleOpener(koral, profile, info, &notice);
  nx::Win32Processes processes;
  nx::WizardLauncher wizard(instance, processes, session, info, defs, &brailleOpener);
  // The braille display is opened by the first menu loaded and kept; it is
  // closed before COM goes.
  std::unique_ptr<nx::IBrailleDisplay> braille;
  // What is copied or cut in one menu can be pasted into the next one opened.
  nx::EditorClipboard clipboard;
  MenuEditorLauncher editor(instance, nx::MenuEditorServices{session, info, defs, profile, menus, braille,
                                                             &brailleOpener, &wizard, &clipboard});
  nx::FileSystemFolderOps folders;
  nx::Win32RunningApps runningApps;
  const nx::ICodePage& codePage = nx::SystemCodePage();
  nx::AppSelectWindow window(instance, session, info, &editor, nx::AppListPorts{&folders, &runningApps, &codePage});
  if (!window.Create()) return 1;
  editor.SetOwner(window.Handle());
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
