// A profile file store whose writes of one key fail, as they do when the
// file is read-only or its folder is gone.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/profile.h"

namespace nx::test {

class RefusingProfile : public IProfile {
 public:
  RefusingProfile(const ICodePage& page, std::wstring refused) : files_(page), refused_(std::move(refused)) {}
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file) const override {
    return files_.GetString(section, key, def, file);
  }
  int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const override {
    return files_.GetInt(section, key, def, file);
  }
  bool WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                   const std::optional<std::wstring>& value, const std::wstring& file) override {
    return key != refused_ && files_.WriteString(section, key, value, file);
  }

 private:
  PortableProfile files_;
  std::wstring refused_;
};

}  // namespace nx::test
