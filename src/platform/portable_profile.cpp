#include <cstdint>
#include <vector>

#include "platform/folders.h"
#include "platform/profile.h"
#include "platform/text.h"

namespace nx {
namespace {

// NUL counts as a blank too: some tools pad profile files with NUL bytes.
bool IsProfileSpace(wchar_t c) { return c == L' ' || c == 0 || (c >= 0x09 && c <= 0x0D) || c == 0x1A; }

std::wstring TrimProfile(std::wstring_view s) {
  size_t b = 0, e = s.size();
  while (b < e && IsProfileSpace(s[b])) ++b;
  while (e > b && IsProfileSpace(s[e - 1])) --e;
  return std::wstring(s.substr(b, e - b));
}

enum class Encoding { Ansi, Utf8Bom, Utf16Bom };

struct Line {
  std::wstring text;
  std::wstring eol;  // "", "\r\n", "\n" or "\r"
};

// A profile file as lines, with what the readers see in each of them.
struct ProfileText {
  Encoding encoding = Encoding::Ansi;
  std::vector<Line> lines;

  // The section name of a header line ("[name]"), trimmed.
  static std::optional<std::wstring> SectionOf(const std::wstring& text) {
    std::wstring t = TrimProfile(text);
    if (t.empty() || t[0] != L'[') return std::nullopt;
    size_t close = t.rfind(L']');
    if (close == std::wstring::npos || close == 0) return std::nullopt;
    return TrimProfile(std::wstring_view(t).substr(1, close - 1));
  }

  // The key of a key line and its value (none when the line has no "=").
  // A line starting with ";" is a comment to people, but a lookup of a key
  // that starts with ";" finds it all the same, as in Windows.
  static bool KeyOf(const std::wstring& text, std::wstring& key, std::optional<std::wstring>& value) {
    std::wstring t = TrimProfile(text);
    if (t.empty()) return false;
    size_t eq = t.find(L'=');
    if (eq == std::wstring::npos) {
      key = t;
      value.reset();
    } else {
      key = TrimProfile(std::wstring_view(t).substr(0, eq));
      value = TrimProfile(std::wstring_view(t).substr(eq + 1));
    }
    return true;
  }

  // Index of the first header of `section`, or npos. The lines before the
  // first header form a section without a name, found by the name "" and
  // given as kLeading.
  static constexpr size_t kLeading = static_cast<size_t>(-2);
  size_t FindSection(const std::wstring& section) const {
    if (section.empty() && !lines.empty() && !SectionOf(lines[0].text)) return kLeading;
    for (size_t i = 0; i < lines.size(); ++i) {
      auto name = SectionOf(lines[i].text);
      if (name && EqualsNoCase(*name, section)) return i;
    }
    return std::wstring::npos;
  }

  // One past the last line of the section whose header is at `header`.
  size_t SectionEnd(size_t header) const {
    size_t i = header == kLeading ? 0 : header + 1;
    while (i < lines.size() && !SectionOf(lines[i].text)) ++i;
    return i;
  }

  size_t FindKey(size_t header, const std::wstring& key, std::optional<std::wstring>* value) const {
    const size_t end = SectionEnd(header);
    for (size_t i = header == kLeading ? 0 : header + 1; i < end; ++i) {
      std::wstring k;
      std::optional<std::wstring> v;
      if (KeyOf(lines[i].text, k, v) && EqualsNoCase(k, key)) {
        if (value) *value = v;
        return i;
      }
    }
    return std::wstring::npos;
  }
};

std::wstring DecodeUtf16(std::string_view bytes) {
  std::wstring out;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    out += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) | (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return out;
}

ProfileText Parse(const std::string& bytes, const ICodePage& codePage) {
  ProfileText file;
  std::wstring text;
  if (bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    file.encoding = Encoding::Utf8Bom;
    text = Utf8ToWide(std::string_view(bytes).substr(3));
  } else if (bytes.size() >= 2 && bytes.compare(0, 2, "\xFF\xFE") == 0) {
    file.encoding = Encoding::Utf16Bom;
    text = DecodeUtf16(std::string_view(bytes).substr(2));
  } else {
    text = codePage.ToWide(bytes);
  }
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find_first_of(L"\r\n", pos);
    Line line;
    if (end == std::wstring::npos) {
      line.text = text.substr(pos);
      pos = text.size();
    } else {
      line.text = text.substr(pos, end - pos);
      size_t eolLen = (text[end] == L'\r' && end + 1 < text.size() && text[end + 1] == L'\n') ? 2 : 1;
      line.eol = text.substr(end, eolLen);
      pos = end + eolLen;
    }
    file.lines.push_back(std::move(line));
  }
  return file;
}

std::string Serialize(const ProfileText& file, const ICodePage& codePage) {
  std::wstring text;
  for (const auto& line : file.lines) text += line.text + line.eol;
  switch (file.encoding) {
    case Encoding::Utf8Bom:
      return "\xEF\xBB\xBF" + WideToUtf8(text);
    case Encoding::Utf16Bom: {
      std::string out = "\xFF\xFE";
      for (wchar_t c : text) {
        out += static_cast<char>(c & 0xFF);
        out += static_cast<char>((c >> 8) & 0xFF);
      }
      return out;
    }
    case Encoding::Ansi:
      break;
  }
  return codePage.ToAnsi(text);
}

std::wstring Unquote(const std::wstring& value) {
  if (value.size() >= 2 && (value[0] == L'"' || value[0] == L'\'') && value.back() == value[0])
    return value.substr(1, value.size() - 2);
  return value;
}

// The number reading of RtlUnicodeStringToInteger with base 0, which
// GetPrivateProfileIntA uses: blanks, a sign, "0x"/"0o"/"0b", digits up to
// the first other character, wrapping modulo 2^32.
int ParseProfileInt(const std::wstring& s) {
  size_t i = 0;
  while (i < s.size() && s[i] <= L' ') ++i;
  bool minus = false;
  if (i < s.size() && (s[i] == L'+' || s[i] == L'-')) minus = s[i++] == L'-';
  unsigned base = 10;
  if (i + 1 < s.size() && s[i] == L'0') {
    if (s[i + 1] == L'b') base = 2;
    if (s[i + 1] == L'o') base = 8;
    if (s[i + 1] == L'x') base = 16;
    if (base != 10) i += 2;
  }
  uint32_t total = 0;
  for (; i < s.size(); ++i) {
    wchar_t c = s[i];
    unsigned digit;
    if (c >= L'0' && c <= L'9')
      digit = static_cast<unsigned>(c - L'0');
    else if (c >= L'A' && c <= L'Z')
      digit = static_cast<unsigned>(c - L'A' + 10);
    else if (c >= L'a' && c <= L'z')
      digit = static_cast<unsigned>(c - L'a' + 10);
    else
      break;
    if (digit >= base) break;
    total = total * base + digit;
  }
  if (minus) total = 0u - total;
  return static_cast<int>(total);
}

}  // namespace

std::wstring PortableProfile::GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                        const std::wstring& file, size_t bufferSize) const {
  if (bufferSize == 0) return {};
  std::wstring result = def;
  while (!result.empty() && result.back() == L' ') result.pop_back();
  const std::wstring sec = TrimProfile(section), k = TrimProfile(key);
  std::string bytes;
  if (ReadFileBytes(file, bytes)) {
    ProfileText text = Parse(bytes, codePage_);
    size_t header = text.FindSection(sec);
    std::optional<std::wstring> value;
    if (header != std::wstring::npos && text.FindKey(header, k, &value) != std::wstring::npos && value)
      result = Unquote(*value);
  }
  if (result.size() > bufferSize - 1) result.resize(bufferSize - 1);
  return result;
}

std::wstring PortableProfile::GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                        const std::wstring& file) const {
  return GetString(section, key, def, file, 1024);
}

int PortableProfile::GetInt(const std::wstring& section, const std::wstring& key, int def,
                            const std::wstring& file) const {
  std::wstring text = GetString(section, key, L"", file, 30);
  return text.empty() ? def : ParseProfileInt(text);
}

bool PortableProfile::WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                                  const std::optional<std::wstring>& value, const std::wstring& file) {
  // Writing into the nameless section before the first header is refused:
  // no caller needs it and Windows' results for it are not documented.
  if (file.empty() || TrimProfile(section).empty()) return false;
  std::string bytes;
  const bool existed = ReadFileBytes(file, bytes);
  if (!existed && !key) return true;  // nothing to delete
  ProfileText text = Parse(bytes, codePage_);
  const std::wstring sec = TrimProfile(section);
  const size_t header = text.FindSection(sec);

  if (!key) {
    if (header == std::wstring::npos) return true;
    text.lines.erase(text.lines.begin() + static_cast<std::ptrdiff_t>(header),
                     text.lines.begin() + static_cast<std::ptrdiff_t>(text.SectionEnd(header)));
  } else if (!value) {
    if (header == std::wstring::npos) return true;
    size_t at = text.FindKey(header, TrimProfile(*key), nullptr);
    if (at == std::wstring::npos) return true;
    text.lines.erase(text.lines.begin() + static_cast<std::ptrdiff_t>(at));
  } else {
    const std::wstring entry = *key + L"=" + *value;
    if (header == std::wstring::npos) {
      if (!text.lines.empty() && text.lines.back().eol.empty()) text.lines.back().eol = L"\r\n";
      text.lines.push_back({L"[" + section + L"]", L"\r\n"});
      text.lines.push_back({entry, L"\r\n"});
    } else {
      size_t at = text.FindKey(header, TrimProfile(*key), nullptr);
      if (at != std::wstring::npos) {
        text.lines[at].text = entry;
      } else {
        // After the section's last non-blank line, before any blank lines
        // that separate it from the next section.
        size_t last = text.SectionEnd(header) - 1;
        while (last > header && TrimProfile(text.lines[last].text).empty()) --last;
        if (text.lines[last].eol.empty()) text.lines[last].eol = L"\r\n";
        text.lines.insert(text.lines.begin() + static_cast<std::ptrdiff_t>(last + 1), Line{entry, L"\r\n"});
      }
    }
  }
  return WriteFileBytes(file, Serialize(text, codePage_));
}

}  // namespace nx
