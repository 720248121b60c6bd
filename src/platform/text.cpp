#include "platform/text.h"

#include <cwchar>

namespace nx {

std::wstring Utf8ToWide(std::string_view s) {
  std::wstring out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    char32_t cp = 0xFFFD;
    size_t len = 1;
    if (c < 0x80) {
      cp = c;
    } else if ((c >> 5) == 6 && i + 1 < s.size()) {
      cp = ((c & 0x1F) << 6) | (s[i + 1] & 0x3F);
      len = 2;
    } else if ((c >> 4) == 14 && i + 2 < s.size()) {
      cp = ((c & 0x0F) << 12) | ((s[i + 1] & 0x3F) << 6) | (s[i + 2] & 0x3F);
      len = 3;
    } else if ((c >> 3) == 30 && i + 3 < s.size()) {
      cp = ((c & 0x07) << 18) | ((s[i + 1] & 0x3F) << 12) | ((s[i + 2] & 0x3F) << 6) | (s[i + 3] & 0x3F);
      len = 4;
    }
    i += len;
    if (cp >= 0x10000 && sizeof(wchar_t) == 2) {
      cp -= 0x10000;
      out += static_cast<wchar_t>(0xD800 + (cp >> 10));
      out += static_cast<wchar_t>(0xDC00 + (cp & 0x3FF));
    } else {
      out += static_cast<wchar_t>(cp);
    }
  }
  return out;
}

std::optional<size_t> FirstInvalidUtf8(std::string_view s) {
  auto continuation = [&s](size_t at) { return at < s.size() && (static_cast<unsigned char>(s[at]) & 0xC0) == 0x80; };
  for (size_t i = 0; i < s.size();) {
    const unsigned char c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    // The lead byte gives the length and the range the second byte must be
    // in, which excludes overlong forms, surrogates and code points above
    // U+10FFFF.
    size_t length;
    unsigned char low = 0x80, high = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) {
      length = 2;
    } else if (c >= 0xE0 && c <= 0xEF) {
      length = 3;
      if (c == 0xE0) low = 0xA0;
      if (c == 0xED) high = 0x9F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      length = 4;
      if (c == 0xF0) low = 0x90;
      if (c == 0xF4) high = 0x8F;
    } else {
      return i;
    }
    const unsigned char second = i + 1 < s.size() ? static_cast<unsigned char>(s[i + 1]) : 0;
    if (second < low || second > high) return i;
    for (size_t k = 2; k < length; ++k)
      if (!continuation(i + k)) return i;
    i += length;
  }
  return std::nullopt;
}

std::optional<std::wstring> Utf8ToWideStrict(std::string_view utf8) {
  if (FirstInvalidUtf8(utf8)) return std::nullopt;
  return Utf8ToWide(utf8);
}

std::wstring DescribeCharacter(std::wstring_view text, size_t at) {
  if (at >= text.size()) return {};
  char32_t cp = static_cast<char32_t>(text[at]);
  size_t length = 1;
  if (sizeof(wchar_t) == 2 && cp >= 0xD800 && cp < 0xDC00 && at + 1 < text.size() && text[at + 1] >= 0xDC00 &&
      text[at + 1] < 0xE000) {
    cp = 0x10000 + ((cp - 0xD800) << 10) + (static_cast<char32_t>(text[at + 1]) - 0xDC00);
    length = 2;
  }
  wchar_t number[16];
  std::swprintf(number, 16, L"U+%04X", static_cast<unsigned>(cp));
  return L"\"" + std::wstring(text.substr(at, length)) + L"\" (" + number + L")";
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

std::string WideToUtf8(std::wstring_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    char32_t cp = static_cast<char32_t>(s[i]);
    if (sizeof(wchar_t) == 2 && cp >= 0xD800 && cp < 0xDC00 && i + 1 < s.size()) {
      char32_t lo = static_cast<char32_t>(s[i + 1]);
      if (lo >= 0xDC00 && lo < 0xE000) {
        cp = 0x10000 + ((cp - 0xD800) << 10) + (lo - 0xDC00);
        ++i;
      }
    }
    AppendUtf8(out, cp);
  }
  return out;
}

wchar_t UpperCharBeyondAscii(wchar_t c) {
  const unsigned u = static_cast<unsigned>(c);
  if (u < 0xB5) return c;
  if (u == 0xB5) return static_cast<wchar_t>(0x39C);
  if (u >= 0xE0 && u <= 0xFE && u != 0xF7) return static_cast<wchar_t>(u - 32);
  if (u == 0xFF) return static_cast<wchar_t>(0x178);
  // Latin Extended-A alternates upper and lower case; the parity flips at
  // U+0138/U+0149 and U+0178.
  if ((u >= 0x100 && u <= 0x137) || (u >= 0x14A && u <= 0x177)) return static_cast<wchar_t>(u & ~1u);
  if ((u >= 0x139 && u <= 0x148) || (u >= 0x179 && u <= 0x17E)) return (u % 2 == 0) ? static_cast<wchar_t>(u - 1) : c;
  if (u == 0x17F) return L'S';
  if (u >= 0x3B1 && u <= 0x3C9 && u != 0x3C2) return static_cast<wchar_t>(u - 32);
  if (u >= 0x430 && u <= 0x44F) return static_cast<wchar_t>(u - 32);
  if (u >= 0x450 && u <= 0x45F) return static_cast<wchar_t>(u - 80);
  return c;
}

std::wstring UpperCase(std::wstring_view text) {
  std::wstring out(text);
  for (auto& c : out) c = UpperChar(c);
  return out;
}

wchar_t LowerChar(wchar_t c) {
  const unsigned u = static_cast<unsigned>(c);
  if (u >= 'A' && u <= 'Z') return static_cast<wchar_t>(u + 32);
  if (u < 0xC0) return c;
  if (u <= 0xDE && u != 0xD7) return static_cast<wchar_t>(u + 32);
  if (u == 0x178) return static_cast<wchar_t>(0xFF);
  if ((u >= 0x100 && u <= 0x137) || (u >= 0x14A && u <= 0x177)) return static_cast<wchar_t>(u | 1u);
  if ((u >= 0x139 && u <= 0x148) || (u >= 0x179 && u <= 0x17E)) return (u % 2 == 1) ? static_cast<wchar_t>(u + 1) : c;
  if (u >= 0x391 && u <= 0x3A9 && u != 0x3A2) return static_cast<wchar_t>(u + 32);
  if (u >= 0x410 && u <= 0x42F) return static_cast<wchar_t>(u + 32);
  if (u >= 0x400 && u <= 0x40F) return static_cast<wchar_t>(u + 80);
  return c;
}

std::wstring LowerCase(std::wstring_view text) {
  std::wstring out(text);
  for (auto& c : out) c = LowerChar(c);
  return out;
}

bool EqualsNoCase(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size()) return false;
  if (a == b) return true;  // mostly spelt alike
  for (size_t i = 0; i < a.size(); ++i)
    if (UpperChar(a[i]) != UpperChar(b[i])) return false;
  return true;
}

bool StartsWithNoCase(std::wstring_view text, std::wstring_view prefix) {
  return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

std::wstring TrimSpaces(std::wstring_view text) {
  size_t b = text.find_first_not_of(L' ');
  if (b == std::wstring_view::npos) return {};
  size_t e = text.find_last_not_of(L' ');
  return std::wstring(text.substr(b, e - b + 1));
}

std::wstring ReplaceAll(std::wstring_view text, std::wstring_view from, std::wstring_view to) {
  if (from.empty()) return std::wstring(text);
  std::wstring out;
  size_t pos = 0;
  for (size_t hit; (hit = text.find(from, pos)) != std::wstring_view::npos; pos = hit + from.size()) {
    out.append(text.substr(pos, hit - pos));
    out.append(to);
  }
  out.append(text.substr(pos));
  return out;
}

}  // namespace nx
