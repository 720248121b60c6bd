// Profile (initialisation) files: the screen reader's setting.ini and the
// braille display profiles. Windows reads them with GetPrivateProfile*A;
// PortableProfile gives the same answers without Windows, and
// ProfileDocument holds a whole file for callers that look up or change many
// keys at once: read once, written back once.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/code_page.h"
#include "platform/folders.h"

namespace nx {

// A profile file as lines, with the rules of Windows' profile calls. A
// change alters only the lines it affects, keeps every other character, and
// ends new lines with CR LF. Files with a UTF-8 or UTF-16 byte-order mark
// are read and written in that encoding; all others in the code page.
class ProfileDocument {
 public:
  // An empty document: what a missing file reads as.
  explicit ProfileDocument(const ICodePage& codePage) : codePage_(&codePage) {}
  static ProfileDocument Parse(const std::string& bytes, const ICodePage& codePage);
  std::string Serialize() const;

  // GetPrivateProfileStringA's answer with a buffer of `bufferSize`
  // characters: the value (at most bufferSize - 1 characters), or `def`
  // without trailing blanks when the section or key is missing.
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         size_t bufferSize = 1024) const;

  // The keys of one section, for many lookups after one pass over the file.
  class Section {
   public:
    // As ProfileDocument::GetString in this section.
    std::wstring GetString(const std::wstring& key, const std::wstring& def, size_t bufferSize = 1024) const;

   private:
    friend class ProfileDocument;
    // Each key's first line: its key and value (views into the text of the
    // file or into copies of changed lines), in the section's order, found
    // through a small table of hashes (open addressing, at most half full:
    // the hash of the key in the high half of a slot, the entry's position
    // plus one in the low half, 0 for a free slot). Keys are compared as the
    // profile calls compare them, letter case aside.
    struct Entry {
      std::wstring_view key;
      std::optional<std::wstring_view> value;  // none: the line has no "="
    };
    struct Index {
      std::shared_ptr<const std::wstring> text;
      std::deque<std::wstring> changedLines;
      std::vector<Entry> entries;
      std::vector<uint64_t> slots;
      // The slot of `key`, or the free slot where it would go.
      uint64_t* Find(std::wstring_view key, uint32_t hash);
    };
    std::shared_ptr<const Index> index_;
  };
  Section KeysOf(const std::wstring& section) const;

  // Changes like WritePrivateProfileStringA: no value deletes the key, no
  // key deletes the whole section. False, changing nothing, for a section
  // without a name.
  bool Write(const std::wstring& section, const std::optional<std::wstring>& key,
             const std::optional<std::wstring>& value);
  // Writes many keys of one section in one pass, leaving the document as
  // writing them one by one in this order, and reading the file again after
  // each, would.
  bool WriteKeys(const std::wstring& section, const std::vector<std::pair<std::wstring, std::wstring>>& entries);

 private:
  enum class Encoding { Ansi, Utf8Bom, Utf16Bom };
  // A line as read (a part of the text of the file) or as changed.
  struct Line {
    size_t start = 0, length = 0;           // in the text of the file, unless changed
    uint8_t eol = 0;                        // kLineEnds: "", "\r\n", "\n" or "\r"
    std::unique_ptr<std::wstring> changed;  // the line's text once written
    Line() = default;
    Line(const Line& o) : start(o.start), length(o.length), eol(o.eol) {
      if (o.changed) changed = std::make_unique<std::wstring>(*o.changed);
    }
    Line(Line&&) = default;
    Line& operator=(Line o) {
      start = o.start;
      length = o.length;
      eol = o.eol;
      changed = std::move(o.changed);
      return *this;
    }
  };
  static constexpr std::wstring_view kLineEnds[] = {L"", L"\r\n", L"\n", L"\r"};
  static constexpr uint8_t kCrLf = 1;
  static Line NewLine(std::wstring text) {
    Line line;
    line.eol = kCrLf;
    line.changed = std::make_unique<std::wstring>(std::move(text));
    return line;
  }
  std::wstring_view TextOf(const Line& line) const {
    return line.changed ? std::wstring_view(*line.changed) : std::wstring_view(*text_).substr(line.start, line.length);
  }
  static constexpr size_t kNone = static_cast<size_t>(-1);
  // The lines before the first header form a section without a name.
  static constexpr size_t kLeading = static_cast<size_t>(-2);

  std::wstring Decode(std::string_view bytes) const;
  std::string Encode(const std::wstring& text) const;
  size_t FindSection(const std::wstring& section) const;
  size_t SectionStart(size_t header) const { return header == kLeading ? 0 : header + 1; }
  size_t SectionEnd(size_t header) const;
  size_t FindKey(size_t header, const std::wstring& key, std::optional<std::wstring>* value) const;
  bool ReadsBackAsKey(const std::wstring& key, const std::wstring& value) const;

  const ICodePage* codePage_;
  Encoding encoding_ = Encoding::Ansi;
  std::shared_ptr<const std::wstring> text_;  // the file as read, shared by copies of the document
  std::vector<Line> lines_;
};

class IProfile {
 public:
  virtual ~IProfile() = default;
  // Reads like GetPrivateProfileStringA with a buffer of 1024 characters:
  // the value (at most 1023 characters), or `def` without trailing blanks
  // when the file, section or key is missing.
  virtual std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                                 const std::wstring& file) const = 0;
  // Reads like GetPrivateProfileIntA.
  virtual int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const = 0;
  // The whole file as a document; a missing file reads as an empty one.
  // False when the file is there but cannot be read; `failure` (optional)
  // then says why.
  virtual bool Load(const std::wstring& file, ProfileDocument& document, ReadFailure* failure = nullptr) const = 0;
  // Replaces the file with the document in one piece; false with the
  // system's words in `reason` (optional), the old file left as it was.
  virtual bool Save(const std::wstring& file, const ProfileDocument& document, std::wstring* reason = nullptr) = 0;
};

// The profile rules of Windows, implemented on the standard library.
class PortableProfile final : public IProfile {
 public:
  explicit PortableProfile(const ICodePage& codePage) : codePage_(codePage) {}

  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file) const override;
  int GetInt(const std::wstring& section, const std::wstring& key, int def, const std::wstring& file) const override;
  bool Load(const std::wstring& file, ProfileDocument& document, ReadFailure* failure = nullptr) const override;
  bool Save(const std::wstring& file, const ProfileDocument& document, std::wstring* reason = nullptr) override;

  // GetString with a buffer of `bufferSize` characters (the result holds at
  // most bufferSize - 1 of them).
  std::wstring GetString(const std::wstring& section, const std::wstring& key, const std::wstring& def,
                         const std::wstring& file, size_t bufferSize) const;
  // Writes like WritePrivateProfileStringA, reading and writing the whole
  // file once. False when the file cannot be read or written or the section
  // name is empty; the file is then left as it was.
  bool WriteString(const std::wstring& section, const std::optional<std::wstring>& key,
                   const std::optional<std::wstring>& value, const std::wstring& file);

 private:
  const ICodePage& codePage_;
};

}  // namespace nx
