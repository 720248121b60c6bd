// The system's ANSI code page (CP_ACP) through the Windows conversions.
#include <windows.h>

#include "platform/code_page.h"

namespace nx {
namespace {

class Win32CodePage final : public ICodePage {
 public:
  unsigned Id() const override { return GetACP(); }

  std::wstring ToWide(std::string_view bytes) const override {
    if (bytes.empty()) return {};
    const int n = MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
    std::wstring out(static_cast<size_t>(n > 0 ? n : 0), L'\0');
    if (n > 0) MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), out.data(), n);
    return out;
  }

  std::string ToAnsi(std::wstring_view text) const override {
    if (text.empty()) return {};
    const int n =
        WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(n > 0 ? n : 0), '\0');
    if (n > 0)
      WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(), n, nullptr, nullptr);
    return out;
  }

  // Without best fit, so that a letter the code page lacks ("č" on 1252)
  // is not quietly stored as a look-alike ("c").
  std::optional<size_t> FirstUnencodable(std::wstring_view text) const override {
    if (!Lossy(text)) return std::nullopt;
    for (size_t i = 0; i < text.size();) {
      const size_t length = IS_HIGH_SURROGATE(text[i]) && i + 1 < text.size() ? 2 : 1;
      if (Lossy(text.substr(i, length))) return i;
      i += length;
    }
    return std::nullopt;
  }

 private:
  static bool Lossy(std::wstring_view text) {
    if (text.empty()) return false;
    // A UTF-8 system holds every character; only a broken surrogate pair
    // cannot be written (and that code page takes no default character).
    if (GetACP() == CP_UTF8)
      return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                 nullptr, nullptr) <= 0;
    BOOL usedDefault = FALSE;
    const int n = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()), nullptr,
                                      0, nullptr, &usedDefault);
    return n <= 0 || usedDefault;
  }
};

}  // namespace

const ICodePage& SystemCodePage() {
  static const Win32CodePage page;
  return page;
}

}  // namespace nx
