// The program's command line: an application name, optionally "*" and a
// script path, optionally "/" and a braille display name.
#pragma once

#include <optional>
#include <string>

namespace nx {

struct CommandLineRequest {
  std::wstring appName;                     // trimmed; "" when none
  std::optional<std::wstring> scriptPath;   // the text after "*", when given
  std::optional<std::wstring> displayName;  // the text after "/", when given
};

// Splits the arguments: "/" first (the display name is everything after the
// first "/"), then "*" in what comes before it. Double quotes are dropped.
CommandLineRequest ParseCommandLine(const std::wstring& arguments);

// The arguments part of a full Windows command line: what follows the
// program's name (quoted or not) and the blanks after it.
std::wstring ArgumentsOf(const std::wstring& fullCommandLine);

}  // namespace nx
