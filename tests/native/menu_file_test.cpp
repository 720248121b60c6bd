#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "defs/hot_key.h"
#include "defs/def_actions.h"
#include "menu/menu_file.h"
#include "platform/profile.h"
#include "platform/text.h"
#include "platform/string_table.h"
#include "refusing_profile.h"
#include "menu_records.h"
#include "temp_folder.h"

namespace nx {
namespace {

using namespace std::string_literals;

// "caption[id](children)" for every item below `item`.
std::string Shape(const cMenuItem& item) {
  std::string out;
  for (const auto& child : item.SubItems) {
    out += std::string(child->Caption.begin(), child->Caption.end()) + "[" + std::to_string(child->MenuId) + "]";
    if (child->SubItems.Count()) out += "(" + Shape(*child) + ")";
  }
  return out;
}

class MenuFileTest : public ::testing::Test {
 protected:
  MenuReadResult Parse(const std::string& bytes, int32_t base = 256) {
    counter_ = base;
    return ParseMenu(
        bytes, page_, [](const std::wstring&) { return 0x12A; }, counter_);
  }
  std::string Serialize(const cMenuItem& root) {
    return SerializeMenu(root, page_,
                         [this](const std::wstring& action, uint32_t code) {
                           braille_ += std::string(action.begin(), action.end()) + "=" + std::to_string(code) + ";";
                         })
        .value_or("FAILED");
  }
  BuiltinCodePage page_{1252};
  int32_t counter_ = 0;
  std::string braille_;
};

TEST_F(MenuFileTest, TheTwoItemExampleByteForByte) {
  auto root = cMenuItem::New();
  auto file = root->SubItems.Add(1, root.get(), cMenuItem::New());
  file->Caption = L"File";
  auto open = file->SubItems.Add(1, file.get(), cMenuItem::New());
  open->Caption = L"Open";
  open->Action = L"open.vbs";
  open->HotKey = 0x123;
  const std::string expected =
      "\x00\x00"
      "\x00\x00\x00\x00"
      "\x04\x00"
      "File"
      "\x00\x00"
      "\x01\x00"
      "\x23\x01\x00\x00"
      "\x04\x00"
      "Open"
      "\x08\x00"
      "open.vbs"s;
  EXPECT_EQ(Serialize(*root), expected);
  EXPECT_EQ(Record(0, 0, "File") + Record(1, 0x123, "Open", "open.vbs"), expected);  // as the tables below spell files
  const auto read = Parse(expected);
  EXPECT_TRUE(read.complete);
  EXPECT_EQ(Shape(*read.root), "File[256](Open[257])");
  EXPECT_EQ(read.root->Caption, L"[root]");
  EXPECT_EQ(read.root->SubItems.item(1)->SubItems.item(1)->HotKey, 0x123);
  EXPECT_EQ(counter_, 258);
}

// Each row: an item of the tree and its record exactly as the file holds it.
TEST_F(MenuFileTest, ADeeperTreeByteForByte) {
  const struct {
    int level;
    const wchar_t *caption, *action;
    int32_t hotKey;
    bool discard;
    std::string record;
  } rows[] = {
      {0, L"File", L"", 0, false, Record(0, 0, "File")},
      {1, L"Open", L"open.vbs", 0x00020041, true, Record(1, 0x80020041u, "Open", "open.vbs")},  // C+A, discarded
      {2, L"Beep", L"Beep", 0x4000012A, true, Record(2, 0x4000012Au, "Beep", "Beep")},     // a button keeps no Discard
      {1, L"Close", L"Quit", 0x20000074, false, Record(1, 0x20000074u, "Close", "Quit")},  // Narrix+F5
      {0, L"Help", L"", 0, false, Record(0, 0, "Help")},
  };
  auto root = cMenuItem::New();
  std::vector<cMenuItem*> parents{root.get()};
  std::string expected;
  for (const auto& row : rows) {
    parents.resize(static_cast<size_t>(row.level) + 1);
    auto item = parents.back()->SubItems.Add(1, parents.back(), cMenuItem::New());
    item->Caption = row.caption;
    item->Action = row.action;
    item->HotKey = row.hotKey;
    item->Discard = row.discard;
    parents.push_back(item.get());
    expected += row.record;
  }
  EXPECT_EQ(Serialize(*root), expected);
  EXPECT_EQ(braille_, "Beep=298;");

  const auto read = Parse(expected);  // the profile gives 0x12A
  EXPECT_TRUE(read.complete);
  EXPECT_EQ(Shape(*read.root), "File[256](Open[257](Beep[258])Close[259])Help[260]");
  size_t i = 0;
  WalkTree(
      static_cast<const cMenuItem&>(*read.root),
      [&](const cMenuItem& item, size_t, int) {
        EXPECT_EQ(item.HotKey, rows[i].hotKey) << i;
        EXPECT_EQ(item.Discard, rows[i].discard && !hotkey::IsBraille(rows[i].hotKey)) << i;
        ++i;
        return true;
      },
      [](const cMenuItem&, size_t) {});
  EXPECT_EQ(Serialize(*read.root), expected);
}

TEST_F(MenuFileTest, DiscardAndBrailleBits) {
  const std::string bytes = Record(0, 0x80000041u, "Keyboard", "SayLine") +  // discard, key 0x41
                            Record(0, 0x40000005u, "Button", "Beep") +       // braille: code from the profile
                            Record(0, 0xC0000005u, "Both", "Both") +         // braille and discard
                            Record(0, 0x00000000u, "Plain", "");
  const auto read = Parse(bytes);
  ASSERT_EQ(read.root->SubItems.Count(), 4);
  const auto& items = read.root->SubItems;
  EXPECT_TRUE(items.item(1)->Discard);
  EXPECT_EQ(items.item(1)->HotKey, 0x41);
  EXPECT_EQ(items.item(2)->HotKey, 0x4000012A);
  EXPECT_FALSE(items.item(2)->Discard);
  EXPECT_TRUE(items.item(3)->Discard);
  EXPECT_EQ(items.item(3)->HotKey, 0x4000012A);

  // Written back: braille codes carry no Discard bit, and go to the profile.
  const std::string written = Serialize(*read.root);
  EXPECT_EQ(written, Record(0, 0x80000041u, "Keyboard", "SayLine") + Record(0, 0x4000012Au, "Button", "Beep") +
                         Record(0, 0x4000012Au, "Both", "Both") + Record(0, 0, "Plain", ""));
  EXPECT_EQ(braille_, "Beep=298;Both=298;");
}

TEST_F(MenuFileTest, LevelRules) {
  const struct {
    std::vector<int16_t> levels;
    const char* shape;
    bool complete;
  } cases[] = {
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
  for (const auto& c : cases) {
    std::string bytes;
    char caption = 'a';
    for (int16_t level : c.levels) bytes += Record(level, 0, std::string(1, caption++), "");
    const auto read = Parse(bytes);
    EXPECT_EQ(Shape(*read.root), c.shape) << bytes.size();
    EXPECT_EQ(read.complete, c.complete) << c.shape;
  }
}

TEST_F(MenuFileTest, EveryCutOfAFileReadsWhatWasWhole) {
  const std::string whole = Record(0, 0, "File", "") + Record(1, 0x123, "Open", "open.vbs") + Record(0, 0, "End", "x");
  for (size_t cut = 0; cut <= whole.size(); ++cut) {
    const auto read = Parse(whole.substr(0, cut));
    const bool onBoundary = cut == 0 || cut == 14 || cut == 36 || cut == whole.size();
    EXPECT_EQ(read.complete, onBoundary) << cut;
  }
  EXPECT_EQ(Shape(*Parse(whole.substr(0, 33)).root), "File[256]");
  // A length that points past the end.
  EXPECT_FALSE(Parse("\x00\x00\x00\x00\x00\x00\xFF\xFF"
                     "abc"s)
                   .complete);
}

// What the file cannot hold is refused with the reason, never written as
// "?" or cut short.
TEST_F(MenuFileTest, WhatTheFileCannotHold) {
  auto deep = cMenuItem::New();
  cMenuItem* last = deep.get();
  for (int i = 0; i < 40000; ++i) last = last->SubItems.Add(1, last, cMenuItem::New()).get();
  auto item = [](std::wstring caption, std::wstring action) {
    auto root = cMenuItem::New();
    auto child = root->SubItems.Add(1, root.get(), cMenuItem::New());
    child->Caption = std::move(caption);
    child->Action = std::move(action);
    return root;
  };
  BuiltinCodePage central(1250);
  const struct {
    MenuItemPtr root;
    const ICodePage& page;
    std::wstring reason;  // empty: it fits
  } cases[] = {
      {deep, page_, L"The menu has more than 32,768 levels."},
      {item(std::wstring(65535, L'x'), L""), page_, L""},
      {item(std::wstring(65536, L'x'), L""), page_,
       L"The name of the item \"" + std::wstring(60, L'x') + L"...\" is longer than 65,535 bytes."},
      {item(L"Run", std::wstring(65536, L'x')), page_, L"The command of the item \"Run\" is longer than 65,535 bytes."},
      {item(L"Žlutý kůň", L""), page_,
       L"The name of the item \"Žlutý kůň\" contains the character \"ů\" (U+016F), which the code page of menu "
       L"files cannot hold."},
      {item(L"Žlutý kůň", L""), central, L""},
      {item(L"Smile", L"Say \U0001F600"), central,
       L"The command of the item \"Smile\" contains the character \"\U0001F600\" (U+1F600), which the code page of "
       L"menu files cannot hold."},
  };
  for (const auto& c : cases) {
    std::wstring reason;
    const auto bytes = SerializeMenu(*c.root, c.page, nullptr, &reason);
    EXPECT_EQ(bytes.has_value(), c.reason.empty()) << WideToUtf8(c.reason);
    EXPECT_EQ(reason, c.reason);
  }
}

TEST_F(MenuFileTest, TextsUseTheCodePage) {
  BuiltinCodePage central(1250);
  int32_t counter = 0;
  const auto read = ParseMenu(Record(0, 0, "\x8Elu\x9Dou\xE8k\xFD", "\xE8ti"), central, nullptr, counter);
  EXPECT_EQ(read.root->SubItems.item(1)->Caption, L"Žluťoučký");
  EXPECT_EQ(read.root->SubItems.item(1)->Action, L"čti");
}

// The clipboard and the wizard may keep items of a tree that is closed; the
// reader's items must stay whole, and keep their own children, whichever
// other items of the same read are gone.
TEST_F(MenuFileTest, ItemsKeptOutliveTheirTree) {
  std::string bytes;
  for (int i = 0; i < 3000; ++i) bytes += Record(i % 2 ? 1 : 0, 0, "Item " + std::to_string(i), "act");
  std::vector<MenuItemPtr> kept;
  {
    const auto read = Parse(bytes);
    ASSERT_EQ(read.root->SubItems.Count(), 1500);
    for (int position : {1, 700, 1500}) kept.push_back(read.root->SubItems.item(position));
    kept.push_back(read.root->SubItems.item(1200)->SubItems.item(1));  // a child alone
  }
  // Another read takes the memory the first one gave back.
  const auto again = Parse(bytes);
  EXPECT_EQ(again.root->SubItems.Count(), 1500);
  const struct {
    const wchar_t* caption;
    int children;
    int32_t menuId;
  } expected[] = {
      {L"Item 0", 1, 256}, {L"Item 1398", 1, 256 + 1398}, {L"Item 2998", 1, 256 + 2998}, {L"Item 2399", 0, 256 + 2399}};
  ASSERT_EQ(kept.size(), std::size(expected));
  for (size_t i = 0; i < kept.size(); ++i) {
    EXPECT_EQ(kept[i]->Caption, expected[i].caption);
    EXPECT_EQ(kept[i]->Action, L"act");
    EXPECT_EQ(kept[i]->MenuId, expected[i].menuId);
    ASSERT_EQ(kept[i]->SubItems.Count(), expected[i].children) << i;
    if (expected[i].children) {
      EXPECT_EQ(kept[i]->SubItems.item(1)->Caption, L"Item " + std::to_wstring(expected[i].menuId - 256 + 1));
    }
  }
  kept.clear();  // the last holders of their blocks
}

class MenuFilesOnDiskTest : public ::testing::Test {
 protected:
  BuiltinCodePage page_{1252};
  PortableProfile profile_{page_};
  cMenuFile defs_{page_, profile_};
  test::TempFolder dir_;
};

TEST_F(MenuFilesOnDiskTest, ReadWriteAndTheBrailleProfile) {
  bool complete = false;
  EXPECT_EQ(defs_.InitCommandDef(dir_.Path(L"none.mnu"), L"", &complete), nullptr);
  dir_.Write(L"empty.mnu", "");
  auto empty = defs_.InitCommandDef(dir_.Path(L"empty.mnu"), L"", &complete);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->SubItems.Count(), 0);
  EXPECT_TRUE(complete);

  auto root = cMenuItem::New();
  for (int32_t code : {0x4000012A, 0x40000003, 0x4000000F}) {
    auto item = root->SubItems.Add(1, root.get(), cMenuItem::New());
    item->Caption = L"item";
    item->Action = code == 0x4000000F ? L"Other" : L"Same";
    item->HotKey = code;
  }
  const std::wstring ini = dir_.Path(L"Focus 40.ini");
  ASSERT_TRUE(defs_.FlushCommand2Def(dir_.Path(L"Command.mnu"), ini, *root));
  EXPECT_EQ(dir_.Read(L"Focus 40.ini"), "[Actions]\r\nSame=3\r\nOther=F\r\n");  // the later "Same" wins

  defs_.ItemCounter = 128;
  auto read = defs_.InitCommandDef(dir_.Path(L"Command.mnu"), ini, &complete);
  EXPECT_EQ(read->SubItems.item(1)->HotKey, 0x40000003);
  EXPECT_EQ(read->SubItems.item(3)->HotKey, 0x4000000F);
  EXPECT_EQ(read->SubItems.item(1)->MenuId, 128);
  // Without the profile, or without an entry in it, only the braille bit stays.
  EXPECT_EQ(defs_.InitCommandDef(dir_.Path(L"Command.mnu"), L"", &complete)->SubItems.item(1)->HotKey, 0x40000000);
  dir_.Write(L"bad.ini", "[Actions]\r\nSame=zz\r\n");
  EXPECT_EQ(defs_.InitCommandDef(dir_.Path(L"Command.mnu"), dir_.Path(L"bad.ini"))->SubItems.item(3)->HotKey,
            0x40000000);
}

// Nothing is lost on a failed save: the file that failed is named with the
// system's reason; a profile that is there but cannot be read stops the
// save before anything is written.
TEST_F(MenuFilesOnDiskTest, AFailedSaveNamesTheFileAndWhy) {
  test::RefusingProfile profile(page_, L"Refused");
  cMenuFile defs(page_, profile);
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
      {menu, ini, L"", *empty, L"", L"", true, false},  // no braille code: the profile is not touched
      {noFolder, ini, L"", *root, noFolder, L"No such file or directory", false, false},
      {folder, ini, L"", *root, folder, L"Is a directory", false, false},
      {readOnly, ini, L"", *root, readOnly, L"Permission denied", false, false},
      {menu, ini, ini, *root, ini, L"Input/output error", false, false},
      {menu, folder, L"", *root, folder, L"Is a directory", false, false},
      {menu, noFolder, L"", *plain, noFolder, L"No such file or directory", true, false},
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
  // Every code at once, or none: a profile that cannot take one keeps all.
  WriteFailure failed;
  EXPECT_FALSE(defs.FlushCommand2Def(menu, ini, *root, &failed));
  EXPECT_EQ(failed.reason, L"Permission denied");
  EXPECT_EQ(dir_.Read(L"Focus 40.ini"), oldProfile);
  root->SubItems.item(2)->Action = L"Other";
  ASSERT_TRUE(defs.FlushCommand2Def(menu, ini, *root));
  EXPECT_EQ(dir_.Read(L"Focus 40.ini"), "[KeyMap]\r\n1=Dot 1\r\n\r\n[Actions]\r\nBefore=1\r\nOther=1\r\nAfter=1\r\n");
  EXPECT_EQ(defs.InitCommandDef(menu, ini)->SubItems.Count(), 3);
  // No new file is left behind by any of it.
  size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(dir_.Fs())) files += entry.is_regular_file();
  EXPECT_EQ(files, 3u);
  EXPECT_EQ(dir_.Read(L"read-only.mnu"), oldMenu);
}

// Two saves of different menus to one file at once, many times: a reader
// finds one whole menu or the other, never parts of both.
TEST_F(MenuFilesOnDiskTest, TwoWritersAtOnceLeaveOneWholeMenu) {
  auto menuOf = [](int items, const wchar_t* caption) {
    auto root = cMenuItem::New();
    for (int i = 0; i < items; ++i) root->SubItems.Add(1, root.get(), cMenuItem::New())->Caption = caption;
    return root;
  };
  const MenuItemPtr menus[] = {menuOf(5000, L"first menu"), menuOf(40, L"second")};
  const std::string whole[] = {*SerializeMenu(*menus[0], page_, nullptr), *SerializeMenu(*menus[1], page_, nullptr)};
  const std::wstring path = dir_.Path(L"Command.mnu");
  std::atomic<int> running{2};
  auto writer = [&](const cMenuItem& root) {
    cMenuFile defs(page_, profile_);
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(defs.FlushCommand2Def(path, L"", root));
    --running;
  };
  std::thread first(writer, std::cref(*menus[0])), second(writer, std::cref(*menus[1]));
  int mixed = 0;
  while (running > 0) {
    const std::string read = dir_.Read(L"Command.mnu");
    mixed += !read.empty() && read != whole[0] && read != whole[1];
  }
  first.join();
  second.join();
  EXPECT_EQ(mixed, 0);
  const std::string last = dir_.Read(L"Command.mnu");
  EXPECT_TRUE(last == whole[0] || last == whole[1]);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_.Fs()), {}), 1);
}

// A link planted where the new file goes (the fixed name of old, and the
// names this process tries first) is passed over, never written through;
// the new file takes the old one's permissions.
TEST_F(MenuFilesOnDiskTest, LinksPlantedAtTheNewFilesNamesAreNotFollowed) {
  dir_.Write(L"victim", "not the menu's");
  dir_.Write(L"Command.mnu", "old");
  std::filesystem::permissions(dir_.Fs() / "Command.mnu", std::filesystem::perms(0640));
  const std::string menu = (dir_.Fs() / "Command.mnu").string();
  std::vector<std::string> links{menu + ".new~"};
  for (int i = 0; i < 10; ++i) links.push_back(menu + "." + std::to_string(getpid()) + "-" + std::to_string(i) + "~");
  for (const auto& link : links) std::filesystem::create_symlink(dir_.Fs() / "victim", link);
  std::filesystem::create_symlink(dir_.Fs() / "made through a link", menu + "." + std::to_string(getpid()) + "-10~");
  auto root = cMenuItem::New();
  root->SubItems.Add(1, root.get(), cMenuItem::New())->Caption = L"new";
  ASSERT_TRUE(defs_.FlushCommand2Def(dir_.Path(L"Command.mnu"), L"", *root));
  EXPECT_EQ(dir_.Read(L"Command.mnu"), *SerializeMenu(*root, page_, nullptr));
  EXPECT_EQ(std::filesystem::status(dir_.Fs() / "Command.mnu").permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(dir_.Read(L"victim"), "not the menu's");
  EXPECT_FALSE(std::filesystem::exists(dir_.Fs() / "made through a link"));
  for (const auto& link : links) EXPECT_TRUE(std::filesystem::is_symlink(link)) << link;
}

}  // namespace
}  // namespace nx
