#include <cstdint>
#include <unordered_map>
#include <vector>

#include "platform/folders.h"
#include "platform/profile.h"
#include "platform/text.h"

namespace nx {
namespace {

// NUL counts as a blank too: some tools pad profile files with NUL bytes.
bool IsProfileSpace(wchar_t c) { return c == L' ' || c == 0 || (c >= 0x09 && c <= 0x0D) || c == 0x1A; }

std::wstring_view TrimView(std::wstring_view s) {
  size_t b = 0, e = s.size();
  while (b < e && IsProfileSpace(s[b])) ++b;
  while (e > b && IsProfileSpace(s[e - 1])) --e;
  return s.substr(b, e - b);
}

std::wstring TrimProfile(std::wstring_view s) { return std::wstring(TrimView(s)); }

// The section name of a header line ("[name]"), trimmed; a view into `text`.
std::optional<std::wstring_view> SectionOf(std::wstring_view text) {
  const std::wstring_view t = TrimView(text);
  if (t.empty() || t[0] != L'[') return std::nullopt;
  size_t close = t.rfind(L']');
  if (close == std::wstring_view::npos || close == 0) return std::nullopt;
  return TrimView(t.substr(1, close - 1));
}

// The key of a key line and its value (none when the line has no "="),
// views into `text`. A line starting with ";" is a comment to people, but a
// lookup of a key that starts with ";" finds it all the same, as in Windows.
bool KeyOf(std::wstring_view text, std::wstring_view& key, std::optional<std::wstring_view>& value) {
  const std::wstring_view t = TrimView(text);
  if (t.empty()) return false;
  size_t eq = t.find(L'=');
  if (eq == std::wstring_view::npos) {
    key = t;
    value.reset();
  } else {
    key = TrimView(t.substr(0, eq));
    value = TrimView(t.substr(eq + 1));
  }
  return true;
}

// The first line break (CR or LF) at or after `from`, or npos; a plain
// loop, as find_first_of looks each character up in the set of two.
size_t FindLineBreak(std::wstring_view text, size_t from = 0) {
  for (size_t i = from; i < text.size(); ++i)
    if (text[i] == L'\r' || text[i] == L'\n') return i;
  return std::wstring_view::npos;
}

std::wstring DecodeUtf16(std::string_view bytes) {
  std::wstring out;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    out += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) | (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return out;
}

std::wstring Unquote(std::wstring_view value) {
  if (value.size() >= 2 && (value[0] == L'"' || value[0] == L'\'') && value.back() == value[0])
    return std::wstring(value.substr(1, value.size() - 2));
  return std::wstring(value);
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

// What a buffer of `bufferSize` characters holds of `text`.
std::wstring Truncated(std::wstring text, size_t bufferSize) {
  if (bufferSize == 0) return {};
  if (text.size() > bufferSize - 1) text.resize(bufferSize - 1);
  return text;
}

std::wstring DefaultValue(const std::wstring& def, size_t bufferSize) {
  std::wstring result = def;
  while (!result.empty() && result.back() == L' ') result.pop_back();
  return Truncated(std::move(result), bufferSize);
}

}  // namespace

std::wstring ProfileDocument::Decode(std::string_view bytes) const {
  switch (encoding_) {
    case Encoding::Utf8Bom:
      return Utf8ToWide(bytes);
    case Encoding::Utf16Bom:
      return DecodeUtf16(bytes);
    case Encoding::Ansi:
      break;
  }
  return codePage_->ToWide(bytes);
}

std::string ProfileDocument::Encode(const std::wstring& text) const {
  switch (encoding_) {
    case Encoding::Utf8Bom:
      return WideToUtf8(text);
    case Encoding::Utf16Bom: {
      std::string out;
      for (wchar_t c : text) {
        out += static_cast<char>(c & 0xFF);
        out += static_cast<char>((c >> 8) & 0xFF);
      }
      return out;
    }
    case Encoding::Ansi:
      break;
  }
  return codePage_->ToAnsi(text);
}

ProfileDocument ProfileDocument::Parse(const std::string& bytes, const ICodePage& codePage) {
  ProfileDocument file(codePage);
  std::string_view body = bytes;
  if (bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    file.encoding_ = Encoding::Utf8Bom;
    body.remove_prefix(3);
  } else if (bytes.size() >= 2 && bytes.compare(0, 2, "\xFF\xFE") == 0) {
    file.encoding_ = Encoding::Utf16Bom;
    body.remove_prefix(2);
  }
  file.text_ = std::make_shared<const std::wstring>(file.Decode(body));
  const std::wstring_view text = *file.text_;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t end = FindLineBreak(text, pos);
    Line line;
    line.start = pos;
    const size_t stop = end == std::wstring_view::npos ? text.size() : end;
    line.length = stop - pos;
    if (end == std::wstring_view::npos) {
      pos = text.size();
    } else {
      const bool crlf = text[end] == L'\r' && end + 1 < text.size() && text[end + 1] == L'\n';
      line.eol = crlf ? kCrLf : text[end] == L'\r' ? 3 : 2;
      pos = end + kLineEnds[line.eol].size();
    }
    file.lines_.push_back(std::move(line));
  }
  return file;
}

std::string ProfileDocument::Serialize() const {
  std::wstring text;
  text.reserve((text_ ? text_->size() : 0) + 64);
  for (const auto& line : lines_) {
    text += TextOf(line);
    text += kLineEnds[line.eol];
  }
  switch (encoding_) {
    case Encoding::Utf8Bom:
      return "\xEF\xBB\xBF" + Encode(text);
    case Encoding::Utf16Bom:
      return "\xFF\xFE" + Encode(text);
    case Encoding::Ansi:
      break;
  }
  return Encode(text);
}

// Index of the first header of `section`, or kNone; kLeading for the lines
// before the first header, found by the name "".
size_t ProfileDocument::FindSection(const std::wstring& section) const {
  if (section.empty() && !lines_.empty() && !SectionOf(TextOf(lines_[0]))) return kLeading;
  for (size_t i = 0; i < lines_.size(); ++i) {
    auto name = SectionOf(TextOf(lines_[i]));
    if (name && EqualsNoCase(*name, section)) return i;
  }
  return kNone;
}

// One past the last line of the section whose header is at `header`.
size_t ProfileDocument::SectionEnd(size_t header) const {
  size_t i = SectionStart(header);
  while (i < lines_.size() && !SectionOf(TextOf(lines_[i]))) ++i;
  return i;
}

size_t ProfileDocument::FindKey(size_t header, const std::wstring& key, std::optional<std::wstring>* value) const {
  const size_t end = SectionEnd(header);
  for (size_t i = SectionStart(header); i < end; ++i) {
    std::wstring_view k;
    std::optional<std::wstring_view> v;
    if (KeyOf(TextOf(lines_[i]), k, v) && EqualsNoCase(k, key)) {
      if (value) *value = v ? std::optional<std::wstring>(*v) : std::nullopt;
      return i;
    }
  }
  return kNone;
}

std::wstring ProfileDocument::GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                        size_t bufferSize) const {
  const size_t header = FindSection(TrimProfile(section));
  std::optional<std::wstring> value;
  if (header != kNone && FindKey(header, TrimProfile(key), &value) != kNone && value)
    return Truncated(Unquote(*value), bufferSize);
  return DefaultValue(def, bufferSize);
}

namespace {

// The hash of a key as the profile calls compare keys: letter case aside.
uint32_t NoCaseHash(std::wstring_view key) {
  uint32_t hash = 2166136261u;  // FNV-1a
  for (wchar_t c : key) hash = (hash ^ static_cast<uint32_t>(UpperChar(c))) * 16777619u;
  return hash;
}

}  // namespace

uint64_t* ProfileDocument::Section::Index::Find(std::wstring_view key, uint32_t hash) {
  const size_t mask = slots.size() - 1;
  for (size_t i = hash & mask;; i = (i + 1) & mask) {
    uint64_t& slot = slots[i];
    if (!slot) return &slot;
    if (static_cast<uint32_t>(slot >> 32) == hash && EqualsNoCase(entries[(slot & 0xFFFFFFFFu) - 1].key, key))
      return &slot;
  }
}

ProfileDocument::Section ProfileDocument::KeysOf(const std::wstring& section) const {
  auto index = std::make_shared<Section::Index>();
  index->text = text_;
  const size_t header = FindSection(TrimProfile(section));
  const size_t end = header == kNone ? 0 : SectionEnd(header);
  const size_t start = header == kNone ? 0 : SectionStart(header);
  size_t size = 16;
  while (size < 2 * (end - start)) size *= 2;
  index->slots.assign(size, 0);
  for (size_t i = start; i < end; ++i) {
    std::wstring_view line = TextOf(lines_[i]);
    if (lines_[i].changed) line = index->changedLines.emplace_back(line);
    std::wstring_view k;
    std::optional<std::wstring_view> v;
    if (!KeyOf(line, k, v)) continue;
    const uint32_t hash = NoCaseHash(k);
    uint64_t* slot = index->Find(k, hash);
    if (*slot) continue;  // the first line wins
    index->entries.push_back({k, v});
    *slot = (static_cast<uint64_t>(hash) << 32) | index->entries.size();
  }
  Section keys;
  keys.index_ = std::move(index);
  return keys;
}

std::wstring ProfileDocument::Section::GetString(const std::wstring& key, const std::wstring& def,
                                                 size_t bufferSize) const {
  if (index_) {
    const std::wstring_view k = TrimView(key);
    const uint64_t slot = *const_cast<Index&>(*index_).Find(k, NoCaseHash(k));
    const auto& value = slot ? index_->entries[(slot & 0xFFFFFFFFu) - 1].value : std::nullopt;
    if (value) return Truncated(Unquote(*value), bufferSize);
  }
  return DefaultValue(def, bufferSize);
}

bool ProfileDocument::Write(const std::wstring& section, const std::optional<std::wstring>& key,
                            const std::optional<std::wstring>& value) {
  // Writing into the nameless section before the first header is refused:
  // no caller needs it and Windows' results for it are not documented.
  const std::wstring sec = TrimProfile(section);
  if (sec.empty()) return false;
  const size_t header = FindSection(sec);
  if (!key) {
    if (header != kNone)
      lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(header),
                   lines_.begin() + static_cast<std::ptrdiff_t>(SectionEnd(header)));
    return true;
  }
  if (!value) {
    const size_t at = header == kNone ? kNone : FindKey(header, TrimProfile(*key), nullptr);
    if (at != kNone) lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
  }
  const std::wstring entry = *key + L"=" + *value;
  if (header == kNone) {
    if (!lines_.empty() && lines_.back().eol == 0) lines_.back().eol = kCrLf;
    lines_.push_back(NewLine(L"[" + section + L"]"));
    lines_.push_back(NewLine(entry));
    return true;
  }
  const size_t at = FindKey(header, TrimProfile(*key), nullptr);
  if (at != kNone) {
    lines_[at].changed = std::make_unique<std::wstring>(entry);
    return true;
  }
  // After the section's last non-blank line, before any blank lines that
  // separate it from the next section.
  size_t last = SectionEnd(header) - 1;
  while (last > header && TrimView(TextOf(lines_[last])).empty()) --last;
  if (lines_[last].eol == 0) lines_[last].eol = kCrLf;
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(last + 1), NewLine(entry));
  return true;
}

// Whether the line "key=value" reads back from the file as a key line of
// that key: no line break in it, nothing the encoding changes, not taken
// for a header, and no "=" inside the key.
bool ProfileDocument::ReadsBackAsKey(const std::wstring& key, const std::wstring& value) const {
  const std::wstring entry = key + L"=" + value;
  if (FindLineBreak(entry) != std::wstring::npos || SectionOf(entry) || Decode(Encode(entry)) != entry) return false;
  std::wstring_view k;
  std::optional<std::wstring_view> v;
  return KeyOf(entry, k, v) && k == TrimView(key);
}

bool ProfileDocument::WriteKeys(const std::wstring& section,
                                const std::vector<std::pair<std::wstring, std::wstring>>& entries) {
  const std::wstring sec = TrimProfile(section);
  if (sec.empty()) return false;
  bool plain = SectionOf(L"[" + section + L"]") == sec && Decode(Encode(section)) == section &&
               FindLineBreak(section) == std::wstring::npos;
  for (size_t i = 0; plain && i < entries.size(); ++i) plain = ReadsBackAsKey(entries[i].first, entries[i].second);
  if (!plain) {
    // Keys that would read back as something else change what the next
    // write finds: each write then works on the file as it would be read.
    for (const auto& [key, value] : entries) {
      Write(section, key, value);
      *this = Parse(Serialize(), *codePage_);
    }
    return true;
  }
  if (entries.empty()) return true;
  size_t header = FindSection(sec);
  if (header == kNone) {
    if (!lines_.empty() && lines_.back().eol == 0) lines_.back().eol = kCrLf;
    lines_.push_back(NewLine(L"[" + section + L"]"));
    header = lines_.size() - 1;
  }
  // Each key's first line in the section; a key that is not there yet goes
  // with the other new ones after the section's last non-blank line.
  const size_t end = SectionEnd(header);
  std::unordered_map<std::wstring, size_t> index;  // line, or kNew + position among the new ones
  for (size_t i = SectionStart(header); i < end; ++i) {
    std::wstring_view k;
    std::optional<std::wstring_view> v;
    if (KeyOf(TextOf(lines_[i]), k, v)) index.emplace(UpperCase(k), i);
  }
  constexpr size_t kNew = static_cast<size_t>(1) << (sizeof(size_t) * 8 - 2);
  std::vector<Line> added;
  for (const auto& [key, value] : entries) {
    const std::wstring entry = key + L"=" + value;
    const auto [at, isNew] = index.emplace(UpperCase(TrimView(key)), kNew + added.size());
    if (isNew)
      added.push_back(NewLine(entry));
    else if (at->second >= kNew)
      *added[at->second - kNew].changed = entry;
    else
      lines_[at->second].changed = std::make_unique<std::wstring>(entry);
  }
  if (added.empty()) return true;
  size_t last = end - 1;
  while (last > header && TrimView(TextOf(lines_[last])).empty()) --last;
  if (lines_[last].eol == 0) lines_[last].eol = kCrLf;
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(last + 1), std::make_move_iterator(added.begin()),
                std::make_move_iterator(added.end()));
  return true;
}

std::wstring PortableProfile::GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                        const std::wstring& file, size_t bufferSize) const {
  ProfileDocument document(codePage_);
  Load(file, document);  // a file that cannot be read gives the default
  return document.GetString(section, key, def, bufferSize);
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

bool PortableProfile::Load(const std::wstring& file, ProfileDocument& document, ReadFailure* failure) const {
  std::string bytes;
  ReadFailure why;
  if (!ReadFileBytes(file, bytes, &why)) {
    if (failure) *failure = why;
    if (!why.missing) return false;
    bytes.clear();
  }
  document = ProfileDocument::Parse(bytes, codePage_);
  return true;
}

bool PortableProfile::Save(const std::wstring& file, const ProfileDocument& document, std::wstring* reason) {
  return WriteFileBytes(file, document.Serialize(), reason);
}

bool PortableProfile::WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                                  const std::optional<std::wstring>& value, const std::wstring& file) {
  if (file.empty() || TrimProfile(section).empty()) return false;
  ProfileDocument document(codePage_);
  ReadFailure failure;
  if (!Load(file, document, &failure)) return false;     // never replace a file that could not be read
  if (failure.missing && (!key || !value)) return true;  // nothing to delete
  document.Write(section, key, value);
  return Save(file, document);
}

}  // namespace nx
