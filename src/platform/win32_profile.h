// IProfile on the real GetPrivateProfileStringA, GetPrivateProfileIntA and
// WritePrivateProfileStringA; texts are converted through the ANSI code page.
#pragma once

#include "platform/profile.h"

namespace nx {

class Win32Profile final : public IProfile {
 public:
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file) const override;
  int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const override;
  bool WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                   const std::optional<std::wstring>& value, const std::wstring& file) override;

  // GetString with a buffer of `bufferSize` characters.
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file, size_t bufferSize) const;
};

}  // namespace nx
