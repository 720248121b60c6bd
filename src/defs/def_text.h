// The line and token rules shared by the screen reader's text tables.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/code_page.h"

namespace nx {

// The content lines of a table file: each line trimmed, cut at the first
// apostrophe (a remark), trimmed again; empty lines left out. Nothing when
// the file cannot be read.
std::optional<std::vector<std::wstring>> ReadDefLines(const std::wstring& path, const ICodePage& codePage);

// Takes the text up to the first `separator` as the token and leaves the
// rest of the line in `line` (all of it is the token when there is none).
std::wstring NextToken(std::wstring& line, wchar_t separator);

// Trims blanks and tabs.
std::wstring TrimBlanks(const std::wstring& text);

// A whole decimal number that fits 16 bits (an optional sign, blanks
// around); nothing otherwise.
std::optional<int16_t> ParseInt16(const std::wstring& text);

// A hexadecimal number of up to 8 digits, trimmed, without prefix; nothing
// when it cannot be read.
std::optional<int32_t> ParseHex32(const std::wstring& text);

// Upper-case hexadecimal without prefix or leading zeros.
std::wstring HexText(uint32_t value);

}  // namespace nx
