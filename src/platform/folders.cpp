#include "platform/folders.h"

#include <fstream>
#include <iterator>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace nx {

std::filesystem::path ToFsPath(const std::wstring& path) {
#ifdef _WIN32
  return std::filesystem::path(path);
#else
  std::wstring p = path;
  for (auto& c : p)
    if (c == L'\\') c = L'/';
  return std::filesystem::path(p);
#endif
}

bool PathExists(const std::wstring& path) {
  if (path.empty()) return false;
  std::error_code ec;
  return std::filesystem::exists(ToFsPath(path), ec);
}

bool IsFolder(const std::wstring& path) {
  std::error_code ec;
  return !path.empty() && std::filesystem::is_directory(ToFsPath(path), ec);
}

std::optional<FileStamp> StampOf(const std::wstring& path) {
#ifdef _WIN32
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
    return std::nullopt;
  return FileStamp{(static_cast<uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow,
                   static_cast<int64_t>((static_cast<uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
                                        data.ftLastWriteTime.dwLowDateTime)};
#else
  struct stat info;
  if (stat(ToFsPath(path).c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  return FileStamp{static_cast<uint64_t>(info.st_size),
                   static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec};
#endif
}

bool CreateFolder(const std::wstring& path) {
  std::error_code ec;
  std::filesystem::create_directory(ToFsPath(path), ec);
  return IsFolder(path);
}

std::optional<std::vector<std::wstring>> ListSubfolders(const std::wstring& folder) {
  std::error_code ec;
  std::filesystem::directory_iterator it(ToFsPath(folder), ec);
  if (ec) return std::nullopt;
  std::vector<std::wstring> names;
  for (; it != std::filesystem::directory_iterator(); it.increment(ec)) {
    if (ec) break;
    std::error_code typeError;
    if (it->is_directory(typeError)) names.push_back(it->path().filename().wstring());
  }
  return names;
}

bool ReadFileBytes(const std::wstring& path, std::string& bytes) {
  // A folder opens as a stream on some systems and then throws on the first
  // read; callers only need to know that there is no file to read.
  const std::filesystem::path fsPath = ToFsPath(path);
  std::error_code ec;
  if (std::filesystem::is_directory(fsPath, ec)) return false;
  try {
    std::ifstream in(fsPath, std::ios::binary);
    if (!in) return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
  } catch (const std::exception&) {
    return false;
  }
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes) {
  // The new content goes to a file beside the old one and replaces it only
  // when complete, so a failure never leaves half a file behind.
  const std::wstring temp = path + L".new~";
  {
    std::ofstream out(ToFsPath(temp), std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (out.fail()) {
      std::error_code ec;
      std::filesystem::remove(ToFsPath(temp), ec);
      return false;
    }
  }
#ifdef _WIN32
  const bool replaced =
      MoveFileExW(temp.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
#else
  std::error_code ec;
  std::filesystem::rename(ToFsPath(temp), ToFsPath(path), ec);
  const bool replaced = !ec;
#endif
  if (!replaced) {
    std::error_code ec2;
    std::filesystem::remove(ToFsPath(temp), ec2);
  }
  return replaced;
}

}  // namespace nx
