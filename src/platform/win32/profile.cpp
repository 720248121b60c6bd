#include "platform/win32/profile.h"

#include <windows.h>

#include <vector>

namespace nx {
namespace {

std::string Ansi(const std::wstring& text) { return SystemCodePage().ToAnsi(text); }

}  // namespace

std::wstring Win32Profile::GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                     const std::wstring& file, size_t bufferSize) const {
  std::vector<char> buffer(bufferSize + 1, '\0');
  const DWORD n = GetPrivateProfileStringA(Ansi(section).c_str(), Ansi(key).c_str(), Ansi(def).c_str(), buffer.data(),
                                           static_cast<DWORD>(bufferSize), Ansi(file).c_str());
  return SystemCodePage().ToWide(std::string_view(buffer.data(), n));
}

std::wstring Win32Profile::GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                     const std::wstring& file) const {
  return GetString(section, key, def, file, 1024);
}

int Win32Profile::GetInt(const std::wstring& section, const std::wstring& key, int def,
                         const std::wstring& file) const {
  return static_cast<int>(GetPrivateProfileIntA(Ansi(section).c_str(), Ansi(key).c_str(), def, Ansi(file).c_str()));
}

bool Win32Profile::Load(const std::wstring& file, ProfileDocument& document, ReadFailure* failure) const {
  return PortableProfile(SystemCodePage()).Load(file, document, failure);
}

bool Win32Profile::Save(const std::wstring& file, const ProfileDocument& document, std::wstring* reason) {
  return WriteFileBytes(file, document.Serialize(), reason);
}

bool Win32Profile::WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                               const std::optional<std::wstring>& value, const std::wstring& file) {
  const std::string s = Ansi(section), f = Ansi(file);
  const std::string k = key ? Ansi(*key) : std::string(), v = value ? Ansi(*value) : std::string();
  return WritePrivateProfileStringA(s.c_str(), key ? k.c_str() : nullptr, value ? v.c_str() : nullptr, f.c_str()) != 0;
}

}  // namespace nx
