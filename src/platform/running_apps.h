// The applications running now, as the application list asks about them:
// the product version of the one whose executable carries a given name.
#pragma once

#include <string>

namespace nx {

// The standard string names of a version resource; the list uses only the
// last one.
inline constexpr const wchar_t* kVersionStrings[8] = {L"CompanyName",  L"FileDescription", L"FileVersion",
                                                      L"InternalName", L"LegalCopyright",  L"OriginalFilename",
                                                      L"ProductName",  L"ProductVersion"};

class IRunningApps {
 public:
  virtual ~IRunningApps() = default;
  // The ProductVersion of the first running process whose executable name,
  // cut at its first ".", equals `name` regardless of case ("WINWORD.EXE"
  // for "winword"); "" when none runs or anything on the way fails.
  virtual std::wstring GetRunningAppVersion(const std::wstring& name) = 0;
};

}  // namespace nx
