// nxprobe: looks at the program's windows from outside, the way an
// assistive tool would, and prints what it finds as UTF-8 lines.
//   nxprobe list TITLE [MS]      the application list: texts, entries, selection, focus
//   nxprobe message TITLE [MS]   a message box: its text and buttons
//   nxprobe absent TITLE [MS]    exit 0 when no such window appears within MS
//   nxprobe rect TITLE [MS]      the window's place on the screen: x y width height
//   nxprobe editor TITLE [MS]    the menu editor: node count, the three fields, focus, Apply
//   nxprobe popup - [MS]         exit 0 once a pop-up menu is shown
// A TITLE of the form @FILE is read from FILE (UTF-8), so that titles in any
// language arrive intact whatever the locale of the calling shell.
// Exit status 0 when the window was found (absent: not found), 1 otherwise.
#include <windows.h>

#include <cstdlib>
#include <string>

#include "platform/text.h"

namespace {

void Print(const std::wstring& line) {
  const std::string bytes = nx::WideToUtf8(line + L"\n");
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

// WM_GETTEXT, because GetWindowText does not ask the controls of another
// process for their text.
std::wstring TextOf(HWND hwnd) {
  wchar_t text[1024] = {};
  DWORD_PTR ignored = 0;
  SendMessageTimeoutW(hwnd, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text), SMTO_ABORTIFHUNG, 5000, &ignored);
  return text;
}

std::wstring ClassOf(HWND hwnd) {
  wchar_t name[64] = {};
  GetClassNameW(hwnd, name, 64);
  return name;
}

HWND WaitForWindow(const std::wstring& title, DWORD ms) {
  const DWORD start = GetTickCount();
  for (;;) {
    HWND hwnd = FindWindowW(nullptr, title.c_str());
    if (hwnd && IsWindowVisible(hwnd)) return hwnd;
    if (GetTickCount() - start > ms) return nullptr;
    Sleep(100);
  }
}

HWND FocusOf(HWND hwnd) {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  return GetGUIThreadInfo(GetWindowThreadProcessId(hwnd, nullptr), &info) ? info.hwndFocus : nullptr;
}

int List(HWND hwnd) {
  Print(L"title: " + TextOf(hwnd));
  Print(L"label: " + TextOf(GetDlgItem(hwnd, 1002)));
  HWND ok = GetDlgItem(hwnd, IDOK);
  Print(L"ok: " + TextOf(ok) + (IsWindowEnabled(ok) ? L" (enabled)" : L" (disabled)"));
  Print(L"cancel: " + TextOf(GetDlgItem(hwnd, IDCANCEL)));
  HWND list = GetDlgItem(hwnd, 1003);
  const int count = static_cast<int>(SendMessageW(list, LB_GETCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    wchar_t text[512] = {};
    SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
    Print(L"entry: " + std::wstring(text));
  }
  Print(L"selected: " + std::to_wstring(SendMessageW(list, LB_GETCURSEL, 0, 0)));
  HWND focus = FocusOf(hwnd);
  Print(L"focus: " + (focus ? std::to_wstring(GetDlgCtrlID(focus)) : std::wstring(L"none")));
  return 0;
}

struct BoxContent {
  std::wstring texts, buttons;
};

int Editor(HWND hwnd) {
  Print(L"title: " + TextOf(hwnd));
  Print(L"nodes: " + std::to_wstring(SendMessageW(GetDlgItem(hwnd, 1103), 0x1100 + 5 /* TVM_GETCOUNT */, 0, 0)));
  Print(L"name: " + TextOf(GetDlgItem(hwnd, 1105)));
  Print(L"command: " + TextOf(GetDlgItem(hwnd, 1107)));
  Print(L"hot key: " + TextOf(GetDlgItem(hwnd, 1109)));
  HWND focus = FocusOf(hwnd);
  Print(L"focus: " + (focus ? std::to_wstring(GetDlgCtrlID(focus)) : std::wstring(L"none")));
  Print(std::wstring(L"apply: ") + (IsWindowEnabled(GetDlgItem(hwnd, 1110)) ? L"enabled" : L"disabled"));
  return 0;
}

BOOL CALLBACK CollectChild(HWND child, LPARAM param) {
  auto* box = reinterpret_cast<BoxContent*>(param);
  const std::wstring cls = ClassOf(child), text = TextOf(child);
  if (cls == L"Static" && !text.empty()) box->texts += L"text: " + text + L"\n";
  if (cls == L"Button") box->buttons += L"button: " + text + L"\n";
  return TRUE;
}

std::wstring TitleArgument(const std::wstring& arg) {
  if (arg.empty() || arg[0] != L'@') return arg;
  HANDLE file = CreateFileW(arg.c_str() + 1, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return arg;
  char buffer[1024];
  DWORD read = 0;
  ReadFile(file, buffer, sizeof(buffer), &read, nullptr);
  CloseHandle(file);
  std::string text(buffer, read);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return nx::Utf8ToWide(text);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 3) {
    Print(L"usage: nxprobe list|message|absent TITLE [MS]");
    return 2;
  }
  const std::wstring command = argv[1], title = TitleArgument(argv[2]);
  const DWORD ms = argc > 3 ? static_cast<DWORD>(std::wcstoul(argv[3], nullptr, 10)) : 20000;
  if (command == L"popup") {
    for (const DWORD start = GetTickCount(); GetTickCount() - start <= ms; Sleep(100)) {
      HWND menu = FindWindowW(L"#32768", nullptr);
      if (menu && IsWindowVisible(menu)) return 0;
    }
    Print(L"no pop-up menu");
    return 1;
  }
  HWND hwnd = WaitForWindow(title, ms);
  if (command == L"absent") return hwnd ? 1 : 0;
  if (!hwnd) {
    Print(L"no window titled " + title);
    return 1;
  }
  if (command == L"list") return List(hwnd);
  if (command == L"visible") {  // the shown controls: id, class, text
    for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
      if (IsWindowVisible(child))
        Print(std::to_wstring(GetDlgCtrlID(child)) + L" " + ClassOf(child) + L" " + TextOf(child));
    return 0;
  }
  if (command == L"active") {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(hwnd, nullptr), &info);
    HWND fg = GetForegroundWindow();
    Print(L"foreground: " + (fg ? TextOf(fg) : std::wstring(L"none")));
    Print(L"active: " + (info.hwndActive ? TextOf(info.hwndActive) : std::wstring(L"none")));
    Print(L"focus: " + (info.hwndFocus ? std::to_wstring(GetDlgCtrlID(info.hwndFocus)) : std::wstring(L"none")));
    Print(std::wstring(L"enabled: ") + (IsWindowEnabled(hwnd) ? L"yes" : L"no"));
    return 0;
  }
  if (command == L"editor") return Editor(hwnd);
  if (command == L"rect") {
    RECT r{};
    GetWindowRect(hwnd, &r);
    Print(std::to_wstring(r.left) + L" " + std::to_wstring(r.top) + L" " + std::to_wstring(r.right - r.left) + L" " +
          std::to_wstring(r.bottom - r.top));
    return 0;
  }
  if (command == L"message") {
    BoxContent box;
    EnumChildWindows(hwnd, CollectChild, reinterpret_cast<LPARAM>(&box));
    std::wstring all = box.texts + box.buttons;
    if (!all.empty()) all.pop_back();
    Print(all);
    return 0;
  }
  return 2;
}
