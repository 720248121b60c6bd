// A file that a fuzz target writes for one input and removes again when done
// with it, so that runs leave nothing behind.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "defs/def_actions.h"

namespace nx::fuzz {

// The part before "=" of every line of `bytes` that holds one, until `f` says stop.
template <typename F>
void ForEachKey(std::string_view bytes, F f) {
  for (size_t start = 0, end = 0; start < bytes.size(); start = end + 1) {
    end = std::min(bytes.find('\n', start), bytes.size());
    const std::string_view line = bytes.substr(start, end - start);
    if (line.find('=') != std::string_view::npos && !f(line.substr(0, line.find('=')))) return;
  }
}

// The text of a hot key, which may be too long to make.
inline void KeyText(cDefActions& defs, const std::wstring& table, int32_t code) {
  try {
    defs.GetKeyCodeAsTextEx(table, code);
  } catch (const std::overflow_error&) {
  }
}

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
