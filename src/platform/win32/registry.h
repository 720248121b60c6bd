// IRegistry on the real HKEY_CURRENT_USER.
#pragma once

#include "platform/registry.h"

namespace nx {

class Win32Registry final : public IRegistry {
 public:
  std::optional<std::wstring> Read(const std::wstring& keyPath, const std::wstring& name) const override;
  bool WriteString(const std::wstring& keyPath, const std::wstring& name, const std::wstring& value) override;
};

}  // namespace nx
