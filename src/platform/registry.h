// The current user's registry hive (HKEY_CURRENT_USER), the one place the
// screen reader keeps its installation settings.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace nx {

class IRegistry {
 public:
  virtual ~IRegistry() = default;
  // The value's data as text (numbers in decimal), or nothing when the key
  // or the value does not exist or cannot be read.
  virtual std::optional<std::wstring> Read(const std::wstring& keyPath, const std::wstring& name) const = 0;
  // Stores a string value, creating the key when needed. False on failure.
  virtual bool WriteString(const std::wstring& keyPath, const std::wstring& name, const std::wstring& value) = 0;
};

// A registry held in memory, for tests and for builds without Windows.
// Key paths and value names compare case-insensitively, as in Windows.
class MemoryRegistry final : public IRegistry {
 public:
  std::optional<std::wstring> Read(const std::wstring& keyPath, const std::wstring& name) const override;
  bool WriteString(const std::wstring& keyPath, const std::wstring& name, const std::wstring& value) override;

 private:
  std::map<std::wstring, std::map<std::wstring, std::wstring>> keys_;
};

}  // namespace nx
