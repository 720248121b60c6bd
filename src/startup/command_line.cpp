#include "startup/command_line.h"

#include "platform/text.h"

namespace nx {

CommandLineRequest ParseCommandLine(const std::wstring& arguments) {
  CommandLineRequest request;
  // Quotes only hold words together on a Windows command line (a shortcut or
  // a console quotes a path with blanks); no folder, file or display name can
  // contain one, so they are dropped wherever they stand.
  std::wstring unquoted;
  unquoted.reserve(arguments.size());
  for (wchar_t c : arguments) {
    if (c != L'"') unquoted += c;
  }
  std::wstring rest = TrimSpaces(unquoted);
  const size_t slash = rest.find(L'/');
  if (slash != std::wstring::npos) {
    request.displayName = TrimSpaces(rest.substr(slash + 1));
    rest = TrimSpaces(rest.substr(0, slash));
  }
  const size_t star = rest.find(L'*');
  if (star != std::wstring::npos && !rest.empty()) {
    request.scriptPath = TrimSpaces(rest.substr(star + 1));
    rest = TrimSpaces(rest.substr(0, star));
  }
  request.appName = rest;
  return request;
}

std::wstring ArgumentsOf(const std::wstring& line) {
  size_t i = 0;
  if (!line.empty() && line[0] == L'"') {
    const size_t close = line.find(L'"', 1);
    i = close == std::wstring::npos ? line.size() : close + 1;
  } else {
    while (i < line.size() && line[i] != L' ' && line[i] != L'\t') ++i;
  }
  while (i < line.size() && (line[i] == L' ' || line[i] == L'\t')) ++i;
  return line.substr(i);
}

}  // namespace nx
