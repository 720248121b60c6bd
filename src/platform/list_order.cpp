#include "platform/list_order.h"

#include <vector>

#include "platform/text.h"

namespace nx {
namespace {

// Latin letters with a diacritic, upper case, and the letter they sort with.
wchar_t BaseLetter(wchar_t upper) {
  static const struct {
    wchar_t from, to;
  } kBases[] = {
      {0xC0, L'A'},  {0xC1, L'A'},  {0xC2, L'A'},  {0xC3, L'A'},  {0xC4, L'A'},  {0xC5, L'A'},  {0xC7, L'C'},
      {0xC8, L'E'},  {0xC9, L'E'},  {0xCA, L'E'},  {0xCB, L'E'},  {0xCC, L'I'},  {0xCD, L'I'},  {0xCE, L'I'},
      {0xCF, L'I'},  {0xD1, L'N'},  {0xD2, L'O'},  {0xD3, L'O'},  {0xD4, L'O'},  {0xD5, L'O'},  {0xD6, L'O'},
      {0xD9, L'U'},  {0xDA, L'U'},  {0xDB, L'U'},  {0xDC, L'U'},  {0xDD, L'Y'},  {0x102, L'A'}, {0x104, L'A'},
      {0x106, L'C'}, {0x10C, L'C'}, {0x10E, L'D'}, {0x110, L'D'}, {0x118, L'E'}, {0x11A, L'E'}, {0x139, L'L'},
      {0x13D, L'L'}, {0x141, L'L'}, {0x143, L'N'}, {0x147, L'N'}, {0x150, L'O'}, {0x154, L'R'}, {0x158, L'R'},
      {0x15A, L'S'}, {0x15E, L'S'}, {0x160, L'S'}, {0x162, L'T'}, {0x164, L'T'}, {0x16E, L'U'}, {0x170, L'U'},
      {0x178, L'Y'}, {0x179, L'Z'}, {0x17B, L'Z'}, {0x17D, L'Z'},
  };
  for (const auto& b : kBases)
    if (b.from == upper) return b.to;
  return upper;
}

bool IsLetter(wchar_t upper) { return (upper >= L'A' && upper <= L'Z') || upper >= 0xC0; }

// Primary weights: what tells names apart before accents and case do.
std::vector<unsigned> Weights(std::wstring_view name) {
  std::vector<unsigned> weights;
  weights.reserve(name.size());
  for (wchar_t c : name) {
    if (c == L'-' || c == L'\'') continue;
    const wchar_t upper = UpperChar(c);
    if (c >= L'0' && c <= L'9')
      weights.push_back(0x10000u + static_cast<unsigned>(c));
    else if (IsLetter(upper))
      weights.push_back(0x20000u + static_cast<unsigned>(BaseLetter(upper)));
    else
      weights.push_back(static_cast<unsigned>(c));
  }
  return weights;
}

std::wstring WithoutHyphens(std::wstring_view name) {
  std::wstring out;
  for (wchar_t c : name)
    if (c != L'-' && c != L'\'') out += UpperChar(c);
  return out;
}

}  // namespace

bool PortableListOrderLess(std::wstring_view a, std::wstring_view b) {
  const std::vector<unsigned> wa = Weights(a), wb = Weights(b);
  if (wa != wb) return wa < wb;
  // Equal letters: accents decide, then the name with fewer hyphens comes first.
  const std::wstring sa = WithoutHyphens(a), sb = WithoutHyphens(b);
  if (sa != sb) return sa < sb;
  if (a.size() != b.size()) return a.size() < b.size();
  return UpperCase(a) < UpperCase(b);
}

#ifndef _WIN32
bool ListOrderLess(std::wstring_view a, std::wstring_view b) { return PortableListOrderLess(a, b); }
#endif

}  // namespace nx
