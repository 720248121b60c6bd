#include <gtest/gtest.h>

#include <thread>

#include "defs/def_actions.h"
#include "temp_folder.h"

namespace nx {
namespace {

class DefsTest : public ::testing::Test {
 protected:
  DefsTest() {
    dir_.Write(L"gKeyCode.def",
               "' key names\r\n\r\n13=Enter\r\n  65 = A   ' the letter\r\n116=F5\r\n66=B=ignored\r\n65=second A\r\n");
    dir_.Write(L"Focus 40.ini",
               "[KeyMap]\r\n1=Dot 1\r\n4=\"Dot 3\"\r\n4=second\r\n8\r\n100=Space\r\nCursorStatus=Cell %1 (%1)\r\n"
               "AuxStatus=Aux %1\r\n");
    defs_.InitBrailleKeyMap(dir_.Path(L"Focus 40.ini"));
  }
  std::wstring Text(int32_t code) { return defs_.GetKeyCodeAsTextEx(dir_.Path(L"gKeyCode.def"), code); }

  test::TempFolder dir_;
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cDefActions defs_{page_, profile_};
};

// Keys are named by gKeyCode.def (the first line of a code wins, a ' starts
// a remark), braille buttons by the display profile (the first line of a
// button wins; status buttons are counted from 1).
TEST_F(DefsTest, HotKeyTexts) {
  const struct {
    uint32_t code;
    const wchar_t* text;
  } cases[] = {{0, L""},
               {0x00010000, L"S+key(0)"},
               {0x41, L"A"},
               {0x42, L"B"},
               {0x00070074, L"C+A+S+F5"},
               {0x20020041, L"Narrix+C+A"},
               {0x200000FF, L"Narrix+key(255)"},
               {0x3FFF000D, L"Narrix+C+A+S+Enter"},
               {0x00000300, L"key(768)"},
               {0x40000105u, L"[Dot 1+Dot 3+Space]"},
               {0x4000000Au, L"[H2+H8]"},
               {0xC0020002u, L"[Cell 3 (3)]"},
               {0xC0040000u, L"[Aux 1]"},
               {0xC0060009u, L"[Cell 10 (10)]"},
               {0xC0010001u, L"[]"}};
  for (const auto& c : cases) EXPECT_EQ(Text(static_cast<int32_t>(c.code)), c.text) << std::hex << c.code;
  // Without a profile, every button has its default name again.
  defs_.InitBrailleKeyMap(dir_.Path(L"none.ini"));
  EXPECT_EQ(Text(0x40000005), L"[H1+H4]");
  // An edited key table is seen from a millisecond after the edit, also when
  // only its time tells; without the table keys have no names.
  const auto table = dir_.Fs() / "gKeyCode.def";
  dir_.Write(L"gKeyCode.def", "116=Function 5\r\n");
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_EQ(Text(0x74), L"Function 5");
  dir_.Write(L"gKeyCode.def", "116=Function 6\r\n");  // same size
  std::filesystem::last_write_time(table, std::filesystem::last_write_time(table) + std::chrono::seconds(1));
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_EQ(Text(0x74), L"Function 6");
  std::filesystem::remove(table);
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_EQ(Text(0x74), L"key(116)");
}

// gActions.def: "command;comment" lines, blanks and tabs dropped, remarks
// and lines without a command skipped; a command without comment is named
// by itself.
TEST_F(DefsTest, CommandTable) {
  dir_.Write(L"gActions.def",
             "' commands\r\nSayLine;reads the current line\r\nBeep\r\n;no name\r\nSay\tAll ; reads\teverything ; "
             "ignored\r\nBeep;again ' remark\r\n");
  cNarrixActions list;
  list.AddItem(L"old", L"old");
  ASSERT_TRUE(defs_.InitNXactionsDef(dir_.Path(L"gActions.def"), &list));
  std::wstring read;
  for (int i = 0; i < list.Count(); ++i) read += list.Action(i) + L"=" + list.Comment(i) + L";";
  EXPECT_EQ(read, L"SayLine=reads the current line;Beep=Beep;SayAll=readseverything;Beep=again;");
  EXPECT_FALSE(defs_.InitNXactionsDef(dir_.Path(L"none.def"), &list));
  EXPECT_EQ(list.Count(), 0);
}

}  // namespace
}  // namespace nx
