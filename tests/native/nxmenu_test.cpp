// The nxmenu program as administrators use it: exit codes, messages and
// round trips through JSON.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "menu_records.h"
#include "temp_folder.h"

namespace nx {
namespace {

struct CliRun {
  int status;
  std::string out;  // standard output and standard error together, unless sent elsewhere
};

// `errorsTo` is where the shell sends standard error: "&1" or a quoted file.
CliRun Nxmenu(const std::string& args, const std::string& errorsTo = "&1") {
  CliRun run{-1, ""};
  FILE* pipe = popen((std::string(NXMENU_PATH) + " " + args + " 2>" + errorsTo).c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof(buffer), pipe)) > 0;) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

std::string Q(const std::filesystem::path& p) { return "'" + p.string() + "'"; }

const std::filesystem::path kDemo = NX_DEMO_DIR;

// Each row: a command line, its exit status and a piece of what it says.
// The rows run in order: some read what an earlier one wrote.
TEST(Nxmenu, AnswersAndExitCodes) {
  test::TempFolder dir;
  const std::string d = dir.Fs().string() + "/", set = (kDemo / "Set").string() + "/";
  auto caption = [](const std::string& text) { return "{\"items\": [{\"caption\": \"a" + text + "\"}]}"; };
  std::string deep, deepEnd;
  for (int i = 0; i < 100000; ++i) deep += "[{\"caption\": \"a\", \"items\": ", deepEnd += "}]";
  const std::pair<const wchar_t*, std::string> files[] = {
      {L"bad.json", R"({"items": [{"caption": "x", "hotKey": 4294967296}]})"},
      {L"broken.json", "{\"items\": ["},
      {L"lead.json", caption("\xFF")},
      {L"high.json", caption("\\ud800")},
      {L"low.json", caption("\\udc00")},
      {L"unpaired.json", caption("\\ud800\\u0041")},
      {L"dup.json", R"({"items": [{"caption": "Tools", "action": "x", "hotKey": 65, "items": [
          {"caption": "A", "action": "SayLine", "hotKey": 66}, {"caption": "B", "action": "SayWord", "hotKey": 66}]}]})"},
      {L"too-deep.json", "{\"items\": " + deep + "[]" + deepEnd + "}"},
      {L"nested.json", "{\"items\": " + std::string(1000000, '[') + std::string(1000000, ']') + "}"},
      {L"cut.mnu", Record(0, 0, "Tools") + Record(1, 0, "A").substr(0, 9)},
      {L"braille.json", R"({"items": [{"caption": "A", "action": "Beep", "hotKey": 1073741829}]})"},
      {L"cz.json", R"({"items": [{"caption": "Žluťoučký kůň", "action": "SayLine"}]})"},
      {L"action.json", R"({"items": [{"caption": "Tools", "items": [{"caption": "Read", "action": "Přečti"}]}]})"},
      {L"inst/Set/Command.mnu", Record(0, 0x20053, "Help") + Record(0, 0x40000000, "Dots", "Beep")},
      {L"inst/Set/Focus.ini", "[Actions]\r\nBeep=5\r\n"},
      {L"inst/Set/notepad/Command.mnu", Record(0, 0x20053, "Save all") + Record(0, 0x40000000, "Braille", "Beep")},
      {L"inst/Set/notepad/Focus.ini", "[Actions]\r\nBeep=5\r\n"},
      {L"lone/Set/notepad/Command.mnu", Record(0, 0x20053, "Save all")},  // no general menu
  };
  for (const char* app : {"inst/Set/notepad", "lone/Set/notepad"}) std::filesystem::create_directories(dir.Fs() / app);
  for (const auto& [name, bytes] : files) dir.Write(name, bytes);
  std::filesystem::create_directory(dir.Fs() / "folder.ini");
  const std::string toOut = " " + d + "out.mnu", braille = "from-json " + d + "braille.json ";
  const std::string keys = " --keys " + Q(set + "gKeyCode.def"), focus = " --braille " + Q(set + "Focus 40.ini");
  const std::tuple<std::string, int, std::string> cases[] = {
      {"", 2, "no command"},
      {"frobnicate", 2, "unknown command frobnicate"},
      {"dump", 2, "give one menu file"},
      {"dump --codepage 437 x", 2, "--codepage must be 1250 or 1252"},
      {"dump " + d + "none.mnu", 1, "none.mnu: no such menu file"},
      {"dump " + Q(set + "notepad/Command.mnu") + keys + " --braille " + Q(set + "notepad/Focus 40.ini"), 0,
       "Read  #256\n  Current line  -> SayLine  key: Narrix+Up Arrow  discard  #257\n"},
      {"dump " + Q(set + "Command.mnu") + " --json --base 128", 0, "\"menuId\": 128"},
      {"from-json " + d + "bad.json" + toOut, 1, "items[0].hotKey: must be a whole number"},
      {"from-json " + d + "broken.json" + toOut, 1, "line 1, column 12: the document ends too early"},
      {"from-json " + d + "none.json" + toOut, 1, "none.json: cannot be read (No such file or directory)"},
      {"from-json " + d + toOut, 1, d + ": cannot be read"},  // a folder
      {"from-json " + d + "lead.json" + toOut, 1, "line 1, column 26: not UTF-8 (byte 0xFF"},
      {"from-json " + d + "high.json" + toOut, 1, "high surrogate without its low surrogate"},
      {"from-json " + d + "low.json" + toOut, 1, "lone low surrogate"},
      {"from-json " + d + "unpaired.json" + toOut, 1, "high surrogate without its low surrogate"},
      // Beyond the deepest menu a file can hold it says why, never running
      // out of stack.
      {"from-json " + d + "too-deep.json" + toOut, 1, "cannot be written (The menu has more than 32,768 levels.)"},
      {"from-json " + d + "nested.json" + toOut, 1, "items[0]: an item must be an object"},
      {"format-key 12x", 2, "12x is not a code"},
      {"format-key 0x80000041", 1, "not a hot-key code that a menu can hold"},
      {"format-key 196724" + keys, 0, "C+S+F5"},
      // Hot-key codes are signed: a status button is negative in decimal.
      {"format-key -1073610750" + focus, 0, "[Routing 3]"},
      {"format-key -- 0x40000005", 0, "[H1+H4]"},
      {"format-key -- -x", 2, "-x is not a code"},
      {"format-key -x", 2, "unknown option -x"},
      {"check " + Q(kDemo) + " --braille 'Focus 40'", 0, ""},
      {"check " + d, 1, "not an installation"},
      {"--help", 0, "usage: nxmenu COMMAND"},
      {"from-json " + d + "dup.json " + d + "dup.mnu", 0, ""},
      {"check " + d + "dup.mnu", 1, "pull-down \"Tools\" carries the action \"x\""},
      {"check " + d + "dup.mnu", 1, "pull-down \"Tools\" carries the hot key key(65)"},
      {"check " + d + "dup.mnu", 1, "hot key key(66) is used by \"A\", \"B\""},
      {"check " + d + "cut.mnu", 1, "does not read completely"},
      // An application's key hides the general menu's items that have it.
      {"check " + d + "inst --braille Focus", 1,
       d + "inst/Set/notepad/Command.mnu: hot key C+key(83) of \"Save all\" shadows \"Help\" of the general menu\n"},
      {"check " + d + "inst --braille Focus", 1, "hot key [H1+H4] of \"Braille\" shadows \"Dots\" of the general menu"},
      {"check " + d + "lone", 0, ""},
      {"to-json " + d + "cut.mnu", 1, "\"complete\": false"},
      // A failed write says why; a profile that is there but cannot be read
      // stops it before anything is written.
      {braille + d + "ok.mnu --braille " + Q(d + "Focus 40.ini"), 0, ""},
      {braille + d + "ok.mnu --braille " + Q(d + "no folder/Focus 40.ini"), 1,
       "nxmenu: " + d +
           "no folder/Focus 40.ini: the braille codes could not be written into section Actions (No "
           "such file or directory); " +
           d + "ok.mnu was written without them"},
      {braille + d + "out.mnu --braille " + d + "folder.ini", 1,
       "nxmenu: " + d + "folder.ini: cannot be read (Is a directory); nothing was written, neither it nor " + d +
           "out.mnu"},
      {braille + Q(d + "no folder/out.mnu"), 1,
       "nxmenu: " + d + "no folder/out.mnu: cannot be written (No such file or directory); the old file is unchanged"},
      // A letter the code page lacks is refused, naming the item and the
      // letter, and nothing is written.
      {"from-json " + d + "cz.json " + d + "cz.mnu --codepage 1250", 0, ""},
      {"dump " + d + "cz.mnu --codepage 1250", 0, "Žluťoučký kůň"},
      {"from-json " + d + "cz.json" + toOut + " --codepage 1252", 1,
       "nxmenu: " + d +
           R"(cz.json: not a menu: items[0] "Žluťoučký kůň": the caption holds "ť" (U+0165), which )"
           "code page 1252 cannot store\n"},
      {"from-json " + d + "action.json" + toOut, 1,
       R"(items[0].items[0] "Read": the action holds "ř" (U+0159), which code page 1252 cannot store)"},
  };
  for (const auto& [args, status, message] : cases) {
    CliRun run = Nxmenu(args);
    EXPECT_EQ(run.status, status) << args << "\n" << run.out;
    EXPECT_NE(run.out.find(message), std::string::npos) << args << "\n" << run.out;
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Fs() / "out.mnu"));
  EXPECT_EQ(dir.Read(L"Focus 40.ini"), "[Actions]\r\nBeep=5\r\n");
}

// Whatever to-json writes, from-json reads back into the same bytes and the
// same display profile: the demo menus, the deepest menu a file can hold (a
// level is 16 bits), and files that read completely but that the writer
// would not have made, which to-json and check name in a one-line warning.
TEST(Nxmenu, RoundTrips) {
  test::TempFolder dir;
  const std::string d = dir.Fs().string() + "/";
  std::string deepest;
  for (int level = 0; level <= 32767; ++level) deepest += Record(static_cast<int16_t>(level), 0, "a");
  std::vector<std::tuple<std::filesystem::path, std::string, bool>> rows = {
      {"plain.mnu", Record(0, 0, "a") + Record(1, 0x80000041u, "b") + Record(0, 0, "c"), false},
      {"deep.mnu", deepest, false},
      {"jump.mnu", Record(0, 0, "a") + Record(2, 0, "b"), true},
      {"braille.mnu", Record(0, 0x40000005u, "a"), true},  // the profile (none) has no code 5
      {"both.mnu", Record(0, 0xC0000000u, "a"), true},     // discard beside a braille button
      {"bare.mnu", Record(0, 0x40000000u, "a"), false},
  };
  for (const auto& [name, bytes, warned] : rows) dir.Write(name.wstring(), bytes);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kDemo))
    if (entry.path().filename() == "Command.mnu") rows.emplace_back(entry, test::TempFolder::ReadPath(entry), false);
  ASSERT_EQ(rows.size(), 10u);
  for (const auto& [name, bytes, warned] : rows) {
    const bool demo = name.is_absolute();  // with its display's profile
    const auto menu = demo ? name : dir.Fs() / name, profile = menu.parent_path() / "Focus 40.ini";
    if (demo) std::filesystem::copy(profile, dir.Fs() / "copy.ini", std::filesystem::copy_options::overwrite_existing);
    const std::string warning = "nxmenu: warning: " + menu.string() + ": not in the form the menu editor writes";
    const std::string braille = demo ? " --braille " + Q(profile) : "",
                      copy = demo ? " --braille " + d + "copy.ini" : "";
    EXPECT_EQ(Nxmenu("to-json " + Q(menu) + braille + " > " + d + "out.json", Q(d + "err")).status, 0) << menu;
    const std::string err = dir.Read(L"err");
    EXPECT_EQ(err.find(warning) == 0 && std::count(err.begin(), err.end(), '\n') == 1, warned) << menu << err;
    EXPECT_LT(std::filesystem::file_size(d + "out.json"), 1000 * bytes.size());  // not growing with the depth
    ASSERT_EQ(Nxmenu("from-json " + d + "out.json " + d + "back.mnu" + copy).status, 0);
    EXPECT_EQ(dir.Read(L"back.mnu") == bytes, !warned) << menu;
    EXPECT_EQ(dir.Read(L"copy.ini"), test::TempFolder::ReadPath(profile)) << menu;  // for the others: neither is there
    CliRun check = Nxmenu("check " + Q(menu) + (demo ? " --braille 'Focus 40'" : ""));
    EXPECT_EQ(check.status, 0) << check.out;
    EXPECT_EQ(check.out.find(warning) != std::string::npos, warned) << check.out;
  }
}

// export-help rewrites the help page between its markers, each
// application's braille buttons named by its own display profile; a page
// without the start marker is left as it is, line breaks and all.
TEST(Nxmenu, ExportHelpRewritesOnlyTheMarkedSection) {
  test::TempFolder dir;
  std::filesystem::copy(kDemo, dir.Fs(), std::filesystem::copy_options::recursive);
  const auto page = dir.Fs() / "help" / "narrix" / "hotkey.htm";
  ASSERT_EQ(Nxmenu("export-help " + Q(dir.Fs()) + " --display 'Focus 40'").status, 0);
  // Pull-downs nest, a braille button is named by the profile, the tips are a link.
  for (const char* part :
       {"<H3>notepad</H3>\r\n<UL><LI>Read</LI>\r\n<UL><LI>Current line ( Narrix+Up Arrow ) </LI>",
        "</UL><LI>Insert date and time ( C+S+F5 ) </LI>\r\n<LI>Word count ( [Dot 2+Dot 4+Space] )",
        "<A href=\"..\\..\\set\\notepad\\tips.txt\">Tips for Notepad</A> ( Narrix+A+T ) </LI>\r\n</UL><H3>"})
    EXPECT_NE(test::TempFolder::ReadPath(page).find(part), std::string::npos) << part;
  dir.Write(L"help\\narrix\\hotkey.htm", "<p>no markers</p>\n<p>here</p>");
  CliRun run = Nxmenu("export-help " + Q(dir.Fs()));
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("no '<!-- app hotkey start -->' line; the page is unchanged"), std::string::npos) << run.out;
  EXPECT_EQ(test::TempFolder::ReadPath(page), "<p>no markers</p>\n<p>here</p>");
  std::filesystem::remove(page);
  run = Nxmenu("export-help " + Q(dir.Fs()));
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("cannot be read (No such file or directory)"), std::string::npos) << run.out;
  EXPECT_FALSE(std::filesystem::exists(page));
}

}  // namespace
}  // namespace nx
