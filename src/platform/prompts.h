// Questions and messages that windows put to the user. The logic of a window
// asks through this interface; the Windows build shows real message boxes,
// tests answer from a script.
#pragma once

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
};

}  // namespace nx
