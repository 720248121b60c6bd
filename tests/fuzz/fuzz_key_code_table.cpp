// libFuzzer: the key-code table (gKeyCode.def) on any bytes, both into the
// key-name table and as the table that key texts are looked up in.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "defs/def_actions.h"
#include "scratch_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1252);
  static nx::PortableProfile profile(page);
  const nx::fuzz::ScratchFile table("gKeyCode.def", {reinterpret_cast<const char*>(data), size});
  nx::cDefActions defs(page, profile);
  defs.RenderKeyCodeDescrip2List(table.Path());
  for (int16_t index = 0; index <= 255; ++index) defs.GetHotKeyString(index);
  // Keys from the input itself, so that lines the fuzzer writes are found.
  for (size_t at = 0; at + 4 <= size && at < 64; at += 4) {
    uint32_t code;
    std::memcpy(&code, data + at, 4);
    nx::fuzz::KeyText(defs, table.Path(), static_cast<int32_t>(code & 0xBFFFFFFFu));  // keyboard codes only
  }
  return 0;
}
