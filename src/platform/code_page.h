// The ANSI code page: the single-byte encoding of menu files, definition
// tables and profile files.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nx {

class ICodePage {
 public:
  virtual ~ICodePage() = default;
  virtual unsigned Id() const = 0;
  virtual std::wstring ToWide(std::string_view bytes) const = 0;
  // Characters the code page cannot hold become '?'.
  virtual std::string ToAnsi(std::wstring_view text) const = 0;
  // ToAnsi appended to `out`.
  virtual void AppendAnsi(std::wstring_view text, std::string& out) const { out += ToAnsi(text); }
  // The index of the first character of `text` that the code page cannot
  // hold exactly (it would be stored as "?" or as a look-alike); nothing
  // when the whole text can be stored.
  virtual std::optional<size_t> FirstUnencodable(std::wstring_view text) const = 0;
};

// Windows-1250 (Central European) and Windows-1252 (Western) without the
// operating system, byte for byte as Windows converts them; any other id
// is treated as 1252.
class BuiltinCodePage final : public ICodePage {
 public:
  explicit BuiltinCodePage(unsigned id = 1252);
  unsigned Id() const override { return id_; }
  std::wstring ToWide(std::string_view bytes) const override;
  std::string ToAnsi(std::wstring_view text) const override;
  void AppendAnsi(std::wstring_view text, std::string& out) const override;
  std::optional<size_t> FirstUnencodable(std::wstring_view text) const override;

 private:
  char Encode(wchar_t c) const;

  unsigned id_;
  const char16_t* high_;  // code points of bytes 0x80..0xFF
  wchar_t wide_[256];     // every byte's character, for decoding without a branch
};

// The code page of this system: CP_ACP on Windows, 1252 elsewhere. The
// object lives for the whole run.
const ICodePage& SystemCodePage();

}  // namespace nx
