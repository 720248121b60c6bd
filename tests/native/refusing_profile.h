// A profile file store with faults: it cannot write a profile that would
// hold the key `refused` in section Actions (as when the file is read-only),
// and cannot read the file `unreadable` although it is there (as when the
// disk fails under it).
#pragma once

#include <string>
#include <utility>

#include "platform/profile.h"

namespace nx::test {

class RefusingProfile : public IProfile {
 public:
  RefusingProfile(const ICodePage& page, std::wstring refused) : files_(page), refused_(std::move(refused)) {}
  std::wstring unreadable;

  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file) const override {
    return file == unreadable ? def : files_.GetString(section, key, def, file);
  }
  int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const override {
    return file == unreadable ? def : files_.GetInt(section, key, def, file);
  }
  bool Load(const std::wstring& file, ProfileDocument& document, ReadFailure* failure) const override {
    if (file != unreadable) return files_.Load(file, document, failure);
    if (failure) *failure = {false, L"Input/output error"};
    return false;
  }
  bool Save(const std::wstring& file, const ProfileDocument& document, std::wstring* reason) override {
    if (document.KeysOf(L"Actions").GetString(refused_, L"").empty()) return files_.Save(file, document, reason);
    if (reason) *reason = L"Permission denied";
    return false;
  }

 private:
  PortableProfile files_;
  std::wstring refused_;
};

}  // namespace nx::test
