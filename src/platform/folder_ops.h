// Whole folders moved, copied, deleted: the application list's buttons work
// on application folders through this. Every operation reports success and
// never throws; a failure leaves the folders as they were as far as the file
// system allows (a copy that fails half-way is removed again).
#pragma once

#include <string>

namespace nx {

class IFolderOps {
 public:
  virtual ~IFolderOps() = default;
  // False when `to` exists already or the move fails.
  virtual bool MoveFolder(const std::wstring& from, const std::wstring& to) = 0;
  // Copies `from` with everything in it to the new folder `to`.
  virtual bool CopyFolder(const std::wstring& from, const std::wstring& to) = 0;
  // Deletes the folder with everything in it.
  virtual bool DeleteFolder(const std::wstring& path) = 0;
  virtual bool FolderExists(const std::wstring& path) = 0;
};

// IFolderOps on the C++ file system library: the same on Windows and Linux.
class FileSystemFolderOps final : public IFolderOps {
 public:
  bool MoveFolder(const std::wstring& from, const std::wstring& to) override;
  bool CopyFolder(const std::wstring& from, const std::wstring& to) override;
  bool DeleteFolder(const std::wstring& path) override;
  bool FolderExists(const std::wstring& path) override;
};

}  // namespace nx
