// libFuzzer: a menu file read with its braille display profile, both from
// one input (the profile up to the first NUL byte, the menu after it), then
// written with the editor's writer and read again: a menu the reader took in
// whole must come back whole, with the same items. The menu's bytes alone,
// read and written again, must read back to the same bytes.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "defs/def_actions.h"
#include "menu/menu_file.h"
#include "scratch_file.h"

namespace {

int CountItems(const nx::cMenuItem& root) {
  int count = 0;
  nx::WalkTree(
      root,
      [&count](const nx::cMenuItem&, size_t, int) {
        ++count;
        return true;
      },
      [](const nx::cMenuItem&, size_t) {});
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1250);
  static nx::PortableProfile profile(page);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const size_t split = bytes.find('\0');
  const std::string_view profileText = bytes.substr(0, split);
  const std::string_view menuBytes = split == std::string_view::npos ? std::string_view() : bytes.substr(split + 1);
  int32_t counter = 0, again = 0;
  const auto code = [](const std::wstring& action) { return static_cast<int32_t>(action.size()); };
  if (auto written =
          nx::SerializeMenu(*nx::ParseMenu(std::string(menuBytes), page, code, counter).root, page, nullptr)) {
    const auto reread = nx::ParseMenu(*written, page, code, again);
    if (!reread.complete || nx::SerializeMenu(*reread.root, page, nullptr) != written) __builtin_trap();
  }
  const nx::fuzz::ScratchFile ini("menu.ini", profileText), menu("menu.mnu", menuBytes);
  const nx::fuzz::ScratchFile writtenIni("written.ini"), writtenMenu("written.mnu");
  nx::cMenuFile defs(page, profile);
  bool complete = false;
  const nx::MenuItemPtr root = defs.InitCommandDef(menu.Path(), ini.Path(), &complete);
  if (!root) __builtin_trap();
  if (!complete || !defs.FlushCommand2Def(writtenMenu.Path(), writtenIni.Path(), *root)) return 0;
  bool whole = false;
  const nx::MenuItemPtr reread = defs.InitCommandDef(writtenMenu.Path(), writtenIni.Path(), &whole);
  if (!reread || !whole || CountItems(*reread) != CountItems(*root)) __builtin_trap();
  return 0;
}
