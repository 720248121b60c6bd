#include "startup/settings.h"

#include <cwchar>

#include "platform/text.h"
#include "startup/file_helpers.h"

namespace nx {

const wchar_t kMakerKey[] = L"SOFTWARE\\Velkor";
const wchar_t kProductKey[] = L"SOFTWARE\\Velkor\\NarrixXP";

std::wstring RegKeyPath(const std::wstring& key, const std::wstring& subkey) {
  if (subkey.empty()) return key;
  if (!key.empty() && key.back() == L'\\') return key + subkey;
  return key + L"\\" + subkey;
}

std::wstring GetRegValue(const IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                         const std::wstring& valueName, const std::wstring& def) {
  auto value = registry.Read(RegKeyPath(key, subkey), valueName);
  return (value && !value->empty()) ? *value : def;
}

long GetRegNumber(const IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                  const std::wstring& valueName, long def) {
  const std::wstring text = TrimSpaces(GetRegValue(registry, key, subkey, valueName, L""));
  if (text.empty()) return def;
  wchar_t* end = nullptr;
  const long n = std::wcstol(text.c_str(), &end, 10);
  return (end && *end == L'\0') ? n : def;
}

bool GetRegBool(const IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                const std::wstring& valueName, bool def) {
  const std::wstring text = TrimSpaces(GetRegValue(registry, key, subkey, valueName, L""));
  if (EqualsNoCase(text, L"true")) return true;
  if (EqualsNoCase(text, L"false")) return false;
  return GetRegNumber(registry, key, subkey, valueName, def ? 1 : 0) != 0;
}

void SetRegValue(IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                 const std::wstring& valueName, const std::wstring& value) {
  registry.WriteString(RegKeyPath(key, subkey), valueName, value);
}

bool IsBrailleActive(const IProfile& profile, const std::wstring& dirSet) {
  return profile.GetInt(L"Braille", L"BrailleActive", 0, JoinPath(dirSet, L"setting.ini")) != 0;
}

}  // namespace nx
