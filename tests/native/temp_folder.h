// A fresh folder for one test, removed with everything in it afterwards.
#pragma once

#include <filesystem>
#include <string>

namespace nx::test {

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The folder as the program writes paths ("\" between the parts).
  std::wstring Path() const;
  std::wstring Path(const std::wstring& relative) const;
  std::filesystem::path Fs() const { return root_; }
  void Write(const std::wstring& relative, const std::string& bytes) const;
  std::string Read(const std::wstring& relative) const;
  static std::string ReadPath(const std::filesystem::path& path);

 private:
  std::filesystem::path root_;
};

}  // namespace nx::test
