// Path and command helpers used by every window.
#pragma once

#include <string>

namespace nx {

// True when anything exists at `path`; any error counts as false.
bool FileExists(const std::wstring& path);

// Creates every missing folder of `path`, from the drive downward. Failures
// are ignored; the caller notices when it uses the folder.
void MakePath(const std::wstring& path);

// The part after the last "\" (the whole path when there is none).
std::wstring FileTitleOf(const std::wstring& path);

// The part before the last "\" ("" when there is none).
std::wstring FolderOf(const std::wstring& path);

// The text after the first "(" (the whole text when there is none), with one
// closing ")" at its end removed.
std::wstring ParenContent(const std::wstring& text);

// The command of a "shell(...)" action, lower-cased; for a script run by
// wscript only the script's file name. "" for any other action.
std::wstring ShellCommandOf(const std::wstring& action);

// Joins folder and name with "\".
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

}  // namespace nx
