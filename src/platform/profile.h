// Profile (initialisation) files: the screen reader's setting.ini and the
// braille display profiles. Windows reads them with GetPrivateProfile*A;
// PortableProfile gives the same answers without Windows.
#pragma once

#include <optional>
#include <string>

#include "platform/code_page.h"

namespace nx {

class IProfile {
 public:
  virtual ~IProfile() = default;
  // Reads like GetPrivateProfileStringA with a buffer of 1024 characters:
  // the value (at most 1023 characters), or `def` without trailing blanks
  // when the file, section or key is missing.
  virtual std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                 const std::wstring& file) const = 0;
  // Reads like GetPrivateProfileIntA.
  virtual int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const = 0;
  // Writes like WritePrivateProfileStringA: no value deletes the key, no key
  // deletes the whole section. False when the file cannot be written or the
  // section name is empty; the file is then left as it was.
  virtual bool WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                           const std::optional<std::wstring>& value, const std::wstring& file) = 0;
};

// The profile rules of Windows, implemented on the standard library. A write
// changes only the lines it affects, keeps every other byte, and ends new
// lines with CR LF. Files with a UTF-8 or UTF-16 byte-order mark are read
// and written in that encoding; all others in `codePage`.
class PortableProfile final : public IProfile {
 public:
  explicit PortableProfile(const ICodePage& codePage) : codePage_(codePage) {}

  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file) const override;
  int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const override;
  bool WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                   const std::optional<std::wstring>& value, const std::wstring& file) override;

  // GetString with a buffer of `bufferSize` characters (the result holds at
  // most bufferSize - 1 of them).
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file, size_t bufferSize) const;

 private:
  const ICodePage& codePage_;
};

}  // namespace nx
