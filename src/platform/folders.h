// Files and folders. Paths inside the program are Windows paths joined with
// "\"; on other systems the backslashes are read as "/", so that the same
// logic runs under tests on Linux.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nx {

std::filesystem::path ToFsPath(const std::wstring& path);

// True when anything (file or folder) exists at `path`; errors count as false.
bool PathExists(const std::wstring& path);
bool IsFolder(const std::wstring& path);

// The size and modification time of a file, read with one system call;
// nothing when it is missing or not a file.
struct FileStamp {
  uint64_t size = 0;
  int64_t time = 0;  // in the system's own units
  bool operator==(const FileStamp& o) const { return size == o.size && time == o.time; }
  bool operator!=(const FileStamp& o) const { return !(*this == o); }
};
std::optional<FileStamp> StampOf(const std::wstring& path);

// Creates one folder. True when it exists afterwards.
bool CreateFolder(const std::wstring& path);

// The names of the subfolders of `folder`, spelt as on disk, in no
// particular order; nothing when the folder cannot be opened.
std::optional<std::vector<std::wstring>> ListSubfolders(const std::wstring& folder);

// Whole-file reads and writes of raw bytes. False on any failure; a failed
// write leaves the old file as it was.
bool ReadFileBytes(const std::wstring& path, std::string& bytes);
bool WriteFileBytes(const std::wstring& path, const std::string& bytes);

}  // namespace nx
