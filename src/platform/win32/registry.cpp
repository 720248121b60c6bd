#include "platform/win32/registry.h"

#include <windows.h>

#include <vector>

#include "platform/win32/kit.h"

namespace nx {
std::optional<std::wstring> Win32Registry::Read(const std::wstring& keyPath, const std::wstring& name) const {
  OwnedKey key;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, keyPath.c_str(), 0, KEY_QUERY_VALUE, key.Out()) != ERROR_SUCCESS)
    return std::nullopt;
  DWORD type = 0, size = 0;
  if (RegQueryValueExW(key.Get(), name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
  std::vector<BYTE> data(size + sizeof(wchar_t), 0);
  if (RegQueryValueExW(key.Get(), name.c_str(), nullptr, &type, data.data(), &size) != ERROR_SUCCESS)
    return std::nullopt;
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ: {
      std::wstring text(reinterpret_cast<const wchar_t*>(data.data()), size / sizeof(wchar_t));
      while (!text.empty() && text.back() == L'\0') text.pop_back();
      return text;
    }
    case REG_DWORD:
      if (size >= sizeof(DWORD)) return std::to_wstring(*reinterpret_cast<const DWORD*>(data.data()));
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

bool Win32Registry::WriteString(const std::wstring& keyPath, const std::wstring& name, const std::wstring& value) {
  OwnedKey key;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, keyPath.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Out(), nullptr) !=
      ERROR_SUCCESS)
    return false;
  const DWORD bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  return RegSetValueExW(key.Get(), name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()), bytes) ==
         ERROR_SUCCESS;
}

}  // namespace nx
