// libFuzzer: the command table (gActions.def) on any bytes; every pair read
// has a name, and no name holds a tab.
#include <cstddef>
#include <cstdint>

#include "defs/def_actions.h"
#include "scratch_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1252);
  static nx::PortableProfile profile(page);
  const nx::fuzz::ScratchFile table("gActions.def", {reinterpret_cast<const char*>(data), size});
  nx::cDefActions defs(page, profile);
  nx::cNarrixActions actions;
  if (!defs.InitNXactionsDef(table.Path(), &actions)) __builtin_trap();
  for (int i = 0; i < actions.Count(); ++i) {
    const std::wstring name = actions.Action(i), comment = actions.Comment(i);
    if (name.empty() || comment.empty() || (name + comment).find(L'\t') != std::wstring::npos) __builtin_trap();
  }
  return 0;
}
