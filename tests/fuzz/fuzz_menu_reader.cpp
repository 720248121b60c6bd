// libFuzzer: the menu reader on any bytes, and a written copy of what it read
// must read back to the same tree.
#include <cstddef>
#include <cstdint>
#include <string>

#include "menu/menu_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1250);
  int32_t counter = 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  auto read = nx::ParseMenu(
      bytes, page, [](const std::wstring& a) { return static_cast<int32_t>(a.size()); }, counter);
  auto written = nx::SerializeMenu(*read.root, page, nullptr);
  if (written) {
    int32_t again = 0;
    auto reread = nx::ParseMenu(
        *written, page, [](const std::wstring& a) { return static_cast<int32_t>(a.size()); }, again);
    if (!reread.complete || nx::SerializeMenu(*reread.root, page, nullptr) != written) __builtin_trap();
  }
  return 0;
}
