// The screen reader's settings: registry values under the current user and
// the braille switch in setting.ini. None of these report errors: missing
// keys, values or files give the defaults.
#pragma once

#include <string>

#include "platform/profile.h"
#include "platform/registry.h"

namespace nx {

extern const wchar_t kMakerKey[];    // "SOFTWARE\Velkor"
extern const wchar_t kProductKey[];  // "SOFTWARE\Velkor\NarrixXP"

// `key` and `subkey` joined with "\" (just `key` for an empty subkey).
std::wstring RegKeyPath(const std::wstring& key, const std::wstring& subkey);

// The stored value as text, or `def` when the key or the value is missing or
// the stored value is empty.
std::wstring GetRegValue(const IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                         const std::wstring& valueName, const std::wstring& def);
// The same, read as a boolean (a number, non-zero is true, or True/False).
bool GetRegBool(const IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                const std::wstring& valueName, bool def);
// The same, read as a whole number; text that is not a number gives `def`.
long GetRegNumber(const IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                  const std::wstring& valueName, long def);

// Stores `value` as a string value, creating the key; errors are ignored.
void SetRegValue(IRegistry& registry, const std::wstring& key, const std::wstring& subkey,
                 const std::wstring& valueName, const std::wstring& value);

// Whether setting.ini in the settings folder switches the braille display on
// (section "Braille", key "BrailleActive", non-zero). Read on every call.
bool IsBrailleActive(const IProfile& profile, const std::wstring& dirSet);

}  // namespace nx
