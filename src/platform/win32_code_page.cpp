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
};

}  // namespace

const ICodePage& SystemCodePage() {
  static const Win32CodePage page;
  return page;
}

}  // namespace nx
