// The nxmenu program as administrators use it: exit codes, messages and
// round trips through JSON.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "menu_records.h"
#include "platform/text.h"
#include "temp_folder.h"

namespace nx {
namespace {

struct CliRun {
  int status;
  std::string out;  // standard output and standard error together, unless sent elsewhere
};

// `errorsTo` is where the shell sends standard error: "&1" or a quoted file.
CliRun Nxmenu(const std::string& args, const std::string& errorsTo = "&1") {
  const std::string command = std::string(NXMENU_PATH) + " " + args + " 2>" + errorsTo;
  CliRun run{-1, ""};
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof(buffer), pipe)) > 0;) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

std::string Q(const std::filesystem::path& p) { return "'" + p.string() + "'"; }

const std::filesystem::path kDemo = NX_DEMO_DIR;

TEST(Nxmenu, DemoMenusRoundTripByteForByte) {
  test::TempFolder dir;
  int menus = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kDemo)) {
    if (entry.path().filename() != "Command.mnu") continue;
    ++menus;
    const auto braille = entry.path().parent_path() / "Focus 40.ini";
    const auto json = dir.Fs() / "menu.json", copy = dir.Fs() / "copy.mnu";
    std::filesystem::copy_file(braille, dir.Fs() / "copy.ini", std::filesystem::copy_options::overwrite_existing);
    CliRun toJson = Nxmenu("to-json " + Q(entry.path()) + " --braille " + Q(braille) + " > " + Q(json));
    ASSERT_EQ(toJson.status, 0) << toJson.out;
    CliRun fromJson = Nxmenu("from-json " + Q(json) + " " + Q(copy) + " --braille " + Q(dir.Fs() / "copy.ini"));
    ASSERT_EQ(fromJson.status, 0) << fromJson.out;
    EXPECT_EQ(dir.Read(L"copy.mnu"), test::TempFolder::ReadPath(entry.path())) << entry.path();
    EXPECT_EQ(dir.Read(L"copy.ini"), test::TempFolder::ReadPath(braille)) << braille;
  }
  EXPECT_EQ(menus, 4);
}

TEST(Nxmenu, DumpShowsTheTreeWithKeyNames) {
  const auto set = kDemo / "Set";
  CliRun run = Nxmenu("dump " + Q(set / "notepad" / "Command.mnu") + " --keys " + Q(set / "gKeyCode.def") +
                      " --braille " + Q(set / "notepad" / "Focus 40.ini"));
  ASSERT_EQ(run.status, 0) << run.out;
  EXPECT_NE(run.out.find("Read  #256\n  Current line  -> SayLine  key: Narrix+Up Arrow  discard  #257\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("key: [Dot 2+Dot 4+Space]"), std::string::npos) << run.out;
  CliRun json = Nxmenu("dump " + Q(set / "Command.mnu") + " --json --base 128");
  EXPECT_NE(json.out.find("\"menuId\": 128"), std::string::npos) << json.out;
  EXPECT_NE(json.out.find("\"complete\": true"), std::string::npos);
}

TEST(Nxmenu, ProblemsAndExitCodes) {
  test::TempFolder dir;
  dir.Write(L"bad.json", R"({"items": [{"caption": "x", "hotKey": 4294967296}]})");
  dir.Write(L"broken.json", "{\"items\": [");
  // Not well-formed UTF-8, byte by byte, and surrogates that stand for no character.
  const struct {
    std::string name, text, message;
  } notUtf8[] = {{"lead.json", "\xFF", "line 1, column 26: not UTF-8 (byte 0xFF"},
                 {"continuation.json", "\xC3(", "column 26: not UTF-8 (byte 0xC3"},
                 {"cut.json", "\xE2\x82", "column 26: not UTF-8 (byte 0xE2"},
                 {"overlong.json", "\xC0\xAF", "column 26: not UTF-8 (byte 0xC0"},
                 {"surrogate.json", "\xED\xA0\x80", "column 26: not UTF-8 (byte 0xED"},
                 {"above.json", "\xF4\x90\x80\x80", "column 26: not UTF-8 (byte 0xF4"},
                 {"high.json", "\\ud800", "high surrogate without its low surrogate"},
                 {"low.json", "\\udc00", "lone low surrogate"},
                 {"unpaired.json", "\\ud800\\u0041", "high surrogate without its low surrogate"}};
  for (const auto& bad : notUtf8)
    dir.Write(Utf8ToWide(bad.name), "{\"items\": [{\"caption\": \"a" + bad.text + "\"}]}");
  dir.Write(L"dup.json", R"({"items": [{"caption": "Tools", "action": "x", "hotKey": 65, "items": [
      {"caption": "A", "action": "SayLine", "hotKey": 66}, {"caption": "B", "action": "SayWord", "hotKey": 66}]}]})");
  const std::string d = dir.Fs().string() + "/";
  struct Case {
    std::string args;
    int status;
    std::string message;
  };
  std::vector<Case> cases = {
      {"", 2, "no command"},
      {"frobnicate", 2, "unknown command frobnicate"},
      {"dump", 2, "give one menu file"},
      {"dump a b --wat", 2, "unknown option --wat"},
      {"dump --codepage 437 x", 2, "--codepage must be 1250 or 1252"},
      {"dump " + d + "none.mnu", 1, "none.mnu: no such menu file"},
      {"from-json " + d + "bad.json " + d + "out.mnu", 1, "items[0].hotKey: must be a whole number"},
      {"from-json " + d + "broken.json " + d + "out.mnu", 1, "line 1, column 12: the document ends too early"},
      {"from-json " + d + "none.json " + d + "out.mnu", 1, "none.json: cannot be read (No such file or directory)"},
      {"from-json " + d + " " + d + "out.mnu", 1, d + ": cannot be read"},  // a folder
      {"format-key 12x", 2, "12x is not a code"},
      {"format-key 0x80000041", 1, "not a hot-key code that a menu can hold"},
      {"format-key 0x40000005", 0, "[H1+H4]"},
      {"format-key 196724 --keys " + Q(kDemo / "Set" / "gKeyCode.def"), 0, "C+S+F5"},
      // Hot-key codes are signed: a status button is negative in decimal.
      {"format-key -1073610750 --braille " + Q(kDemo / "Set" / "Focus 40.ini"), 0, "[Routing 3]"},
      {"format-key --braille " + Q(kDemo / "Set" / "Focus 40.ini") + " -1073610750", 0, "[Routing 3]"},
      {"format-key -- 0x40000005", 0, "[H1+H4]"},
      {"format-key -- -x", 2, "-x is not a code"},
      {"format-key -x", 2, "unknown option -x"},
      {"check " + Q(kDemo) + " --braille 'Focus 40'", 0, ""},
      {"check " + d, 1, "not an installation"},
      {"--help", 0, "usage: nxmenu COMMAND"},
      {"check --help", 0, "pull-down item that carries"},
  };
  for (const auto& bad : notUtf8) cases.push_back({"from-json " + d + bad.name + " " + d + "out.mnu", 1, bad.message});
  for (const auto& c : cases) {
    CliRun run = Nxmenu(c.args);
    EXPECT_EQ(run.status, c.status) << c.args << "\n" << run.out;
    EXPECT_NE(run.out.find(c.message), std::string::npos) << c.args << "\n" << run.out;
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Fs() / "out.mnu"));

  ASSERT_EQ(Nxmenu("from-json " + d + "dup.json " + d + "dup.mnu").status, 0);
  dir.Write(L"cut.mnu", dir.Read(L"dup.mnu").substr(0, 30));
  CliRun check = Nxmenu("check " + d + "dup.mnu");
  EXPECT_EQ(check.status, 1);
  EXPECT_NE(check.out.find("pull-down \"Tools\" carries the action \"x\""), std::string::npos) << check.out;
  EXPECT_NE(check.out.find("pull-down \"Tools\" carries the hot key key(65)"), std::string::npos) << check.out;
  EXPECT_NE(check.out.find("hot key key(66) is used by \"A\", \"B\""), std::string::npos) << check.out;
  CliRun cut = Nxmenu("check " + d + "cut.mnu");
  EXPECT_NE(cut.out.find("does not read completely"), std::string::npos) << cut.out;
  CliRun dumpCut = Nxmenu("to-json " + d + "cut.mnu");
  EXPECT_EQ(dumpCut.status, 1);
  EXPECT_NE(dumpCut.out.find("\"complete\": false"), std::string::npos) << dumpCut.out;
}

// Whatever to-json writes, from-json reads back, down to the deepest menu a
// file can hold (a level is 16 bits), and beyond that it says why it cannot
// write the file instead of running out of stack.
TEST(Nxmenu, DeepMenusRoundTrip) {
  test::TempFolder dir;
  std::string deepest;
  for (int level = 0; level <= 32767; ++level) deepest += Record(static_cast<int16_t>(level), 0, "a");
  dir.Write(L"deep.mnu", deepest);
  const std::string d = dir.Fs().string() + "/";
  CliRun toJson = Nxmenu("to-json " + d + "deep.mnu > " + d + "deep.json");
  ASSERT_EQ(toJson.status, 0) << toJson.out;
  EXPECT_LT(std::filesystem::file_size(dir.Fs() / "deep.json"), 32768u * 1000);  // not growing with the depth
  CliRun fromJson = Nxmenu("from-json " + d + "deep.json " + d + "copy.mnu");
  ASSERT_EQ(fromJson.status, 0) << fromJson.out;
  EXPECT_TRUE(dir.Read(L"copy.mnu") == deepest);

  std::string tooDeep = "{\"items\": ";
  for (int i = 0; i < 100000; ++i) tooDeep += "[{\"caption\": \"a\", \"items\": ";
  tooDeep += "[]";
  for (int i = 0; i < 100000; ++i) tooDeep += "}]";
  dir.Write(L"too-deep.json", tooDeep + "}");
  dir.Write(L"nested.json", "{\"items\": " + std::string(1000000, '[') + std::string(1000000, ']') + "}");
  const struct {
    const char* json;
    const char* message;
  } refused[] = {{"too-deep.json", "cannot be written (The menu has more than 32,768 levels.)"},
                 {"nested.json", "items[0]: an item must be an object"}};
  for (const auto& c : refused) {
    CliRun run = Nxmenu("from-json " + d + c.json + " " + d + "refused.mnu");
    EXPECT_EQ(run.status, 1) << c.json;
    EXPECT_NE(run.out.find(c.message), std::string::npos) << c.json << run.out.substr(0, 400);
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Fs() / "refused.mnu"));
}

// Files that read completely but that the writer would not have made cannot
// come back byte for byte; to-json and check say so and go on.
TEST(Nxmenu, FilesNotInTheWritersFormAreNamedInAWarning) {
  test::TempFolder dir;
  const std::string d = dir.Fs().string() + "/";
  const struct {
    const wchar_t* name;
    std::string bytes;
    bool warned;
  } cases[] = {
      {L"plain.mnu", Record(0, 0, "a") + Record(1, 0x80000041u, "b") + Record(0, 0, "c"), false},
      {L"jump.mnu", Record(0, 0, "a") + Record(2, 0, "b"), true},
      {L"braille.mnu", Record(0, 0x40000005u, "a"), true},  // the profile (none) has no code 5
      {L"both.mnu", Record(0, 0xC0000000u, "a"), true},     // discard beside a braille button
      {L"bare.mnu", Record(0, 0x40000000u, "a"), false},
  };
  for (const auto& c : cases) {
    dir.Write(c.name, c.bytes);
    const std::string file = d + std::string(c.name, c.name + std::wcslen(c.name));
    const std::string warning = "nxmenu: warning: " + file + ": not in the form the menu editor writes";
    CliRun toJson = Nxmenu("to-json " + file + " > " + d + "out.json", Q(dir.Fs() / "stderr"));
    EXPECT_EQ(toJson.status, 0) << file;
    const std::string err = dir.Read(L"stderr");
    EXPECT_EQ(err.find(warning) == 0 && std::count(err.begin(), err.end(), '\n') == 1, c.warned) << file << err;
    ASSERT_EQ(Nxmenu("from-json " + d + "out.json " + d + "back.mnu").status, 0);
    EXPECT_EQ(dir.Read(L"back.mnu") == c.bytes, !c.warned) << file;
    CliRun check = Nxmenu("check " + file);
    EXPECT_EQ(check.status, 0) << check.out;
    EXPECT_EQ(check.out.find(warning) != std::string::npos, c.warned) << check.out;
  }
  EXPECT_NE(Nxmenu("to-json --help").out.find("one-line warning naming the file"), std::string::npos);
}

// Every failed write says why in one line; a profile that is there but
// cannot be read stops the write before anything is written.
TEST(Nxmenu, FromJsonSaysWhyAWriteFailed) {
  test::TempFolder dir;
  const std::string d = dir.Fs().string() + "/";
  dir.Write(L"braille.json", R"({"items": [{"caption": "A", "action": "Beep", "hotKey": 1073741829}]})");
  std::filesystem::create_directory(dir.Fs() / "folder.ini");
  const struct {
    std::string menu, braille;
    int status;
    std::string message;
  } cases[] = {
      {"out.mnu", "Focus 40.ini", 0, ""},
      {"out.mnu", "no folder/Focus 40.ini", 1,
       "nxmenu: " + d +
           "no folder/Focus 40.ini: the braille codes could not be written into section Actions (No "
           "such file or directory); " +
           d + "out.mnu was written without them"},
      {"second.mnu", "folder.ini", 1,
       "nxmenu: " + d + "folder.ini: cannot be read (Is a directory); nothing was written, neither it nor " + d +
           "second.mnu"},
      {"no folder/out.mnu", "Focus 40.ini", 1,
       "nxmenu: " + d + "no folder/out.mnu: cannot be written (No such file or directory); the old file is unchanged"},
  };
  for (const auto& c : cases) {
    CliRun run = Nxmenu("from-json " + d + "braille.json " + Q(d + c.menu) + " --braille " + Q(d + c.braille));
    EXPECT_EQ(run.status, c.status) << run.out;
    EXPECT_EQ(run.out.find(c.message), 0u) << run.out;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), c.status) << run.out;
  }
  EXPECT_EQ(dir.Read(L"Focus 40.ini"), "[Actions]\r\nBeep=5\r\n");
  EXPECT_FALSE(std::filesystem::exists(dir.Fs() / "second.mnu"));
}

TEST(Nxmenu, ExportHelpRewritesOnlyTheMarkedSection) {
  test::TempFolder dir;
  std::filesystem::copy(kDemo, dir.Fs(), std::filesystem::copy_options::recursive);
  const auto page = dir.Fs() / "help" / "narrix" / "hotkey.htm";
  const std::string before = test::TempFolder::ReadPath(page);
  const std::string root = Q(dir.Fs());
  CliRun run = Nxmenu("export-help " + root + " --display 'Focus 40'");
  ASSERT_EQ(run.status, 0) << run.out;
  EXPECT_NE(run.out.find("hotkey.htm"), std::string::npos);
  const std::string once = test::TempFolder::ReadPath(page);
  // The page's own text around the markers stays; the general menu comes
  // first; each application's braille buttons use its own profile's names.
  EXPECT_EQ(once.substr(0, once.find("<!-- app hotkey start -->")),
            before.substr(0, before.find("<!-- app hotkey start -->")));
  EXPECT_EQ(once.substr(once.find("<!-- app hotkey end -->")), before.substr(before.find("<!-- app hotkey end -->")));
  EXPECT_LT(once.find("<H3>(Narrix)</H3>"), once.find("<H3>excel</H3>"));
  EXPECT_NE(once.find("<LI>Word count ( [Dot 2+Dot 4+Space] ) </LI>"), std::string::npos) << once;
  ASSERT_EQ(Nxmenu("export-help " + root + " --display 'Focus 40'").status, 0);
  EXPECT_EQ(test::TempFolder::ReadPath(page), once);

  // A page without a start marker is left as it is, line breaks and all.
  dir.Write(L"help\\narrix\\hotkey.htm", "<p>no markers</p>\n<p>here</p>");
  run = Nxmenu("export-help " + root);
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("no '<!-- app hotkey start -->' line; the page is unchanged"), std::string::npos) << run.out;
  EXPECT_EQ(test::TempFolder::ReadPath(page), "<p>no markers</p>\n<p>here</p>");
  std::filesystem::remove(page);
  run = Nxmenu("export-help " + root);
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("cannot be read (No such file or directory)"), std::string::npos) << run.out;
  EXPECT_FALSE(std::filesystem::exists(page));
}

TEST(Nxmenu, CodePages) {
  test::TempFolder dir;
  dir.Write(L"cz.json", R"({"items": [{"caption": "Žluťoučký kůň", "action": "SayLine"}]})");
  const std::string d = dir.Fs().string() + "/";
  ASSERT_EQ(Nxmenu("from-json " + d + "cz.json " + d + "cz.mnu --codepage 1250").status, 0);
  EXPECT_NE(dir.Read(L"cz.mnu").find("\x8Elu\x9Dou\xE8k\xFD k\xF9\xF2"), std::string::npos);
  EXPECT_NE(Nxmenu("dump " + d + "cz.mnu --codepage 1250").out.find("Žluťoučký kůň"), std::string::npos);
  // A letter the code page lacks is refused, naming the item and the letter,
  // and nothing is written.
  dir.Write(L"action.json", R"({"items": [{"caption": "Tools", "items": [{"caption": "Read", "action": "Přečti"}]}]})");
  const struct {
    const char* json;
    std::string message;
  } refused[] = {
      {"cz.json", R"(items[0] "Žluťoučký kůň": the caption holds "ť" (U+0165), which code page 1252 cannot store)"},
      {"action.json", R"(items[0].items[0] "Read": the action holds "ř" (U+0159), which code page 1252 cannot store)"},
  };
  for (const auto& c : refused) {
    CliRun run = Nxmenu("from-json " + d + c.json + " " + d + "west.mnu --codepage 1252");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "nxmenu: " + d + c.json + ": not a menu: " + c.message + "\n");
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Fs() / "west.mnu"));
  ASSERT_EQ(Nxmenu("from-json " + d + "action.json " + d + "west.mnu --codepage 1250").status, 0);
}

}  // namespace
}  // namespace nx
