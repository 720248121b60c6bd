// The menu editor's window on large menus, under Windows or Wine: opening a
// menu, one paste (renumbering and refilling the tree) and one delete, at
// 5,000 and at 10,000 items. Doubling the menu should cost at most 2.5 times
// as much: nothing in the editor may grow with the square of the menu.
// Usage: editor_bench WORK_FOLDER
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "menu/menu_editor_window.h"
#include "platform/folders.h"
#include "platform/win32_native_menus.h"
#include "platform/win32_profile.h"
#include "platform/win32_registry.h"

namespace {

class AlwaysYes : public nx::IPrompts {
 public:
  int Message(const std::wstring&, unsigned, const std::wstring&) override { return nx::mb::kIdYes; }
};

void Pump() {
  MSG msg;
  while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&msg);
    DispatchMessageW(&msg);
  }
}

double Now() {
  static LARGE_INTEGER frequency = [] {
    LARGE_INTEGER f;
    QueryPerformanceFrequency(&f);
    return f;
  }();
  LARGE_INTEGER t;
  QueryPerformanceCounter(&t);
  return static_cast<double>(t.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

// Pull-downs of ten entries, every third entry with three of its own.
void WriteMenu(nx::cDefActions& defs, const std::wstring& file, int items) {
  auto root = nx::cMenuItem::New();
  nx::cMenuItem* group = nullptr;
  nx::cMenuItem* entry = nullptr;
  for (int i = 0; i < items; ++i) {
    auto item = nx::cMenuItem::New();
    item->Caption = L"Entry " + std::to_wstring(i);
    item->Action = L"SayLine";
    const int slot = i % 14;
    if (slot == 0) {
      item->Action.clear();
      group = root->SubItems.Add(1, root.get(), item).get();
    } else if (slot % 4 == 1) {
      item->HotKey = 0x20020000 | (65 + i % 26);
      entry = group->SubItems.Add(1, group, item).get();
    } else if (slot % 4 == 2 || slot % 4 == 3) {
      entry->SubItems.Add(1, entry, item);
    } else {
      group->SubItems.Add(1, group, item);
    }
  }
  defs.FlushCommand2Def(file, L"", *root);
}

struct Times {
  double open, reopen, paste, del;
};

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

Times Measure(HINSTANCE instance, const std::wstring& work, int items) {
  nx::Win32Registry registry;
  nx::Win32Profile profile;
  nx::Win32NativeMenus menus;
  AlwaysYes yes;
  nx::cNarrixInfo info(registry, work);
  nx::cDefServer defs(nx::SystemCodePage(), profile, work + L"\\Set\\");
  std::unique_ptr<nx::IBrailleDisplay> braille;
  nx::MenuEditorServices services{info, defs, profile, menus, braille, nullptr, nullptr};
  nx::CreateFolder(work);
  nx::CreateFolder(work + L"\\Set");
  nx::CreateFolder(work + L"\\Set\\bench");
  WriteMenu(defs.DefActions(), work + L"\\Set\\bench\\Command.mnu", items);

  std::vector<double> open, reopen, paste, del;
  for (int round = 0; round < 5; ++round) {
    nx::MenuEditorWindow window(instance, services, &yes);
    window.Create(nullptr);
    ShowWindow(window.Handle(), SW_SHOWNOACTIVATE);
    Pump();
    double t = Now();
    window.Logic().LoadDefs(work + L"\\Set", L"bench", false);
    Pump();
    open.push_back(Now() - t);
    if (window.NodeCount() != items + 1)
      std::printf("the editor shows %d nodes, not %d\n", window.NodeCount(), items + 1);

    // The same menu once more in the same window: the tree is emptied first.
    t = Now();
    window.Logic().LoadDefs(work + L"\\Set", L"bench", false);
    Pump();
    reopen.push_back(Now() - t);

    // Copy an entry from the middle and paste it after another one.
    window.SelectNode(nx::NodeKey(256 + items / 2));
    window.Logic().mnuTreeCopy_Click();
    window.SelectNode(nx::NodeKey(256 + items / 3));
    t = Now();
    window.Logic().mnuTreePasteAsNext_Click();
    Pump();
    paste.push_back(Now() - t);

    window.SelectNode(nx::NodeKey(256 + items / 4 * 3));
    t = Now();
    window.Logic().mnuTreeDelete_Click();
    Pump();
    del.push_back(Now() - t);
  }
  return {Median(open), Median(reopen), Median(paste), Median(del)};
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) {
    std::printf("usage: editor_bench WORK_FOLDER\n");
    return 2;
  }
  INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_TREEVIEW_CLASSES};
  InitCommonControlsEx(&controls);
  const Times small = Measure(GetModuleHandleW(nullptr), std::wstring(argv[1]) + L"\\small", 5000);
  const Times large = Measure(GetModuleHandleW(nullptr), std::wstring(argv[1]) + L"\\large", 10000);
  std::printf("%-10s %14s %14s %8s\n", "operation", "5,000 items", "10,000 items", "ratio");
  bool ok = true;
  auto row = [&ok](const char* name, double a, double b) {
    const double ratio = b / a;
    ok = ok && ratio <= 2.5;
    std::printf("%-10s %11.1f ms %11.1f ms %7.2fx %s\n", name, a, b, ratio, ratio <= 2.5 ? "" : "(over 2.5x)");
  };
  row("open", small.open, large.open);
  row("reopen", small.reopen, large.reopen);
  row("paste", small.paste, large.paste);
  row("delete", small.del, large.del);
  std::printf("doubling the menu costs at most 2.5 times as much: %s\n", ok ? "met" : "MISSED");
  return 0;
}
