#include "defs/def_text.h"

#include "platform/folders.h"

namespace nx {

std::wstring TrimBlanks(const std::wstring& text) {
  const size_t b = text.find_first_not_of(L" \t");
  if (b == std::wstring::npos) return {};
  return text.substr(b, text.find_last_not_of(L" \t") - b + 1);
}

std::optional<std::vector<std::wstring>> ReadDefLines(const std::wstring& path, const ICodePage& codePage) {
  std::string bytes;
  if (!ReadFileBytes(path, bytes)) return std::nullopt;
  const std::wstring text = codePage.ToWide(bytes);
  std::vector<std::wstring> lines;
  size_t pos = 0;
  while (pos <= text.size()) {
    size_t end = text.find_first_of(L"\r\n", pos);
    if (end == std::wstring::npos) end = text.size();
    std::wstring line = TrimBlanks(text.substr(pos, end - pos));
    const size_t remark = line.find(L'\'');
    if (remark != std::wstring::npos) line = TrimBlanks(line.substr(0, remark));
    if (!line.empty()) lines.push_back(std::move(line));
    if (end < text.size() && text[end] == L'\r' && end + 1 < text.size() && text[end + 1] == L'\n') ++end;
    pos = end + 1;
  }
  return lines;
}

std::wstring NextToken(std::wstring& line, wchar_t separator) {
  const size_t at = line.find(separator);
  std::wstring token;
  if (at == std::wstring::npos) {
    token.swap(line);
  } else {
    token = line.substr(0, at);
    line.erase(0, at + 1);
  }
  return token;
}

std::optional<int16_t> ParseInt16(const std::wstring& text) {
  const std::wstring t = TrimBlanks(text);
  size_t i = 0;
  bool minus = false;
  if (i < t.size() && (t[i] == L'+' || t[i] == L'-')) minus = t[i++] == L'-';
  if (i == t.size()) return std::nullopt;
  int32_t value = 0;
  for (; i < t.size(); ++i) {
    if (t[i] < L'0' || t[i] > L'9') return std::nullopt;
    value = value * 10 + (t[i] - L'0');
    if (value > 32768) return std::nullopt;
  }
  if (minus) value = -value;
  if (value > 32767) return std::nullopt;
  return static_cast<int16_t>(value);
}

std::optional<int32_t> ParseHex32(const std::wstring& text) {
  const std::wstring t = TrimBlanks(text);
  if (t.empty() || t.size() > 8) return std::nullopt;
  uint32_t value = 0;
  for (wchar_t c : t) {
    uint32_t digit;
    if (c >= L'0' && c <= L'9')
      digit = static_cast<uint32_t>(c - L'0');
    else if (c >= L'A' && c <= L'F')
      digit = static_cast<uint32_t>(c - L'A' + 10);
    else if (c >= L'a' && c <= L'f')
      digit = static_cast<uint32_t>(c - L'a' + 10);
    else
      return std::nullopt;
    value = value * 16 + digit;
  }
  return static_cast<int32_t>(value);
}

std::wstring HexText(uint32_t value) {
  static const wchar_t kDigits[] = L"0123456789ABCDEF";
  std::wstring out;
  do {
    out.insert(out.begin(), kDigits[value & 0xF]);
    value >>= 4;
  } while (value);
  return out;
}

}  // namespace nx
