// libFuzzer: the key-code table, the command table and the braille key map
// (a profile file) on any bytes, and key texts for codes taken from them.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "defs/def_actions.h"

namespace {

std::wstring Scratch(const char* name) {
  static const std::string folder = "/tmp/nx-fuzz-" + std::to_string(getpid()) + "-";
  const std::string path = folder + name;
  return std::wstring(path.begin(), path.end());
}

void Write(const std::wstring& path, const uint8_t* data, size_t size) {
  std::ofstream(std::string(path.begin(), path.end()), std::ios::binary)
      .write(reinterpret_cast<const char*>(data), size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1252);
  static nx::PortableProfile profile(page);
  const std::wstring table = Scratch("table.def"), ini = Scratch("profile.ini");
  Write(table, data, size);
  Write(ini, data, size);
  nx::cDefActions defs(page, profile);
  defs.RenderKeyCodeDescrip2List(table);
  nx::cNarrixActions actions;
  defs.InitNXactionsDef(table, &actions);
  defs.InitBrailleKeyMap(ini);
  profile.GetInt(L"Braille", L"BrailleActive", 0, ini);
  uint32_t code = 0;
  if (size >= 4) std::memcpy(&code, data, 4);
  for (uint32_t variant : {code, code & 0x7FFFFFFFu, code | 0x40000000u, code & 0x3FFFFFFFu}) {
    int32_t value = static_cast<int32_t>(variant);
    try {
      defs.GetKeyCodeAsTextEx(table, value);
    } catch (const std::overflow_error&) {
    }
  }
  return 0;
}
