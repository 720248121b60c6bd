#include "platform/folder_ops.h"

#include <filesystem>
#include <system_error>

#include "platform/folders.h"

namespace nx {

namespace fs = std::filesystem;

bool FileSystemFolderOps::MoveFolder(const std::wstring& from, const std::wstring& to) {
  std::error_code ec;
  const fs::path source = ToFsPath(from), target = ToFsPath(to);
  if (!fs::is_directory(source, ec)) return false;
  // Only a change of case may name the same folder again.
  if (fs::exists(target, ec) && !fs::equivalent(source, target, ec)) return false;
  fs::rename(source, target, ec);
  return !ec;
}

bool FileSystemFolderOps::CopyFolder(const std::wstring& from, const std::wstring& to) {
  std::error_code ec;
  const fs::path source = ToFsPath(from), target = ToFsPath(to);
  if (!fs::is_directory(source, ec) || fs::exists(target, ec)) return false;
  fs::copy(source, target, fs::copy_options::recursive, ec);
  if (!ec) return true;
  fs::remove_all(target, ec);
  return false;
}

bool FileSystemFolderOps::DeleteFolder(const std::wstring& path) {
  std::error_code ec;
  const fs::path folder = ToFsPath(path);
  if (!fs::is_directory(folder, ec)) return false;
  fs::remove_all(folder, ec);
  return !ec;
}

bool FileSystemFolderOps::FolderExists(const std::wstring& path) { return IsFolder(path); }

}  // namespace nx
