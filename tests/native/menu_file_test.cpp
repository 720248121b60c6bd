#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "defs/def_text.h"
#include "menu/menu_file.h"
#include "platform/text.h"
#include "refusing_profile.h"
#include "menu_records.h"
#include "temp_folder.h"

namespace nx {
namespace {

using namespace std::string_literals;

// "caption[id]" for every item below `item`, then ":" and its hot key in
// hexadecimal when it has one, "!" when it is discarded, and its children in
// brackets.
std::string Shape(const cMenuItem& item) {
  std::string out;
  for (const auto& child : item.SubItems) {
    out += WideToUtf8(child->Caption) + "[" + std::to_string(child->MenuId) + "]";
    if (child->HotKey) out += ":" + WideToUtf8(HexText(static_cast<uint32_t>(child->HotKey)));
    if (child->Discard) out += "!";
    if (child->SubItems.Count()) out += "(" + Shape(*child) + ")";
  }
  return out;
}

class MenuFileTest : public ::testing::Test {
 protected:
  MenuReadResult Parse(const std::string& bytes) {
    int32_t counter = 256;
    return ParseMenu(
        bytes, page_, [](const std::wstring&) { return 0x12A; }, counter);
  }
  std::string Serialize(const cMenuItem& root) {
    return SerializeMenu(root, page_,
                         [this](const std::wstring& action, uint32_t code) {
                           braille_ += WideToUtf8(action) + "=" + std::to_string(code) + ";";
                         })
        .value_or("FAILED");
  }
  BuiltinCodePage page_{1252};
  std::string braille_;
};

// Each row: a record as a file holds it, and as it is written back when
// that differs. A braille button takes its code from the display profile
// (here 0x12A, for every action) and is written without the Discard bit.
TEST_F(MenuFileTest, RecordsReadAndWrittenBack) {
  EXPECT_EQ(Record(1, 0x123, "Open", "open.vbs"), "\x01\x00\x23\x01\x00\x00\x04\x00Open\x08\x00open.vbs"s);
  const std::pair<std::string, std::string> rows[] = {
      {Record(0, 0, "File"), ""},
      {Record(1, 0x80020041u, "Open", "open.vbs"), ""},  // C+A, discarded
      {Record(2, 0xC0000005u, "Beep", "Beep"), Record(2, 0x4000012Au, "Beep", "Beep")},
      {Record(2, 0x40000005u, "Button", "Say"), Record(2, 0x4000012Au, "Button", "Say")},
      {Record(1, 0x20000074u, "Close", "Quit"), ""},  // Narrix+F5
      {Record(0, 0, "Help"), ""}};
  std::string bytes, written;
  for (const auto& [record, back] : rows) bytes += record, written += back.empty() ? record : back;
  const auto read = Parse(bytes);
  EXPECT_TRUE(read.complete);
  EXPECT_EQ(Shape(*read.root),
            "File[256](Open[257]:20041!(Beep[258]:4000012A!Button[259]:4000012A)Close[260]:20000074)Help[261]");
  EXPECT_EQ(Serialize(*read.root), written);
  EXPECT_EQ(braille_, "Beep=298;Say=298;");
}

// What a file's levels make of its items, and whether it reads completely.
TEST_F(MenuFileTest, LevelRules) {
  const std::tuple<std::vector<int16_t>, std::string, bool> cases[] = {
      {{0, 0, 0}, "a[256]b[257]c[258]", true},
      {{0, 2}, "a[256](b[257])", true},
      {{5, 5}, "a[256]b[257]", true},
      {{0, 1, 2, 0}, "a[256](b[257](c[258]))d[259]", true},
      // A jump down of more than one level is one level deeper, but the way
      // back up counts every level: here f would have to go above the root.
      {{0, 1, 2, 1, 3, 0}, "a[256](b[257](c[258])d[259](e[260]))", false},
      {{0, 1, -1}, "a[256](b[257])", false},
      {{-1}, "", false},
      {{0, -32768}, "a[256]", false},
      {{0, 32767, 32767, 0}, "a[256](b[257]c[258])", false},
      {{0, 32767, 32767, 32766}, "a[256](b[257]c[258])d[259]", true},
  };
  for (const auto& [levels, shape, complete] : cases) {
    std::string bytes;
    char caption = 'a';
    for (int16_t level : levels) bytes += Record(level, 0, std::string(1, caption++));
    const auto read = Parse(bytes);
    EXPECT_EQ(Shape(*read.root), shape) << bytes.size();
    EXPECT_EQ(read.complete, complete) << shape;
  }
  // A file cut anywhere but between records, or with a length that points
  // past its end, does not read completely.
  const std::string whole = Record(0, 0, "File", "") + Record(1, 0x123, "Open", "open.vbs");
  for (size_t cut = 0; cut <= whole.size(); ++cut)
    EXPECT_EQ(Parse(whole.substr(0, cut)).complete, cut == 0 || cut == 14 || cut == whole.size()) << cut;
  EXPECT_FALSE(Parse(std::string(6, '\0') + "\xFF\xFF" + "abc").complete);
}

// What the file cannot hold is refused with the reason, never written as
// "?" or cut short; what fits reads back as it was written. (A menu too deep
// for the file is refused in nxmenu's tests.)
TEST_F(MenuFileTest, WhatTheFileCannotHold) {
  const std::tuple<std::wstring, std::wstring, std::wstring> cases[] = {
      // the reason, or empty: it fits
      {std::wstring(65535, L'x'), L"", L""},
      {std::wstring(65536, L'x'), L"",
       L"The name of the item \"" + std::wstring(60, L'x') + L"...\" is longer than 65,535 bytes."},
      {L"Run", std::wstring(65536, L'x'), L"The command of the item \"Run\" is longer than 65,535 bytes."},
      {L"Žlutý kůň", L"",
       L"The name of the item \"Žlutý kůň\" contains the character \"ů\" (U+016F), which the code page of menu "
       L"files cannot hold."},
      {L"Smile", L"Say \U0001F600",
       L"The command of the item \"Smile\" contains the character \"\U0001F600\" (U+1F600), which the code page of "
       L"menu files cannot hold."},
  };
  for (const auto& [caption, action, why] : cases) {
    auto root = cMenuItem::New();
    auto item = root->SubItems.Add(1, root.get(), cMenuItem::New());
    item->Caption = caption, item->Action = action;
    std::wstring reason;
    const auto bytes = SerializeMenu(*root, page_, nullptr, &reason);
    EXPECT_EQ(reason, why);
    EXPECT_EQ(bytes && Serialize(*Parse(*bytes).root) == *bytes, why.empty()) << WideToUtf8(why);
  }
}

// The clipboard and the wizard may keep items of a large menu that is
// closed: they stay whole, with their own children, whichever other items
// of the same read are gone, and another read takes the memory given back.
TEST_F(MenuFileTest, ItemsKeptOutliveTheirTree) {
  std::string bytes;
  for (int i = 0; i < 3000; ++i) bytes += Record(i % 2 ? 1 : 0, 0, "Item " + std::to_string(i), "act");
  auto kept = cMenuItem::New();
  {
    const auto read = Parse(bytes);
    ASSERT_EQ(read.root->SubItems.Count(), 1500);
    for (int position : {1, 700, 1500}) kept->SubItems.Add(1, kept.get(), read.root->SubItems.item(position));
    kept->SubItems.Add(1, kept.get(), read.root->SubItems.item(1200)->SubItems.item(1));  // a child alone
  }
  EXPECT_EQ(Parse(bytes).root->SubItems.Count(), 1500);
  EXPECT_EQ(Shape(*kept),
            "Item 0[256](Item 1[257])Item 1398[1654](Item 1399[1655])Item 2998[3254](Item 2999[3255])Item 2399[2655]");
}

class MenuFilesOnDiskTest : public ::testing::Test {
 protected:
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  test::TempFolder dir_;
};

// Nothing is lost on a failed save: the file that failed is named with the
// system's reason; a profile that is there but cannot be read stops the
// save before anything is written. The braille codes go into section
// Actions of the display's profile, one per action (the later item's code
// wins), and are read from there.
TEST_F(MenuFilesOnDiskTest, SavesAndFailedSaves) {
  test::RefusingProfile profile(page_, L"Refused");
  cMenuFile defs(page_, profile);
  bool complete = false;  // a menu not made yet is empty, not damaged
  EXPECT_EQ(defs.InitCommandDef(dir_.Path(L"none.mnu"), L"", &complete), nullptr);
  EXPECT_TRUE(complete);
  auto root = cMenuItem::New();
  for (const wchar_t* action : {L"Before", L"Refused", L"After"}) {
    auto item = root->SubItems.Add(1, root.get(), cMenuItem::New());
    item->Action = action;
    item->HotKey = 0x40000001;
  }
  auto plain = cMenuItem::New(), empty = cMenuItem::New();
  plain->SubItems.Add(1, plain.get(), cMenuItem::New())->HotKey = 0x40000001;
  const std::string oldMenu = "old menu", oldProfile = "[KeyMap]\r\n1=Dot 1\r\n\r\n[Actions]\r\nBefore=2\r\n";
  std::filesystem::create_directory(dir_.Fs() / "folder");
  const std::wstring menu = dir_.Path(L"Command.mnu"), ini = dir_.Path(L"Focus 40.ini");
  const std::wstring noFolder = dir_.Path(L"no folder\\x"), folder = dir_.Path(L"folder");
  const std::wstring readOnly = dir_.Path(L"read-only.mnu");
  dir_.Write(L"read-only.mnu", oldMenu);
  std::filesystem::permissions(dir_.Fs() / "read-only.mnu", std::filesystem::perms(0444));
  const struct {
    std::wstring menu, ini, unreadable;
    const cMenuItem& root;
    std::wstring failed, reason;
    bool menuWritten, profileWritten;
  } cases[] = {
      // No braille code: no profile is made.
      {menu, dir_.Path(L"new.ini"), L"", *empty, L"", L"", true, false},
      {noFolder, ini, L"", *root, noFolder, L"No such file or directory", false, false},
      {folder, ini, L"", *root, folder, L"Is a directory", false, false},
      {readOnly, ini, L"", *root, readOnly, L"Permission denied", false, false},
      {menu, ini, ini, *root, ini, L"Input/output error", false, false},
      {menu, folder, L"", *root, folder, L"Is a directory", false, false},
      {menu, noFolder, L"", *plain, noFolder, L"No such file or directory", true, false},
      // Every code at once, or none: a profile that cannot take one keeps all.
      {menu, ini, L"", *root, ini, L"Permission denied", true, false},
  };
  for (const auto& c : cases) {
    dir_.Write(L"Command.mnu", oldMenu);
    dir_.Write(L"Focus 40.ini", oldProfile);
    profile.unreadable = c.unreadable;
    WriteFailure failed;
    EXPECT_EQ(defs.FlushCommand2Def(c.menu, c.ini, c.root, &failed), c.failed.empty());
    EXPECT_EQ(failed.file, c.failed);
    EXPECT_EQ(failed.reason, c.reason);
    EXPECT_EQ(failed.menuWritten, !c.failed.empty() && c.menuWritten);
    EXPECT_EQ(dir_.Read(L"Command.mnu") != oldMenu, c.menuWritten) << WideToUtf8(c.failed);
    EXPECT_EQ(dir_.Read(L"Focus 40.ini") != oldProfile, c.profileWritten) << WideToUtf8(c.failed);
  }
  root->SubItems.item(2)->Action = L"Other";
  root->SubItems.item(3)->Action = L"Before";
  root->SubItems.item(3)->HotKey = 0x4000000F;
  ASSERT_TRUE(defs.FlushCommand2Def(menu, ini, *root));
  EXPECT_EQ(dir_.Read(L"Focus 40.ini"), "[KeyMap]\r\n1=Dot 1\r\n\r\n[Actions]\r\nBefore=F\r\nOther=1\r\n");
  // Without the profile only the braille bit stays.
  const std::string withProfile = Shape(*defs.InitCommandDef(menu, ini));
  EXPECT_EQ(withProfile + " " + Shape(*defs.InitCommandDef(menu, L"")),
            "[0]:4000000F[1]:40000001[2]:4000000F [3]:40000000[4]:40000000[5]:40000000");
  // No new file is left behind by any of it.
  size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(dir_.Fs())) files += entry.is_regular_file();
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(dir_.Read(L"read-only.mnu"), oldMenu);
}

// Two saves of different menus to one file at once, many times, past links
// planted where the new file goes (the fixed name of old, and the names this
// process tries first): a reader finds the old menu or one whole new one,
// never parts of both; no link is written through, and the file keeps its
// permissions.
TEST_F(MenuFilesOnDiskTest, SavesReplaceTheFileInOnePiece) {
  dir_.Write(L"victim", "not the menu's");
  dir_.Write(L"Command.mnu", "old");
  std::filesystem::permissions(dir_.Fs() / "Command.mnu", std::filesystem::perms(0640));
  const std::string menu = (dir_.Fs() / "Command.mnu").string();
  std::vector<std::string> links{menu + ".new~"};
  for (int i = 0; i <= 10; ++i) links.push_back(menu + "." + std::to_string(getpid()) + "-" + std::to_string(i) + "~");
  for (const auto& link : links)  // the last one to a file not there
    std::filesystem::create_symlink(dir_.Fs() / (link == links.back() ? "made through a link" : "victim"), link);
  std::string whole[2];
  std::atomic<int> running{2};
  std::vector<std::thread> writers;
  for (int items : {5000, 40}) {
    auto root = cMenuItem::New();
    for (int i = 0; i < items; ++i) root->SubItems.Add(1, root.get(), cMenuItem::New())->Caption = L"item";
    whole[writers.size()] = *SerializeMenu(*root, page_, nullptr);
    writers.emplace_back([this, root, &running] {
      cMenuFile defs(page_, profile_);
      for (int i = 0; i < 100; ++i) EXPECT_TRUE(defs.FlushCommand2Def(dir_.Path(L"Command.mnu"), L"", *root));
      --running;
    });
  }
  for (bool done = false; !done;) {  // the last read after both are done
    done = running == 0;
    const std::string read = dir_.Read(L"Command.mnu");
    EXPECT_TRUE(read == whole[0] || read == whole[1] || (read == "old" && !done)) << read.size();
  }
  for (auto& writer : writers) writer.join();
  EXPECT_EQ(std::filesystem::status(dir_.Fs() / "Command.mnu").permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(dir_.Read(L"victim"), "not the menu's");
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "made through a link"));
  for (const auto& link : links) EXPECT_TRUE(std::filesystem::is_symlink(link)) << link;
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_.Fs()), {}), 14);  // no new file left behind
}

}  // namespace
}  // namespace nx
