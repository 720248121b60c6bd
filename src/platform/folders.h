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

// Why a file could not be read: missing (no such file, or a folder on the
// way is missing) or there but unreadable, with the system's own words
// ("Access is denied.", "Is a directory").
struct ReadFailure {
  bool missing = false;
  std::wstring reason;
};

// The whole file as raw bytes. False on any failure; `failure` (optional)
// then tells why.
bool ReadFileBytes(const std::wstring& path, std::string& bytes, ReadFailure* failure = nullptr);

// Replaces the file with `bytes` in one piece: they go to a new file beside
// the target, named after it, this process and the attempt
// ("Command.mnu.1234-0~"), created only where nothing is yet (never through
// a link planted there; a name taken by another writer or anything else is
// passed over), flushed to the disk, and only then put in the target's
// place, which keeps its attributes and permissions. A failure leaves the
// old file as it was, removes the new one, and puts the system's own words
// into `reason` (optional).
bool WriteFileBytes(const std::wstring& path, const std::string& bytes, std::wstring* reason = nullptr);

}  // namespace nx
