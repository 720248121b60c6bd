#include "startup/file_helpers.h"

#include "platform/folders.h"
#include "platform/text.h"

namespace nx {

bool FileExists(const std::wstring& path) { return PathExists(path); }

void MakePath(const std::wstring& path) {
  for (size_t pos = path.find(L'\\');; pos = path.find(L'\\', pos + 1)) {
    const std::wstring part = path.substr(0, pos);
    // Skip the drive ("C:") and the empty start of "\\server" and "/root".
    if (!part.empty() && part.back() != L':' && !IsFolder(part)) CreateFolder(part);
    if (pos == std::wstring::npos) break;
  }
}

std::wstring FileTitleOf(const std::wstring& path) {
  const size_t pos = path.rfind(L'\\');
  return pos == std::wstring::npos ? path : path.substr(pos + 1);
}

std::wstring FolderOf(const std::wstring& path) {
  const size_t pos = path.rfind(L'\\');
  return pos == std::wstring::npos ? std::wstring() : path.substr(0, pos);
}

std::wstring ParenContent(const std::wstring& text) {
  const size_t open = text.find(L'(');
  std::wstring inner = open == std::wstring::npos ? text : text.substr(open + 1);
  if (!inner.empty() && inner.back() == L')') inner.pop_back();
  return inner;
}

std::wstring ShellCommandOf(const std::wstring& action) {
  if (!StartsWithNoCase(action, L"shell")) return {};
  std::wstring command = LowerCase(ParenContent(action.substr(5)));
  if (command.rfind(L"wscript", 0) == 0) command = FileTitleOf(command);
  return command;
}

std::wstring JoinPath(const std::wstring& folder, const std::wstring& name) { return folder + L"\\" + name; }

}  // namespace nx
