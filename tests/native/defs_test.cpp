#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "defs/def_actions.h"
#include "platform/text.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

class DefsTest : public ::testing::Test {
 protected:
  DefsTest() {
    dir_.Write(L"gKeyCode.def",
               "' key names\r\n\r\n13=Enter\r\n  65 = A   ' the letter\r\n116=F5\r\n66=B=ignored\r\n65=second A\r\n");
  }
  std::wstring Keys() const { return dir_.Path(L"gKeyCode.def"); }
  std::wstring Text(int32_t code) { return defs_.GetKeyCodeAsTextEx(Keys(), code); }

  test::TempFolder dir_;
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefActions defs_{page_, profile_};
};

TEST_F(DefsTest, KeyboardCodes) {
  const struct {
    int32_t code;
    const wchar_t* text;
  } cases[] = {
      {0, L""},
      {0x00010000, L"S+key(0)"},
      {0x41, L"A"},  // the first line of a code wins here
      {0x42, L"B"},
      {0x00030074, L"C+S+F5"},
      {0x00070074, L"C+A+S+F5"},
      {0x20020041, L"Narrix+C+A"},
      {0x200000FF, L"Narrix+key(255)"},
      {0x3FFF000D, L"Narrix+C+A+S+Enter"},
      {0x00000300, L"key(768)"},
  };
  for (const auto& c : cases) EXPECT_EQ(Text(c.code), c.text) << std::hex << c.code;
  EXPECT_EQ(defs_.GetKeyCodeAsText(dir_.Path(L"missing.def"), 65, 4), L"A+key(65)");
}

TEST_F(DefsTest, BrailleCodes) {
  EXPECT_EQ(Text(0x40000005), L"[H1+H4]");
  EXPECT_EQ(Text(0x40000000), L"[]");
  EXPECT_EQ(Text(0x7FFFFFFF).substr(0, 12), L"[H1+H2+H4+H8");
  dir_.Write(L"Focus 40.ini",
             "[KeyMap]\r\n1=Dot 1\r\n4=\"Dot 3\"\r\n4=second\r\n8\r\n100=Space\r\nCursorStatus=Cell %1 (%1)\r\n"
             "AuxStatus=Aux %1\r\n");
  defs_.InitBrailleKeyMap(dir_.Path(L"Focus 40.ini"));
  EXPECT_EQ(defs_.BrailleKeyName(3), L"H8");
  const struct {
    uint32_t code;
    const wchar_t* text;
  } cases[] = {{0x40000105u, L"[Dot 1+Dot 3+Space]"},
               {0xC0020002u, L"[Cell 3 (3)]"},
               {0xC0040000u, L"[Aux 1]"},
               {0xC0060009u, L"[Cell 10 (10)]"},
               {0xC0010001u, L"[]"}};
  for (const auto& c : cases) EXPECT_EQ(Text(static_cast<int32_t>(c.code)), c.text) << std::hex << c.code;

  int32_t code = static_cast<int32_t>(0xC0020002u);
  Text(0);
  defs_.GetKeyCodeAsTextEx(Keys(), code);
  EXPECT_EQ(code, 0x00020002);  // bits 30 and 31 cleared in the caller's copy

  // No profile, or one that cannot be read: every name is the default.
  std::filesystem::create_directory(dir_.Fs() / "folder.ini");
  for (const wchar_t* missing : {L"none.ini", L"folder.ini"}) {
    defs_.InitBrailleKeyMap(dir_.Path(missing));
    EXPECT_EQ(defs_.BrailleKeyName(0), L"H1");
    EXPECT_EQ(defs_.BrailleKeyName(30), L"H40000000");
    EXPECT_EQ(defs_.BrailleKeyName(31), L"");
  }
}

TEST_F(DefsTest, CodesTheModelNeverHolds) {
  EXPECT_THROW(Text(static_cast<int32_t>(0x80000041u)), std::overflow_error);
  EXPECT_THROW(Text(0x0000FFFF), std::overflow_error);
  EXPECT_THROW(Text(static_cast<int32_t>(0xC0027FFFu)), std::overflow_error);
  EXPECT_THROW(defs_.GetHotKeyString(256), std::out_of_range);
  EXPECT_THROW(defs_.GetHotKeyString(-1), std::out_of_range);
}

TEST_F(DefsTest, KeyNameTableAndItsEdits) {
  defs_.RenderKeyCodeDescrip2List(Keys());
  EXPECT_EQ(defs_.GetHotKeyString(65), L"second A");  // here later lines win
  EXPECT_EQ(defs_.GetHotKeyString(66), L"B");
  EXPECT_EQ(defs_.GetHotKeyString(14), L"");

  dir_.Write(L"bad.def", "13=Return\r\n300=Too big\r\n14=Never\r\n");
  defs_.RenderKeyCodeDescrip2List(dir_.Path(L"bad.def"));
  EXPECT_EQ(defs_.GetHotKeyString(13), L"Return");
  EXPECT_EQ(defs_.GetHotKeyString(14), L"");
  EXPECT_EQ(defs_.GetKeyCodeAsText(dir_.Path(L"bad.def"), 14, 0), L"key(14)");

  // An edited table is seen from a millisecond after the edit.
  auto later = [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); };
  EXPECT_EQ(Text(0x74), L"F5");
  dir_.Write(L"gKeyCode.def", "116=Function 5\r\n");
  later();
  EXPECT_EQ(Text(0x74), L"Function 5");
  dir_.Write(L"gKeyCode.def", "116=Function 6\r\n");  // same size: the time tells
  std::filesystem::last_write_time(
      dir_.Fs() / "gKeyCode.def",
      std::filesystem::last_write_time(dir_.Fs() / "gKeyCode.def") + std::chrono::seconds(1));
  later();
  EXPECT_EQ(Text(0x74), L"Function 6");
  std::filesystem::remove(dir_.Fs() / "gKeyCode.def");
  later();
  EXPECT_EQ(Text(0x74), L"key(116)");
}

TEST_F(DefsTest, CommandTable) {
  dir_.Write(L"gActions.def",
             "' commands\r\nSayLine;reads the current line\r\nBeep\r\n;no name\r\nSay\tAll ; reads\teverything ; "
             "ignored\r\nBeep;again ' remark\r\n");
  cNarrixActions list;
  list.AddItem(L"old", L"old");
  ASSERT_TRUE(defs_.InitNXactionsDef(dir_.Path(L"gActions.def"), &list));
  ASSERT_EQ(list.Count(), 4);
  EXPECT_EQ(list.Action(0), L"SayLine");
  EXPECT_EQ(list.Comment(0), L"reads the current line");
  EXPECT_EQ(list.Comment(1), L"Beep");
  EXPECT_EQ(list.Action(2), L"SayAll");
  EXPECT_EQ(list.Comment(2), L"readseverything");
  EXPECT_EQ(list.Comment(3), L"again");
  EXPECT_EQ(list.Action(4), L"");
  EXPECT_EQ(list.Action(-1), L"");
  EXPECT_FALSE(defs_.InitNXactionsDef(dir_.Path(L"none.def"), &list));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_FALSE(defs_.InitNXactionsDef(dir_.Path(L"gActions.def"), nullptr));
}

TEST_F(DefsTest, ServerAppendsTheTableNameToItsFolder) {
  cDefServer server(page_, profile_, dir_.Path() + L"\\");
  int32_t code = 0x00030074;
  EXPECT_EQ(server.FormatKeycodeEx(code), L"C+S+F5");
  EXPECT_EQ(server.FormatKeycode(13, 0x2000), L"Narrix+Enter");
}

}  // namespace
}  // namespace nx
