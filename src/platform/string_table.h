// The program's texts by string-table id, in the language of the user
// interface (English, Czech, or Slovak which carries the Czech texts).
#pragma once

#include <string>

namespace nx {

// The text of `id`, or "" when the id is missing; never fails. Windows picks
// the language of the resources; elsewhere LC_ALL, LC_MESSAGES or LANG, as
// they are at the call, do ("cs" and "sk" give Czech). "%1" in the
// text is left for the caller to replace.
std::wstring LoadResText(int id);

// The same text with every "%1" replaced by `arg`.
std::wstring LoadResText(int id, const std::wstring& arg);

// The program's name: the title of every message box it shows.
constexpr int kProductTitle = 2053;

enum class UiLanguage { English, Czech };

struct StringEntry {
  int id;
  const wchar_t* english;
  const wchar_t* czech;
};

// Every entry of the table, in id order, as compiled into the program.
const StringEntry* StringTableBegin();
const StringEntry* StringTableEnd();

// The text of `id` in `language` from the compiled-in table, "" if missing.
std::wstring TableText(int id, UiLanguage language);

}  // namespace nx
