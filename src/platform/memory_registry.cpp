#include "platform/registry.h"
#include "platform/text.h"

namespace nx {

std::optional<std::wstring> MemoryRegistry::Read(const std::wstring& keyPath, const std::wstring& name) const {
  auto key = keys_.find(UpperCase(keyPath));
  if (key == keys_.end()) return std::nullopt;
  auto value = key->second.find(UpperCase(name));
  if (value == key->second.end()) return std::nullopt;
  return value->second;
}

bool MemoryRegistry::WriteString(const std::wstring& keyPath, const std::wstring& name, const std::wstring& value) {
  keys_[UpperCase(keyPath)][UpperCase(name)] = value;
  return true;
}

}  // namespace nx
