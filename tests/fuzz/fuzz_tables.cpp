// libFuzzer: the key-code table (gKeyCode.def) and the command table
// (gActions.def) on the same bytes. The key codes go into the key-name table
// and are the table key texts are looked up in; every command read has a
// name and a comment, and neither holds a tab.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "defs/def_actions.h"
#include "scratch_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1252);
  static nx::PortableProfile profile(page);
  const nx::fuzz::ScratchFile table("table.def", {reinterpret_cast<const char*>(data), size});
  nx::cDefActions defs(page, profile);
  defs.RenderKeyCodeDescrip2List(table.Path());
  for (int16_t index = 0; index <= 255; ++index) defs.GetHotKeyString(index);
  // Keys from the input itself, so that lines the fuzzer writes are found.
  for (size_t at = 0; at + 4 <= size && at < 64; at += 4) {
    uint32_t code;
    std::memcpy(&code, data + at, 4);
    nx::fuzz::KeyText(defs, table.Path(), static_cast<int32_t>(code & 0xBFFFFFFFu));  // keyboard codes only
  }
  nx::cNarrixActions actions;
  if (!defs.InitNXactionsDef(table.Path(), &actions)) __builtin_trap();
  for (int i = 0; i < actions.Count(); ++i) {
    const std::wstring name = actions.Action(i), comment = actions.Comment(i);
    if (name.empty() || comment.empty() || (name + comment).find(L'\t') != std::wstring::npos) __builtin_trap();
  }
  return 0;
}
