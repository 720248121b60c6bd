// libFuzzer: the menu reader on any bytes, and a written copy of what it read
// must read back to the same tree.
#include <cstddef>
#include <cstdint>
#include <string>

#include "menu/menu_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1250);
  const auto code = [](const std::wstring& a) { return static_cast<int32_t>(a.size()); };
  int32_t counter = 0, again = 0;
  auto read = nx::ParseMenu({reinterpret_cast<const char*>(data), size}, page, code, counter);
  if (auto written = nx::SerializeMenu(*read.root, page, nullptr)) {
    auto reread = nx::ParseMenu(*written, page, code, again);
    if (!reread.complete || nx::SerializeMenu(*reread.root, page, nullptr) != written) __builtin_trap();
  }
  return 0;
}
