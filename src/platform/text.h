// Text helpers shared by every part of the program. All texts inside the
// program are UTF-16 (std::wstring); files and profile calls use the ANSI
// code page (see code_page.h), and the console and JSON use UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nx {

// Decodes loosely: a byte that does not fit becomes U+FFFD or is taken
// as it comes. For text from outside the program see Utf8ToWideStrict.
std::wstring Utf8ToWide(std::string_view utf8);
// The offset of the first byte that is not part of well-formed UTF-8: a
// byte that cannot lead or continue a sequence, a sequence cut short, an
// overlong form, an encoded surrogate (U+D800 to U+DFFF) or a code point
// above U+10FFFF; nothing when the whole text is well-formed.
std::optional<size_t> FirstInvalidUtf8(std::string_view utf8);
// Nothing unless the text is well-formed UTF-8.
std::optional<std::wstring> Utf8ToWideStrict(std::string_view utf8);
std::string WideToUtf8(std::wstring_view text);
// Appends one Unicode code point to `out` in UTF-8.
void AppendUtf8(std::string& out, char32_t codePoint);

// The character at `at` (with its second half, when it is the first half
// of a surrogate pair) as messages name it: "ř" (U+0159).
std::wstring DescribeCharacter(std::wstring_view text, size_t at);

// Upper-cases the way names are compared here: Latin, Czech, Slovak and the
// rest of Latin-1 / Latin Extended-A, Greek and Cyrillic; other characters
// stay as they are.
wchar_t UpperCharBeyondAscii(wchar_t c);
inline wchar_t UpperChar(wchar_t c) {
  // Plain ASCII, most of what is compared, without a call.
  if (static_cast<unsigned>(c) < 0x80) return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
  return UpperCharBeyondAscii(c);
}
std::wstring UpperCase(std::wstring_view text);
wchar_t LowerChar(wchar_t c);
std::wstring LowerCase(std::wstring_view text);
bool EqualsNoCase(std::wstring_view a, std::wstring_view b);
bool StartsWithNoCase(std::wstring_view text, std::wstring_view prefix);

// Removes leading and trailing spaces (spaces only, as the names typed by
// users and read from the command line are trimmed).
std::wstring TrimSpaces(std::wstring_view text);

// Replaces every occurrence of `from` in one left-to-right pass.
std::wstring ReplaceAll(std::wstring_view text, std::wstring_view from, std::wstring_view to);

}  // namespace nx
