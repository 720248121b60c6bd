#include "platform/win32/running_apps.h"

#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <cstdio>
#include <vector>

#include "platform/text.h"
#include "platform/win32/kit.h"

namespace nx {
namespace {

// The executable name as the list knows it: "WINWORD.EXE" becomes "WINWORD".
std::wstring BaseName(const wchar_t* exeFile) {
  std::wstring_view name(exeFile);
  return UpperCase(name.substr(0, name.find(L'.')));
}

// The id of the first process whose executable carries `upperName`, or 0.
// Returning 0 for "none" is safe: process 0 is the idle process, which
// cannot be opened, so it would end in "" anyway.
DWORD FindProcess(const std::wstring& upperName) {
  OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot.Valid()) return 0;
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof(entry);
  for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more; more = Process32NextW(snapshot.Get(), &entry)) {
    if (BaseName(entry.szExeFile) == upperName) return entry.th32ProcessID;
  }
  return 0;
}

// The full path of the process's executable, which is its first module.
std::wstring ExecutablePath(DWORD processId) {
  OwnedHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
  if (!process.Valid()) return {};
  HMODULE module = nullptr;
  DWORD needed = 0;
  if (!EnumProcessModules(process.Get(), &module, sizeof(module), &needed) || needed < sizeof(module)) return {};
  // Long paths are possible even though MAX_PATH is the usual limit, so the
  // buffer grows until the whole path fits.
  std::vector<wchar_t> path(MAX_PATH);
  for (;;) {
    const DWORD size = static_cast<DWORD>(path.size());
    const DWORD length = GetModuleFileNameExW(process.Get(), module, path.data(), size);
    if (length == 0) return {};
    if (length < size - 1) return std::wstring(path.data(), length);
    if (path.size() >= 32768) return {};
    path.resize(path.size() * 2);
  }
}

// The ProductVersion string of the file's version resource in its first
// language, without surrounding spaces.
std::wstring ProductVersion(const std::wstring& path) {
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
  if (size == 0) return {};
  std::vector<BYTE> data(size);
  if (!GetFileVersionInfoW(path.c_str(), 0, size, data.data())) return {};

  struct LangCodePage {
    WORD language;
    WORD codePage;
  };
  void* pointer = nullptr;
  UINT length = 0;
  if (!VerQueryValueW(data.data(), L"\\VarFileInfo\\Translation", &pointer, &length) || pointer == nullptr ||
      length < sizeof(LangCodePage))
    return {};
  const auto* translation = static_cast<const LangCodePage*>(pointer);
  wchar_t pair[9];
  std::swprintf(pair, 9, L"%04X%04X", translation->language, translation->codePage);

  const std::wstring query = std::wstring(L"\\StringFileInfo\\") + pair + L"\\" + kVersionStrings[7];
  pointer = nullptr;
  length = 0;
  if (!VerQueryValueW(data.data(), query.c_str(), &pointer, &length) || pointer == nullptr) return {};
  // The length counts characters and may include the terminating zero;
  // the value ends at its first zero either way.
  std::wstring_view value(static_cast<const wchar_t*>(pointer), length);
  value = value.substr(0, value.find(L'\0'));
  return TrimSpaces(value);
}

}  // namespace

std::wstring Win32RunningApps::GetRunningAppVersion(const std::wstring& name) {
  try {
    const DWORD processId = FindProcess(UpperCase(name));
    if (processId == 0) return {};
    const std::wstring path = ExecutablePath(processId);
    if (path.empty()) return {};
    return ProductVersion(path);
  } catch (...) {
    return {};
  }
}

}  // namespace nx
