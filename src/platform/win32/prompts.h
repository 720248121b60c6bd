// IPrompts as real message boxes owned by a window.
#pragma once

#include <windows.h>

#include "platform/prompts.h"

namespace nx {

class Win32Prompts final : public IPrompts {
 public:
  explicit Win32Prompts(HWND owner = nullptr) : owner_(owner) {}
  void SetOwner(HWND owner) { owner_ = owner; }
  int Message(const std::wstring& text, unsigned style, const std::wstring& title) override;
  std::optional<std::wstring> OpenFile(const std::wstring& filter, const std::wstring& folder) override;
  // A small dialog of the program's own (Windows has no ready input box).
  std::wstring InputBox(const std::wstring& label, const std::wstring& title, const std::wstring& value) override;

 private:
  HWND owner_;
};

}  // namespace nx
