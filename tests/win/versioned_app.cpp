// versioned_app: a process that carries a version resource and does nothing
// else, so that the application list can find a "running application" and
// read its product version. Tests copy it under the name of the application
// it stands in for (winword.exe) and start it there.
//   versioned_app [SECONDS]   stays alive SECONDS seconds (600 unless given)
// It shows no window, so nothing on the screen changes while it runs; a
// test ends it (taskkill /f) or ends the Wine session.
#include <windows.h>

#include <cwchar>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  Sleep(static_cast<DWORD>(__argc > 1 ? std::wcstoul(__wargv[1], nullptr, 10) : 600) * 1000);
  return 0;
}
