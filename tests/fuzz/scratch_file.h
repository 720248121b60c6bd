// A file that a fuzz target writes for one input and removes again when done
// with it, so that runs leave nothing behind.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

namespace nx::fuzz {

class ScratchFile {
 public:
  ScratchFile(const char* name, std::string_view bytes)
      : path_("/tmp/nx-fuzz-" + std::to_string(getpid()) + "-" + name) {
    std::ofstream(path_, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  // A name for a file that the code under test writes itself.
  explicit ScratchFile(const char* name) : path_("/tmp/nx-fuzz-" + std::to_string(getpid()) + "-" + name) {}
  ~ScratchFile() { std::remove(path_.c_str()); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  std::wstring Path() const { return std::wstring(path_.begin(), path_.end()); }

 private:
  std::string path_;
};

}  // namespace nx::fuzz
