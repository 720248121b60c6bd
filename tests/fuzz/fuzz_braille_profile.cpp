// libFuzzer: a braille display profile on any bytes: the button names of
// section KeyMap with the braille key texts made from them, the codes of
// section Actions as the menu reader looks them up, for every key the input
// names, and those keys written at once as one by one.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "defs/hot_key.h"
#include "defs/def_actions.h"
#include "menu/menu_file.h"
#include "scratch_file.h"

namespace {

// A menu with one braille-button item for each "name=" line of the profile
// (and one with no action), so that the reader looks each name up.
std::string MenuNaming(std::string_view profile) {
  std::string menu;
  auto record = [&menu](std::string_view action) {
    if (action.size() > 0xFFFF) return;
    const char fixed[] = {0, 0, 0, 0, 0, 0x40, 1, 0, 'x'};  // level 0, braille, caption "x"
    menu.append(fixed, sizeof(fixed));
    menu += static_cast<char>(action.size() & 0xFF);
    menu += static_cast<char>(action.size() >> 8);
    menu += action;
  };
  record("");
  nx::fuzz::ForEachKey(profile, [&record](std::string_view key) { return record(key), true; });
  return menu;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const nx::BuiltinCodePage page(1252);
  static nx::PortableProfile profile(page);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const nx::fuzz::ScratchFile ini("profile.ini", bytes), menu("Command.mnu", MenuNaming(bytes));
  nx::cDefActions defs(page, profile);
  nx::cMenuFile defsFiles(page, profile);
  defs.InitBrailleKeyMap(ini.Path());
  profile.GetInt(L"Braille", L"BrailleActive", 0, ini.Path());
  uint32_t code = 0;
  if (size >= 4) std::memcpy(&code, data, 4);
  for (uint32_t variant : {code | 0x40000000u, (code | 0x40000000u) & 0x7FFFFFFFu, 0xC0020000u | (code & 0xFFFF),
                           0xC0040000u | (code & 0x7FFF)})
    nx::fuzz::KeyText(defs, L"", static_cast<int32_t>(variant));
  // Codes written at once leave the profile as writing them one by one, the
  // file read again after each, does.
  std::vector<std::pair<std::wstring, std::wstring>> codes;
  nx::fuzz::ForEachKey(bytes, [&](std::string_view key) {
    codes.emplace_back(page.ToWide(key), std::to_wstring(codes.size()));
    return codes.size() < 8;
  });
  nx::ProfileDocument atOnce = nx::ProfileDocument::Parse(std::string(bytes), page), oneByOne = atOnce;
  atOnce.WriteKeys(L"Actions", codes);
  for (const auto& [key, value] : codes) {
    oneByOne.Write(L"Actions", key, value);
    oneByOne = nx::ProfileDocument::Parse(oneByOne.Serialize(), page);
  }
  if (atOnce.Serialize() != oneByOne.Serialize()) __builtin_trap();

  bool complete = false;
  const nx::MenuItemPtr root = defsFiles.InitCommandDef(menu.Path(), ini.Path(), &complete);
  if (!root || !complete) __builtin_trap();
  for (const auto& item : root->SubItems)
    if (!nx::hotkey::IsBraille(item->HotKey)) __builtin_trap();
  return 0;
}
