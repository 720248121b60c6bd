#include "temp_folder.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <unistd.h>

#include "platform/folders.h"

namespace nx::test {

TempFolder::TempFolder() {
  static std::atomic<int> counter{0};
  root_ = std::filesystem::temp_directory_path() /
          ("nx-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
  std::filesystem::remove_all(root_);
  std::filesystem::create_directories(root_);
}

TempFolder::~TempFolder() {
  std::error_code ec;
  std::filesystem::remove_all(root_, ec);
}

std::wstring TempFolder::Path() const { return root_.wstring(); }
std::wstring TempFolder::Path(const std::wstring& relative) const { return root_.wstring() + L"\\" + relative; }

void TempFolder::Write(const std::wstring& relative, const std::string& bytes) const {
  std::ofstream out(ToFsPath(Path(relative)), std::ios::binary);
  out << bytes;
}

std::string TempFolder::Read(const std::wstring& relative) const { return ReadPath(ToFsPath(Path(relative))); }

std::string TempFolder::ReadPath(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace nx::test
