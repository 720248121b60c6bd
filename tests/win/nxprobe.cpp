// nxprobe: looks at the program's windows from outside, the way an
// assistive tool would, and prints what it finds as UTF-8 lines.
//   nxprobe list TITLE [MS]      the application list: texts, entries, selection, focus
//   nxprobe message TITLE [MS]   a message box: its text and buttons
//   nxprobe absent TITLE [MS]    exit 0 when no such window appears within MS
//   nxprobe rect TITLE [MS]      the window's place on the screen: x y width height
//   nxprobe editor TITLE [MS]    the menu editor: node count, the three fields, focus, Apply
//   nxprobe nodes TITLE [MS]     the editor's visible tree nodes: "x y text" per
//                                node, x y the middle of its text on the screen
//   nxprobe popup - [MS]         exit 0 once a pop-up menu is shown
//   nxprobe braille KIND BUTTON [PRESSED [UNIT]]
//                                presses a button of every open stand-in braille
//                                display (koral_standin.dll): KIND normal, cursor
//                                or aux; PRESSED 1 unless given; UNIT, when not 0,
//                                the unit the event reports. Waits up to 20 s for
//                                such a display, prints "sent: N raised: M" (N
//                                displays, M of them passed the event on to a
//                                listener); exit 0 when a display was reached.
//   nxprobe focuslog - MS       for MS milliseconds, in order, every focus change and
//                                every show and hide of a top-level window in every
//                                process but this one: "focus shown|hidden ID CLASS
//                                TEXT" (hidden: the control or its window was not
//                                visible when it got the focus), "show|hide 0 CLASS
//                                TITLE"; ID is the control id, 0 for a window.
//   nxprobe layout TITLE [MS]    the window's DPI, then every shown control's place
//                                and whether it lies inside the window and its
//                                caption fits (see Layout below)
// A TITLE of the form @FILE is read from FILE (UTF-8), so that titles in any
// language arrive intact whatever the locale of the calling shell.
// Exit status 0 when the window was found (absent: not found), 1 otherwise.
#include <windows.h>
#include <commctrl.h>
#include <winternl.h>

#include <cstdlib>
#include <string>
#include <vector>

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

void PrintFocus(HWND hwnd) {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  GetGUIThreadInfo(GetWindowThreadProcessId(hwnd, nullptr), &info);
  Print(L"focus: " + (info.hwndFocus ? std::to_wstring(GetDlgCtrlID(info.hwndFocus)) : std::wstring(L"none")));
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
  PrintFocus(hwnd);
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
  PrintFocus(hwnd);
  Print(std::wstring(L"apply: ") + (IsWindowEnabled(GetDlgItem(hwnd, 1110)) ? L"enabled" : L"disabled"));
  return 0;
}

// A tree view answers item questions only in its own memory, so they are
// asked through a block lent from the program's process.
int Nodes(HWND hwnd) {
  constexpr size_t kRect = 0, kItem = 64, kText = 256, kTextChars = 256;
  HWND tree = GetDlgItem(hwnd, 1103);
  DWORD id = 0;
  GetWindowThreadProcessId(tree, &id);
  HANDLE process = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id);
  char* block = process ? static_cast<char*>(VirtualAllocEx(process, nullptr, kText + kTextChars * sizeof(wchar_t),
                                                            MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE))
                        : nullptr;
  if (!block) {
    Print(L"no memory in the program's process");
    return 1;
  }
  const auto write = [&](size_t at, const void* data, size_t size) {
    WriteProcessMemory(process, block + at, data, size, nullptr);
  };
  const auto read = [&](size_t at, void* data, size_t size) {
    ReadProcessMemory(process, block + at, data, size, nullptr);
  };
  for (auto node = reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, TVGN_FIRSTVISIBLE, 0)); node;
       node = reinterpret_cast<HTREEITEM>(
           SendMessageW(tree, TVM_GETNEXTITEM, TVGN_NEXTVISIBLE, reinterpret_cast<LPARAM>(node)))) {
    // The item goes in where the rectangle comes back.
    write(kRect, &node, sizeof(node));
    if (!SendMessageW(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(block + kRect))) break;  // not shown
    RECT rect{};
    read(kRect, &rect, sizeof(rect));
    TVITEMW item{};
    item.mask = TVIF_TEXT;
    item.hItem = node;
    item.pszText = reinterpret_cast<wchar_t*>(block + kText);
    item.cchTextMax = kTextChars;
    write(kItem, &item, sizeof(item));
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(block + kItem));
    wchar_t text[kTextChars] = {};
    read(kText, text, sizeof(text) - sizeof(wchar_t));
    POINT middle{(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    ClientToScreen(tree, &middle);
    Print(std::to_wstring(middle.x) + L" " + std::to_wstring(middle.y) + L" " + text);
  }
  VirtualFreeEx(process, block, 0, MEM_RELEASE);
  CloseHandle(process);
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

const wchar_t kBrailleClass[] = L"NxKoralStandIn";

BOOL CALLBACK CollectBrailleWindow(HWND hwnd, LPARAM param) {
  if (ClassOf(hwnd) == kBrailleClass) reinterpret_cast<std::vector<HWND>*>(param)->push_back(hwnd);
  return TRUE;
}

// The stand-in's windows are hidden, which EnumWindows lists all the same.
std::vector<HWND> WaitForBrailleWindows(DWORD ms) {
  std::vector<HWND> windows;
  for (const DWORD start = GetTickCount();; Sleep(100)) {
    EnumWindows(CollectBrailleWindow, reinterpret_cast<LPARAM>(&windows));
    if (!windows.empty() || GetTickCount() - start > ms) return windows;
  }
}

int Braille(int argc, wchar_t** argv) {
  const std::wstring kind = argc > 3 ? argv[2] : L"";
  const UINT message = WM_APP + (kind == L"normal" ? 1 : kind == L"cursor" ? 2 : kind == L"aux" ? 3 : 0);
  if (message == WM_APP) return 2;
  const WPARAM button = std::wcstoul(argv[3], nullptr, 0);
  const DWORD pressed = argc > 4 ? std::wcstoul(argv[4], nullptr, 0) : 1;
  const DWORD unit = argc > 5 ? std::wcstoul(argv[5], nullptr, 0) : 0;
  const LPARAM lparam = static_cast<LPARAM>((pressed & 0xFFFF) | ((unit & 0xFFFF) << 16));
  int reached = 0, raised = 0;
  const std::vector<HWND> windows = WaitForBrailleWindows(20000);
  for (HWND hwnd : windows) {
    DWORD_PTR result = 0;
    // Sent, not posted: the event has been handled when this returns.
    if (!SendMessageTimeoutW(hwnd, message, button, lparam, SMTO_ABORTIFHUNG, 5000, &result)) continue;
    ++reached;
    if (result == 1) ++raised;
  }
  Print(L"sent: " + std::to_wstring(windows.size()) + L" raised: " + std::to_wstring(raised));
  return reached > 0 ? 0 : 1;
}

// nxprobe layout TITLE [MS]: the window's DPI ("dpi: N"), then each shown
// control as "ID CLASS LEFT TOP RIGHT BOTTOM inside|OUTSIDE fits|CUT|- TEXT",
// in the window's client coordinates. OUTSIDE: the control reaches past the
// client area; CUT: its caption needs more room than the control has, measured
// with the dialog font at the screen's DPI (a font handle of the program's
// process means nothing here); "-": a control whose text scrolls or is a list.
int Layout(HWND hwnd) {
  SetProcessDPIAware();  // pixels as the program, which is DPI aware, has them
  HDC dc = GetDC(nullptr);
  const int dpi = GetDeviceCaps(dc, LOGPIXELSY);
  LOGFONTW font{};
  font.lfHeight = -MulDiv(8, dpi, 72);
  font.lfCharSet = DEFAULT_CHARSET;
  lstrcpyW(font.lfFaceName, L"MS Shell Dlg");
  HGDIOBJ old = SelectObject(dc, CreateFontIndirectW(&font));
  const auto px = [dpi](int at96) { return MulDiv(at96, dpi, 96); };
  Print(L"dpi: " + std::to_wstring(dpi));
  RECT client{};
  GetClientRect(hwnd, &client);
  for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    if (!IsWindowVisible(child)) continue;
    RECT r{};
    GetWindowRect(child, &r);
    MapWindowPoints(nullptr, hwnd, reinterpret_cast<POINT*>(&r), 2);
    const bool inside = r.left >= 0 && r.top >= 0 && r.right <= client.right && r.bottom <= client.bottom;
    const std::wstring cls = ClassOf(child), text = TextOf(child);
    const LONG style = GetWindowLongW(child, GWL_STYLE);
    // The room the caption has: the client area less the box, frame or edges drawn beside it.
    RECT room{};
    GetClientRect(child, &room);
    UINT format = DT_CALCRECT | DT_SINGLELINE;
    bool measured = !text.empty();
    if (cls == L"Static") {
      if ((style & SS_TYPEMASK) <= SS_RIGHT) format = DT_CALCRECT | DT_WORDBREAK;
    } else if (cls == L"Button") {
      const LONG type = style & BS_TYPEMASK;
      if (type == BS_GROUPBOX)
        room.right -= px(16);
      else if (type <= BS_DEFPUSHBUTTON)
        room.right -= 2 * px(4);
      else
        room.right -= px(17);  // check box or option button
    } else {
      measured = false;
    }
    const LONG width = room.right, height = room.bottom;
    RECT need{0, 0, width, 0};
    if (measured) DrawTextW(dc, text.c_str(), -1, &need, format);
    const wchar_t* fit = !measured ? L"-" : need.right <= width && need.bottom <= height ? L"fits" : L"CUT";
    Print(std::to_wstring(GetDlgCtrlID(child)) + L" " + cls + L" " + std::to_wstring(r.left) + L" " +
          std::to_wstring(r.top) + L" " + std::to_wstring(r.right) + L" " + std::to_wstring(r.bottom) +
          (inside ? L" inside " : L" OUTSIDE ") + fit + L" " + text);
  }
  DeleteObject(SelectObject(dc, old));
  ReleaseDC(nullptr, dc);
  return 0;
}

// focuslog: a hook on the messages sent to the windows of every process.
// Wine reports no focus event for a focus that comes from no focus (as after
// a window is shown again), and no show event at all, so the log is taken
// from the messages themselves: WM_SETFOCUS, and WM_SHOWWINDOW of top-level
// windows. The hook runs in the program's process, where Wine loads this
// executable as the hook's module without its C++ runtime and without binding
// its imports: it finds its few calls in the loaded DLLs itself, and posts
// what it sees, in order, to the logging window here.
const wchar_t kFocusLogClass[] = L"NxFocusLog";
constexpr UINT kFocusMessage = WM_APP + 10, kShowMessage = WM_APP + 11;

// The base of loaded DLL `name` (`length` characters, lower case).
const char* LoadedDll(const wchar_t* name, size_t length) {
  // The process's PEB, read straight from the thread block: no call may be
  // made through an import here.
#ifdef _MSC_VER
  const auto* peb = reinterpret_cast<const PEB*>(__readgsqword(0x60));
#else
  const PEB* peb = nullptr;
  asm("movq %%gs:0x60, %0" : "=r"(peb));
#endif
  const LIST_ENTRY* head = &peb->Ldr->InMemoryOrderModuleList;
  for (const LIST_ENTRY* link = head->Flink; link != head; link = link->Flink) {
    const auto* entry = CONTAINING_RECORD(link, LDR_DATA_TABLE_ENTRY, InMemoryOrderLinks);
    const size_t size = entry->FullDllName.Length / sizeof(wchar_t);
    const wchar_t* path = entry->FullDllName.Buffer;
    if (size <= length || path[size - length - 1] != L'\\') continue;
    size_t same = 0;
    while (same < length && (path[size - length + same] | 0x20) == name[same]) ++same;
    if (same == length) return static_cast<const char*>(entry->DllBase);
  }
  return nullptr;
}

// Export `name` of the DLL at `base`, following a forward ("dll.name").
FARPROC Export(const char* base, const char* name) {
  if (!base) return nullptr;
  const auto* nt =
      reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
  const IMAGE_DATA_DIRECTORY& table = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
  const auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + table.VirtualAddress);
  const auto* names = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
  const auto* ordinals = reinterpret_cast<const WORD*>(base + exports->AddressOfNameOrdinals);
  const auto* functions = reinterpret_cast<const DWORD*>(base + exports->AddressOfFunctions);
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
    const char *a = base + names[i], *b = name;
    while (*b && *a == *b) ++a, ++b;
    if (*a || *b) continue;
    const DWORD rva = functions[ordinals[i]];
    if (rva < table.VirtualAddress || rva >= table.VirtualAddress + table.Size)
      return reinterpret_cast<FARPROC>(base + rva);
    const char* forward = base + rva;
    wchar_t dll[64];
    size_t n = 0;
    for (; forward[n] && forward[n] != '.' && n < 59; ++n) dll[n] = static_cast<wchar_t>(forward[n] | 0x20);
    if (forward[n] != '.') return nullptr;
    for (const char* dot = ".dll"; *dot; ++dot) dll[n++] = static_cast<wchar_t>(*dot);
    return Export(LoadedDll(dll, n), forward + (n - 3));
  }
  return nullptr;
}

template <typename F>
F User32(F& cached, const char* name) {
  if (!cached) cached = reinterpret_cast<F>(reinterpret_cast<void*>(Export(LoadedDll(L"user32.dll", 10), name)));
  return cached;
}

LRESULT CALLBACK FocusLogHook(int code, WPARAM wParam, LPARAM lParam) {
  static decltype(&FindWindowW) findWindow;
  static decltype(&PostMessageW) post;
  static decltype(&GetAncestor) ancestor;
  static decltype(&IsWindowVisible) visible;
  static decltype(&CallNextHookEx) next;
  const auto* sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
  if (code == HC_ACTION && (sent->message == WM_SETFOCUS || sent->message == WM_SHOWWINDOW) &&
      User32(findWindow, "FindWindowW") && User32(post, "PostMessageW") && User32(ancestor, "GetAncestor") &&
      User32(visible, "IsWindowVisible")) {
    HWND root = ancestor(sent->hwnd, GA_ROOT);
    HWND log = findWindow(kFocusLogClass, nullptr);
    if (log && sent->message == WM_SETFOCUS)  // visible: bit 0 the window, bit 1 the control
      post(log, kFocusMessage, reinterpret_cast<WPARAM>(sent->hwnd),
           (visible(root) ? 1 : 0) | (visible(sent->hwnd) ? 2 : 0));
    if (log && sent->message == WM_SHOWWINDOW && root == sent->hwnd)
      post(log, kShowMessage, reinterpret_cast<WPARAM>(sent->hwnd), static_cast<LPARAM>(sent->wParam));
  }
  return User32(next, "CallNextHookEx") ? next(nullptr, code, wParam, lParam) : 0;
}

int FocusLog(DWORD ms) {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = DefWindowProcW;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = kFocusLogClass;
  RegisterClassW(&windowClass);
  HWND log = CreateWindowW(kFocusLogClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, windowClass.hInstance, nullptr);
  HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, FocusLogHook, GetModuleHandleW(nullptr), 0);
  if (!log || !hook) {
    Print(L"no hook");
    return 1;
  }
  Print(L"logging");
  for (const DWORD start = GetTickCount(); GetTickCount() - start <= ms;) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      if (msg.hwnd != log || (msg.message != kFocusMessage && msg.message != kShowMessage)) {
        DispatchMessageW(&msg);
        continue;
      }
      HWND hwnd = reinterpret_cast<HWND>(msg.wParam);
      DWORD process = 0;
      GetWindowThreadProcessId(hwnd, &process);
      if (process == GetCurrentProcessId()) continue;
      const bool topLevel = GetAncestor(hwnd, GA_ROOT) == hwnd;
      const std::wstring what = msg.message == kShowMessage ? (msg.lParam ? L"show" : L"hide")
                                : msg.lParam == 3           ? L"focus shown"
                                                            : L"focus hidden";
      Print(what + L" " + std::to_wstring(topLevel ? 0 : GetDlgCtrlID(hwnd)) + L" " + ClassOf(hwnd) + L" " +
            TextOf(hwnd));
    }
  }
  UnhookWindowsHookEx(hook);
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc >= 2 && std::wstring(argv[1]) == L"braille") return Braille(argc, argv);
  if (argc < 3) return 2;
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
  if (command == L"focuslog") return FocusLog(ms);
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
    HWND fg = GetForegroundWindow();
    Print(L"foreground: " + (fg ? TextOf(fg) : std::wstring(L"none")));
    PrintFocus(hwnd);
    Print(std::wstring(L"enabled: ") + (IsWindowEnabled(hwnd) ? L"yes" : L"no"));
    return 0;
  }
  if (command == L"editor") return Editor(hwnd);
  if (command == L"nodes") return Nodes(hwnd);
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
  if (command == L"layout") return Layout(hwnd);
  return 2;
}
