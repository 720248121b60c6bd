#include "applist/folder_name.h"

#include "platform/text.h"

namespace nx {

FolderNameProblem CheckFolderName(const std::wstring& name) {
  if (TrimSpaces(name).empty()) return FolderNameProblem::Empty;
  for (wchar_t c : name)
    if (c < 32 || std::wstring_view(L"\\/:*?\"<>|").find(c) != std::wstring_view::npos)
      return FolderNameProblem::BadCharacter;
  // Windows drops a trailing dot or blank on creation, so such a folder
  // would not be found again under the name typed.
  if (name.back() == L'.' || name.back() == L' ') return FolderNameProblem::Dots;
  // A device name stays one with any extension ("nul.txt").
  std::wstring stem = UpperCase(name.substr(0, name.find(L'.')));
  stem = TrimSpaces(stem);
  static const wchar_t* const kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL"};
  for (const wchar_t* device : kDevices)
    if (stem == device) return FolderNameProblem::Reserved;
  if (stem.size() == 4 && (stem.compare(0, 3, L"COM") == 0 || stem.compare(0, 3, L"LPT") == 0) && stem[3] >= L'1' &&
      stem[3] <= L'9')
    return FolderNameProblem::Reserved;
  return FolderNameProblem::None;
}

}  // namespace nx
