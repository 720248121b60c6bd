#include "platform/string_table.h"

#include <algorithm>
#include <cstdlib>

#include "platform/text.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace nx {
namespace {

const StringEntry kEntries[] = {
#include "string_table_data.inc"
};

[[maybe_unused]] UiLanguage LanguageFromEnvironment() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (!value || !*value) continue;
    const std::string v(value);
    return (v.rfind("cs", 0) == 0 || v.rfind("sk", 0) == 0) ? UiLanguage::Czech : UiLanguage::English;
  }
  return UiLanguage::English;
}

}  // namespace

const StringEntry* StringTableBegin() { return std::begin(kEntries); }
const StringEntry* StringTableEnd() { return std::end(kEntries); }

std::wstring TableText(int id, UiLanguage language) {
  // The table is generated in id order.
  auto it = std::lower_bound(std::begin(kEntries), std::end(kEntries), id,
                             [](const StringEntry& e, int wanted) { return e.id < wanted; });
  if (it == std::end(kEntries) || it->id != id) return {};
  return language == UiLanguage::Czech ? it->czech : it->english;
}

std::wstring LoadResText(int id) {
#ifdef _WIN32
  // Windows picks the string table of the user-interface language; with a
  // zero length LoadStringW hands out a pointer into the resource itself.
  const wchar_t* text = nullptr;
  const int length = LoadStringW(GetModuleHandleW(nullptr), static_cast<UINT>(id), reinterpret_cast<LPWSTR>(&text), 0);
  if (length > 0 && text) return std::wstring(text, static_cast<size_t>(length));
  return {};
#else
  return TableText(id, LanguageFromEnvironment());
#endif
}

std::wstring LoadResText(int id, const std::wstring& arg) { return ReplaceAll(LoadResText(id), L"%1", arg); }

}  // namespace nx
