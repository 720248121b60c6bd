// Whether a name typed for an application folder can be one on Windows.
// The application list refuses a bad name before anything is moved.
#pragma once

#include <string>

namespace nx {

enum class FolderNameProblem {
  None,
  Empty,         // nothing but blanks
  BadCharacter,  // one of \ / : * ? " < > | or a control character
  Dots,          // "." or "..", or ends in a dot or a blank
  Reserved,      // a device name: CON, PRN, AUX, NUL, COM1-9, LPT1-9
};

FolderNameProblem CheckFolderName(const std::wstring& name);

}  // namespace nx
