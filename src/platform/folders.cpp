#include "platform/folders.h"

#include <algorithm>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/text.h"
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

namespace {

// Names tried for the new file of one write before giving up: others taken
// by writers at the same time, by files left behind, or by planted links.
constexpr unsigned kNewFileAttempts = 100;

}  // namespace

#ifdef _WIN32

namespace {

std::wstring SystemText(DWORD code) {
  wchar_t* buffer = nullptr;
  const DWORD n =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::wstring text = n && buffer ? std::wstring(buffer, n) : L"Error " + std::to_wstring(code) + L".";
  if (buffer) LocalFree(buffer);
  while (!text.empty() && (text.back() == L'\r' || text.back() == L'\n' || text.back() == L' ')) text.pop_back();
  return text;
}

}  // namespace

bool ReadFileBytes(const std::wstring& path, std::string& bytes, ReadFailure* failure) {
  auto fail = [failure](DWORD code) {
    if (failure)
      *failure = {code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND || code == ERROR_INVALID_DRIVE ||
                      code == ERROR_INVALID_NAME || code == ERROR_BAD_NETPATH || code == ERROR_BAD_NET_NAME,
                  SystemText(code)};
    return false;
  };
  if (path.empty()) return fail(ERROR_FILE_NOT_FOUND);
  // Others may go on reading, writing and replacing the file meanwhile. A
  // folder does not open without backup semantics: access is denied.
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return fail(GetLastError());
  std::string data;
  LARGE_INTEGER size;
  if (GetFileSizeEx(file, &size) && size.QuadPart > 0) data.reserve(static_cast<size_t>(size.QuadPart));
  char buffer[65536];
  for (;;) {
    DWORD read = 0;
    if (!ReadFile(file, buffer, sizeof(buffer), &read, nullptr)) {
      const DWORD code = GetLastError();
      CloseHandle(file);
      return fail(code);
    }
    if (read == 0) break;
    data.append(buffer, read);
  }
  CloseHandle(file);
  bytes = std::move(data);
  return true;
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes, std::wstring* reason) {
  auto fail = [reason](DWORD code, const std::wstring& temp) {
    if (!temp.empty()) DeleteFileW(temp.c_str());
    if (reason) *reason = SystemText(code);
    return false;
  };
  if (path.empty()) return fail(ERROR_PATH_NOT_FOUND, L"");
  std::wstring temp;
  HANDLE file = INVALID_HANDLE_VALUE;
  for (unsigned attempt = 0; file == INVALID_HANDLE_VALUE; ++attempt) {
    temp = path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(attempt) + L"~";
    // A new file only: never one that is there already, nor through a link.
    file = CreateFileW(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
      const DWORD code = GetLastError();
      if ((code != ERROR_FILE_EXISTS && code != ERROR_ALREADY_EXISTS) || attempt >= kNewFileAttempts)
        return fail(code, L"");
    }
  }
  for (size_t done = 0; done < bytes.size();) {
    DWORD written = 0;
    const DWORD chunk = static_cast<DWORD>(std::min<size_t>(bytes.size() - done, 1u << 30));
    if (!WriteFile(file, bytes.data() + done, chunk, &written, nullptr)) {
      const DWORD code = GetLastError();
      CloseHandle(file);
      return fail(code, temp);
    }
    done += written;
  }
  if (!FlushFileBuffers(file)) {
    const DWORD code = GetLastError();
    CloseHandle(file);
    return fail(code, temp);
  }
  if (!CloseHandle(file)) return fail(GetLastError(), temp);
  // An existing file is replaced in place, so that it keeps its attributes,
  // permissions and creation time; a file another program holds open without
  // sharing is waited for a little.
  bool replaceInPlace = GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
  for (int attempt = 0; replaceInPlace; ++attempt) {
    if (ReplaceFileW(path.c_str(), temp.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr))
      return true;
    const DWORD code = GetLastError();
    if ((code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION) && attempt < 20) {
      Sleep(10);
      continue;
    }
    // Gone meanwhile, or moved away without taking the new file's place:
    // the new file still goes where the old one was.
    if (code != ERROR_FILE_NOT_FOUND && code != ERROR_UNABLE_TO_MOVE_REPLACEMENT_2) return fail(code, temp);
    replaceInPlace = false;
  }
  if (!MoveFileExW(temp.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    return fail(GetLastError(), temp);
  return true;
}

#else

namespace {

std::wstring SystemText(int error) { return Utf8ToWide(std::generic_category().message(error)); }

}  // namespace

bool ReadFileBytes(const std::wstring& path, std::string& bytes, ReadFailure* failure) {
  auto fail = [failure](int error) {
    if (failure) *failure = {error == ENOENT || error == ENOTDIR, SystemText(error)};
    return false;
  };
  if (path.empty()) return fail(ENOENT);
  const int file = open(ToFsPath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return fail(errno);
  auto failClosing = [&](int error) {
    close(file);
    return fail(error);
  };
  struct stat info;
  if (fstat(file, &info) != 0) return failClosing(errno);
  if (S_ISDIR(info.st_mode)) return failClosing(EISDIR);
  std::string data;
  if (S_ISREG(info.st_mode)) data.reserve(static_cast<size_t>(info.st_size));
  char buffer[65536];
  for (;;) {
    const ssize_t n = read(file, buffer, sizeof(buffer));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return failClosing(errno);
    if (n == 0) break;
    data.append(buffer, static_cast<size_t>(n));
  }
  close(file);
  bytes = std::move(data);
  return true;
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes, std::wstring* reason) {
  auto fail = [reason](int error, const std::string& temp) {
    if (!temp.empty()) unlink(temp.c_str());
    if (reason) *reason = SystemText(error);
    return false;
  };
  if (path.empty()) return fail(ENOENT, "");
  const std::filesystem::path target = ToFsPath(path);
  struct stat old;
  const bool existed = lstat(target.c_str(), &old) == 0 && S_ISREG(old.st_mode);
  // A file marked read-only stays as it is, as on Windows, although the
  // folder would let it be replaced.
  if (existed && (old.st_mode & 0222) == 0) return fail(EACCES, "");
  std::string temp;
  int file = -1;
  for (unsigned attempt = 0; file < 0; ++attempt) {
    temp = target.string() + "." + std::to_string(getpid()) + "-" + std::to_string(attempt) + "~";
    // A new file only: never one that is there already, nor through a link.
    file = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0 && (errno != EEXIST || attempt >= kNewFileAttempts)) return fail(errno, "");
  }
  auto failClosing = [&](int error) {
    close(file);
    return fail(error, temp);
  };
  // The old file's owner and permissions go to the new one (the owner only
  // where the system lets this process give it).
  if (existed) {
    if (old.st_uid != geteuid() || old.st_gid != getegid()) {
      const int refused = fchown(file, old.st_uid, old.st_gid);  // a failure only leaves this process the owner
      static_cast<void>(refused);
    }
    if (fchmod(file, old.st_mode & 07777) != 0) return failClosing(errno);
  }
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t n = write(file, bytes.data() + done, std::min<size_t>(bytes.size() - done, size_t{1} << 30));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return failClosing(errno);
    done += static_cast<size_t>(n);
  }
  if (fsync(file) != 0) return failClosing(errno);
  if (close(file) != 0) return fail(errno, temp);
  if (rename(temp.c_str(), target.c_str()) != 0) return fail(errno, temp);
  // The new name reaches the disk with the folder.
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  const int dir = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir >= 0) {
    fsync(dir);
    close(dir);
  }
  return true;
}

#endif

}  // namespace nx
