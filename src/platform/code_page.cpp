#include "platform/code_page.h"

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define NX_WIDEN_SSE2 1
#endif

namespace nx {
namespace {

// Bytes 0x80..0xFF. Bytes that the code page leaves undefined map to the
// same code point, as MultiByteToWideChar does.
const char16_t kCp1252[128] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152,
    0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122,
    0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178, 0x00A0, 0x00A1, 0x00A2, 0x00A3, 0x00A4, 0x00A5, 0x00A6,
    0x00A7, 0x00A8, 0x00A9, 0x00AA, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x00AF, 0x00B0, 0x00B1, 0x00B2, 0x00B3,
    0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x00B9, 0x00BA, 0x00BB, 0x00BC, 0x00BD, 0x00BE, 0x00BF, 0x00C0,
    0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C6, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD,
    0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D7, 0x00D8, 0x00D9, 0x00DA,
    0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00DF, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5, 0x00E6, 0x00E7,
    0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00ED, 0x00EE, 0x00EF, 0x00F0, 0x00F1, 0x00F2, 0x00F3, 0x00F4,
    0x00F5, 0x00F6, 0x00F7, 0x00F8, 0x00F9, 0x00FA, 0x00FB, 0x00FC, 0x00FD, 0x00FE, 0x00FF};

const char16_t kCp1250[128] = {
    0x20AC, 0x0081, 0x201A, 0x0083, 0x201E, 0x2026, 0x2020, 0x2021, 0x0088, 0x2030, 0x0160, 0x2039, 0x015A,
    0x0164, 0x017D, 0x0179, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6,
    0x00A7, 0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B, 0x00B0, 0x00B1, 0x02DB, 0x0142,
    0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C, 0x0154,
    0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD,
    0x00CE, 0x010E, 0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA,
    0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4,
    0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9};

#ifdef NX_WIDEN_SSE2
// Bytes below 0x80 are the same characters in every code page this program
// reads, so a run of them is only widened, 16 at a time; false when the 16
// bytes hold any other byte.
static_assert(sizeof(wchar_t) == 2 || sizeof(wchar_t) == 4, "wchar_t of 2 or 4 bytes");
bool WidenAscii16(const unsigned char* from, wchar_t* to) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  if (_mm_movemask_epi8(bytes) != 0) return false;
  const __m128i zero = _mm_setzero_si128();
  const __m128i low = _mm_unpacklo_epi8(bytes, zero), high = _mm_unpackhi_epi8(bytes, zero);
  auto* out = reinterpret_cast<__m128i*>(to);
  if constexpr (sizeof(wchar_t) == 2) {
    _mm_storeu_si128(out, low);
    _mm_storeu_si128(out + 1, high);
  } else {
    _mm_storeu_si128(out, _mm_unpacklo_epi16(low, zero));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi16(low, zero));
    _mm_storeu_si128(out + 2, _mm_unpacklo_epi16(high, zero));
    _mm_storeu_si128(out + 3, _mm_unpackhi_epi16(high, zero));
  }
  return true;
}
#endif

}  // namespace

BuiltinCodePage::BuiltinCodePage(unsigned id) : id_(id == 1250 ? 1250 : 1252), high_(id == 1250 ? kCp1250 : kCp1252) {
  for (unsigned b = 0; b < 256; ++b) wide_[b] = static_cast<wchar_t>(b < 0x80 ? b : high_[b - 0x80]);
}

std::wstring BuiltinCodePage::ToWide(std::string_view bytes) const {
  const size_t n = bytes.size();
  std::wstring out(n, L'\0');
  wchar_t* to = out.data();
  const auto* from = reinterpret_cast<const unsigned char*>(bytes.data());
  size_t i = 0;
#ifdef NX_WIDEN_SSE2
  for (; i + 16 <= n; i += 16)
    if (!WidenAscii16(from + i, to + i))
      for (size_t j = i; j < i + 16; ++j) to[j] = wide_[from[j]];
  // The last bytes once more as the last 16, when there are that many.
  if (i < n && n >= 16 && WidenAscii16(from + n - 16, to + n - 16)) i = n;
#endif
  for (; i < n; ++i) to[i] = wide_[from[i]];
  return out;
}

char BuiltinCodePage::Encode(wchar_t c) const {
  if (static_cast<unsigned>(c) < 0x80) return static_cast<char>(c);
  for (int i = 0; i < 128; ++i)
    if (static_cast<unsigned>(high_[i]) == static_cast<unsigned>(c)) return static_cast<char>(0x80 + i);
  return '?';
}

std::string BuiltinCodePage::ToAnsi(std::wstring_view text) const {
  std::string out;
  AppendAnsi(text, out);
  return out;
}

void BuiltinCodePage::AppendAnsi(std::wstring_view text, std::string& out) const {
  const size_t at = out.size();
  out.resize(at + text.size());
  for (size_t i = 0; i < text.size(); ++i) out[at + i] = Encode(text[i]);
}

std::optional<size_t> BuiltinCodePage::FirstUnencodable(std::wstring_view text) const {
  for (size_t i = 0; i < text.size(); ++i)
    if (static_cast<unsigned>(text[i]) >= 0x80 && Encode(text[i]) == '?') return i;
  return std::nullopt;
}

#ifndef _WIN32
const ICodePage& SystemCodePage() {
  static const BuiltinCodePage page(1252);
  return page;
}
#endif

}  // namespace nx
