// A fresh folder for one test, removed with everything in it afterwards.
#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/folders.h"

namespace nx::test {

class TempFolder {
 public:
  TempFolder() {
    static std::atomic<int> counter{0};
    root_ = std::filesystem::temp_directory_path() /
            ("nx-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::remove_all(root_);
    std::filesystem::create_directories(root_);
  }
  ~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(root_, ec);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The folder as the program writes paths ("\" between the parts).
  std::wstring Path() const { return root_.wstring(); }
  std::wstring Path(const std::wstring& relative) const { return root_.wstring() + L"\\" + relative; }
  std::filesystem::path Fs() const { return root_; }
  void Write(const std::wstring& relative, const std::string& bytes) const {
    std::ofstream(ToFsPath(Path(relative)), std::ios::binary) << bytes;
  }
  std::string Read(const std::wstring& relative) const { return ReadPath(ToFsPath(Path(relative))); }
  static std::string ReadPath(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

 private:
  std::filesystem::path root_;
};

}  // namespace nx::test
