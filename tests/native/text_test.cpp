#include <gtest/gtest.h>

#include <algorithm>

#include "platform/code_page.h"
#include "platform/list_order.h"
#include "platform/text.h"

namespace nx {
namespace {

TEST(Text, CaseFoldingCoversCzechSlovakAndLatin1) {
  const struct {
    const wchar_t* lower;
    const wchar_t* upper;
  } cases[] = {
      {L"notepad", L"NOTEPAD"},
      {L"žluťoučký kůň úpěl ďábelské ódy", L"ŽLUŤOUČKÝ KŮŇ ÚPĚL ĎÁBELSKÉ ÓDY"},
      {L"ľúbostná báseň ôsmich ĺňov", L"ĽÚBOSTNÁ BÁSEŇ ÔSMICH ĹŇOV"},
      {L"àéîõü ÿ", L"ÀÉÎÕÜ Ÿ"},
      {L"łódź źdźbło", L"ŁÓDŹ ŹDŹBŁO"},
      {L"(narrix) 7zip_ver.1", L"(NARRIX) 7ZIP_VER.1"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(UpperCase(c.lower), c.upper) << WideToUtf8(c.lower);
    EXPECT_EQ(LowerCase(c.upper), c.lower) << WideToUtf8(c.upper);
    EXPECT_TRUE(EqualsNoCase(c.lower, c.upper));
  }
  EXPECT_EQ(UpperCase(L"ß×÷"), L"ß×÷");  // no single upper-case letter
}

// Only well-formed UTF-8 is taken strictly: the first byte of the first
// sequence that is not is found.
TEST(Text, StrictUtf8) {
  const struct {
    std::string text;
    std::optional<size_t> bad;
  } cases[] = {
      {"plain \xC5\x99 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF", std::nullopt},
      {"a\xFF-", 1},            // never a lead byte
      {"a\x80", 1},             // a continuation byte alone
      {"\xC3(", 0},             // a bad continuation
      {"ab\xE2\x82", 2},        // cut short
      {"\xC0\xAF", 0},          // overlong: "/"
      {"\xE0\x80\xAF", 0},      // overlong in three bytes
      {"\xF0\x8F\xBF\xBF", 0},  // overlong in four bytes
      {"x\xED\xA0\x80", 1},     // an encoded surrogate
      {"\xF4\x90\x80\x80", 0},  // above U+10FFFF
      {"\xF5\x80\x80\x80", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FirstInvalidUtf8(c.text), c.bad) << c.text;
    EXPECT_EQ(Utf8ToWideStrict(c.text).has_value(), !c.bad) << c.text;
  }
  EXPECT_EQ(Utf8ToWideStrict("\xC5\x99\xF0\x9F\x98\x80"), std::optional<std::wstring>(L"ř\U0001F600"));
  EXPECT_EQ(DescribeCharacter(L"kůň", 1), L"\"ů\" (U+016F)");
  EXPECT_EQ(WideToUtf8(L"Úprava € ✓"), "\xC3\x9Aprava \xE2\x82\xAC \xE2\x9C\x93");
}

TEST(Text, ReplaceAllIsOnePass) {
  EXPECT_EQ(ReplaceAll(L"Menu - %1", L"%1", L"%1%1"), L"Menu - %1%1");
  EXPECT_EQ(ReplaceAll(L"%1 and %1", L"%1", L"x"), L"x and x");
  EXPECT_EQ(TrimSpaces(L"  a b  "), L"a b");
  EXPECT_EQ(TrimSpaces(L"\ta\t"), L"\ta\t");
}

TEST(CodePage, BuiltinTablesMapEveryByteBothWays) {
  for (unsigned id : {1250u, 1252u}) {
    BuiltinCodePage page(id);
    std::string all;
    for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
    const std::wstring wide = page.ToWide(all);
    ASSERT_EQ(wide.size(), 256u);
    EXPECT_EQ(page.ToAnsi(wide), all) << id;
  }
  BuiltinCodePage cz(1250), west(1252);
  EXPECT_EQ(cz.ToWide("\xE8\xF8\x9A\x9E\xEC\xF9"), L"čřšžěů");
  EXPECT_EQ(cz.ToAnsi(L"Úprava nabídky"),
            "\xDA"
            "prava nab\xED"
            "dky");
  EXPECT_EQ(west.ToWide("\x80\xE9\x9F"), L"€éŸ");
  EXPECT_EQ(west.ToAnsi(L"ř"), "?");
}

// Runs of plain letters are widened many at a time: every length, with a
// letter of the upper half anywhere in it or nowhere, reads as byte by byte.
TEST(CodePage, LongTextsReadAsEveryByteAlone) {
  for (unsigned id : {1250u, 1252u}) {
    BuiltinCodePage page(id);
    for (size_t length = 0; length <= 40; ++length) {
      for (size_t upper = 0; upper <= length; ++upper) {  // at `length`: none
        std::string text;
        for (size_t i = 0; i < length; ++i) text += i == upper ? '\x8A' : static_cast<char>('a' + i % 26);
        std::wstring expected;
        for (char c : text) expected += page.ToWide(std::string(1, c));
        ASSERT_EQ(page.ToWide(text), expected) << id << " " << length << " " << upper;
      }
    }
  }
}

// Punctuation before digits before letters; case does not count, a shorter
// name first; the underscore is punctuation; a letter with a caron beside its
// base letter; the hyphen only breaks a tie.
TEST(ListOrder, SortsAsTheListBox) {
  std::vector<std::wstring> names = {L"winwordviewer", L"winword_ver.11.0", L"winword", L"Notepad", L"EXCEL2", L"excel",
                                     L"Dopis",         L"\u010cte\u010dka", L"co-ty",   L"cota",    L"co-op",  L"coop",
                                     L"acrobat",       L"9lives",           L"0calc",   L"(Narrix)"};
  std::sort(names.begin(), names.end(), PortableListOrderLess);
  std::wstring order;
  for (const auto& name : names) order += name + L" ";
  EXPECT_EQ(order,
            L"(Narrix) 0calc 9lives acrobat coop co-op cota co-ty \u010cte\u010dka Dopis excel EXCEL2 Notepad "
            L"winword winword_ver.11.0 winwordviewer ");
  EXPECT_FALSE(PortableListOrderLess(L"Excel", L"excel") || PortableListOrderLess(L"excel", L"Excel"));
}

}  // namespace
}  // namespace nx
