// Questions and messages that windows put to the user. The logic of a window
// asks through this interface; the Windows build shows real message boxes,
// tests answer from a script.
#pragma once

#include <optional>
#include <string>

namespace nx {

// Message box styles and answers, with the values Windows gives them.
namespace mb {
constexpr unsigned kOkOnly = 0x0;
constexpr unsigned kYesNoCancel = 0x3;
constexpr unsigned kYesNo = 0x4;
constexpr unsigned kIconCritical = 0x10;
constexpr unsigned kIconQuestion = 0x20;
constexpr unsigned kIconExclamation = 0x30;
constexpr unsigned kIconInformation = 0x40;
constexpr unsigned kDefaultButton2 = 0x100;
constexpr int kIdOk = 1;
constexpr int kIdCancel = 2;
constexpr int kIdYes = 6;
constexpr int kIdNo = 7;
}  // namespace mb

class IPrompts {
 public:
  virtual ~IPrompts() = default;
  // Shows a modal message box with `style` (the mb:: values combined) and
  // returns the button pressed (mb::kId...).
  virtual int Message(const std::wstring& text, unsigned style, const std::wstring& title) = 0;
  // The file-open dialog: `filter` as "Name|*.ext;*.ext2|Name|*.*", the
  // first entry chosen, starting in `folder`. Nothing when cancelled.
  virtual std::optional<std::wstring> OpenFile(const std::wstring& filter, const std::wstring& folder) {
    (void)filter;
    (void)folder;
    return std::nullopt;
  }
  // Asks for one line of text: `label` names the field, `value` is offered
  // selected. "" when cancelled.
  virtual std::wstring InputBox(const std::wstring& label, const std::wstring& title, const std::wstring& value) {
    (void)label;
    (void)title;
    (void)value;
    return {};
  }
};

// Starting programs, as the wizard's Open and Form buttons do.
class IProcesses {
 public:
  virtual ~IProcesses() = default;
  // Starts `commandLine` in a normal window; false when it could not start.
  virtual bool Start(const std::wstring& commandLine) = 0;
};

}  // namespace nx
