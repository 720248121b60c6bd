// versioned_app: a process that carries a version resource and does nothing
// else, so that the application list can find a "running application" and
// read its product version. Tests copy it under the name of the application
// it stands in for (winword.exe) and start it there.
//   versioned_app [SECONDS]   stays alive SECONDS seconds (600 unless given)
// It shows no window, so nothing on the screen changes while it runs; a
// test ends it early by ending the Wine session (wineserver -k).
#include <windows.h>

#include <cstdlib>
#include <cwchar>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  long seconds = 600;
  if (__argc > 1 && __wargv != nullptr && __wargv[1] != nullptr) {
    wchar_t* end = nullptr;
    const long given = std::wcstol(__wargv[1], &end, 10);
    if (end != __wargv[1] && given >= 0) seconds = given;
  }
  // Short sleeps, so that a thread message asking it to quit is seen soon.
  const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
  MSG msg;
  while (GetTickCount64() < deadline) {
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
      if (msg.message == WM_QUIT || msg.message == WM_CLOSE) return 0;
    }
    Sleep(100);
  }
  return 0;
}
