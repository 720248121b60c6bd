// IProfile on the real GetPrivateProfileStringA, GetPrivateProfileIntA and
// WritePrivateProfileStringA; texts are converted through the ANSI code page.
// Whole documents are read and written by the program itself, in the system's
// code page, so that a save replaces the file once and in one piece.
#pragma once

#include "platform/profile.h"

namespace nx {

class Win32Profile final : public IProfile {
 public:
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file) const override;
  int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const override;
  bool Load(const std::wstring& file, ProfileDocument& document, ReadFailure* failure = nullptr) const override;
  bool Save(const std::wstring& file, const ProfileDocument& document, std::wstring* reason = nullptr) override;

  // WritePrivateProfileStringA itself.
  bool WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                   const std::optional<std::wstring>& value, const std::wstring& file);

  // GetString with a buffer of `bufferSize` characters.
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file, size_t bufferSize) const;
};

}  // namespace nx
