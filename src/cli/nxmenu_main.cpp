// nxmenu: menu files from the command line, for administrators who keep
// menus in version control or deploy them to many machines.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include "cli/json.h"
#include "applist/help_page.h"
#include "cli/menu_json.h"
#include "defs/def_actions.h"
#include "defs/def_text.h"
#include "menu/menu_file.h"
#include "menu/menu_help.h"
#include "menu/other_menus.h"
#include "platform/list_order.h"
#include "platform/code_page.h"
#include "platform/folders.h"
#include "platform/profile.h"
#include "startup/file_helpers.h"
#include "startup/narrix_info.h"
#include "platform/string_table.h"
#include "platform/text.h"

namespace nx {
namespace {

const char kUsage[] =
    "usage: nxmenu COMMAND [options]\n"
    "\n"
    "Commands:\n"
    "  dump MENU        show a menu file as an indented tree (or --json)\n"
    "  to-json MENU     a menu file as JSON\n"
    "  from-json JSON MENU   write a menu file from JSON\n"
    "  check PATH       report problems in a menu file or in every menu of an installation\n"
    "  format-key CODE  the text of a hot-key code\n"
    "  export-help ROOT write every menu's hot keys into the installation's help page\n"
    "\n"
    "Texts in menu files are in the ANSI code page: --codepage 1250|1252 chooses it\n"
    "(default: the system's ANSI code page on Windows, 1252 elsewhere). JSON and\n"
    "everything printed is UTF-8.\n"
    "Exit status: 0 success, 1 unusable input or problems found, 2 wrong usage.\n"
    "'nxmenu COMMAND --help' tells more about one command; 'nxmenu --version' the version.\n";

const std::map<std::string, std::string> kCommandHelp = {
    {"dump",
     "usage: nxmenu dump MENU [--braille INI] [--keys KEYCODE_DEF] [--base N] [--json] [--codepage CP]\n"
     "\n"
     "Reads MENU (a Command.mnu file) as the menu editor does and prints its tree,\n"
     "one item a line, two spaces deeper for each level:\n"
     "  CAPTION  -> ACTION  key: HOT KEY  discard  #MENUID\n"
     "(the parts after the caption only where the item has them).\n"
     "  --braille INI     braille display profile: the codes of braille-button hot keys\n"
     "                    (section Actions) and the names of its buttons (section KeyMap)\n"
     "  --keys FILE       key names for hot keys (gKeyCode.def); without it keys show as key(N)\n"
     "  --base N          the first menu id (default 256; the general menu uses 128)\n"
     "  --json            print {\"items\": [...], \"complete\": BOOL} with every item's caption,\n"
     "                    action, hotKey, discard, menuId, hotKeyText and items\n"
     "Exit status 1 when the file is missing or damaged (what could be read is still printed).\n"},
    {"to-json",
     "usage: nxmenu to-json MENU [--braille INI] [--codepage CP]\n"
     "\n"
     "Prints MENU as JSON: {\"items\": [ITEM, ...], \"complete\": BOOL}, ITEM being\n"
     "{\"caption\", \"action\", \"hotKey\", \"discard\", \"items\"}. from-json turns it back\n"
     "into the same bytes, given the same braille display profile and code page.\n"
     "A file that reads completely but is not in the form the menu editor writes (a\n"
     "level that jumps by more than one, a braille-button record whose code is not\n"
     "the profile's or that has the discard bit too) cannot come back the same: a\n"
     "one-line warning naming the file says so on standard error, and the JSON is\n"
     "printed with exit status 0 all the same.\n"
     "Exit status 1 when the file is missing or damaged.\n"},
    {"from-json",
     "usage: nxmenu from-json JSON MENU [--braille INI] [--codepage CP]\n"
     "\n"
     "Writes MENU from JSON exactly as the menu editor saves it, and the codes of\n"
     "braille-button hot keys into section Actions of the braille display profile INI.\n"
     "JSON may be - for standard input. The old MENU is replaced only by a complete new\n"
     "file. Members menuId, hotKeyText and complete are ignored, so dumps read back.\n"
     "Nothing is written (exit status 1) when the JSON is not well-formed UTF-8, when a\n"
     "caption or action holds a character the code page cannot store (the message names\n"
     "the item and the character), or when INI is there but cannot be read. A failed\n"
     "write says the system's reason.\n"},
    {"export-help",
     "usage: nxmenu export-help INSTALLATION_ROOT [--display NAME] [--codepage CP]\n"
     "Writes the hot keys of every menu of the installation (the general menu first,\n"
     "then the applications in list order) between the lines holding\n"
     "'<!-- app hotkey start -->' and '<!-- app hotkey end -->' of\n"
     "ROOT/help/narrix/hotkey.htm, as the program's Export button does, and prints\n"
     "the page's path. --display names the braille display whose profile gives\n"
     "the braille buttons' names. The page is replaced in one piece or not at all.\n"
     "Exit status 1 when the page is missing, cannot be written or has no start marker\n"
     "(such a page is left as it is).\n"},
    {"check",
     "usage: nxmenu check MENU_OR_INSTALLATION_ROOT [--braille NAME] [--codepage CP]\n"
     "\n"
     "Checks one menu file, or every menu of an installation (Set\\Command.mnu and\n"
     "Set\\*\\Command.mnu), and reports one line for each\n"
     "  hot key used by more than one item of the same menu,\n"
     "  pull-down item that carries an action or a hot key,\n"
     "  menu file that does not read completely,\n"
     "  hot key of an application's menu that shadows items of the general menu\n"
     "  (the application's item wins; checked for an installation only).\n"
     "--braille NAME reads braille codes from NAME.ini beside each menu. Key names come\n"
     "from gKeyCode.def beside the menu or one folder up. Exit status 1 when anything\n"
     "was reported. A menu that is not in the form the menu editor writes (see\n"
     "to-json --help) gets a warning on standard error, which is not counted.\n"},
    {"format-key",
     "usage: nxmenu format-key CODE [--keys KEYCODE_DEF] [--braille INI]\n"
     "\n"
     "Prints the text of a hot-key code given in decimal (negative too, as hot-key\n"
     "codes are signed 32-bit numbers) or 0x-hexadecimal, for example 0x00030074\n"
     "(C+S+F5 with key names), 0x40000005 ([Dot 1+Dot 3]) or -1073610750 (a status\n"
     "button). Arguments after -- are never taken for options.\n"},
};

void Out(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }
void Err(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stderr); }

std::string U8(const std::wstring& text) { return WideToUtf8(text); }

struct Options {
  std::vector<std::wstring> args;
  std::map<std::string, std::wstring> values;
  std::set<std::string> flags;
  bool help = false;
};

bool IsNegativeNumber(const std::string& word) {
  return word.size() > 1 && word[0] == '-' &&
         std::all_of(word.begin() + 1, word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Splits arguments into positional ones, "--name value" options and flags.
// A negative decimal number (a hot-key code) is positional, and so is
// everything after "--". False, with `error`, for an unknown option or a
// missing value.
bool ParseOptions(const std::vector<std::wstring>& in, const std::set<std::string>& withValue,
                  const std::set<std::string>& flags, Options& out, std::string& error) {
  bool optionsEnded = false;
  for (size_t i = 0; i < in.size(); ++i) {
    const std::string word = U8(in[i]);
    if (optionsEnded || IsNegativeNumber(word)) {
      out.args.push_back(in[i]);
    } else if (word == "--") {
      optionsEnded = true;
    } else if (word == "--help" || word == "-h") {
      out.help = true;
    } else if (withValue.count(word)) {
      if (i + 1 >= in.size()) {
        error = word + " needs a value";
        return false;
      }
      out.values[word] = in[++i];
    } else if (flags.count(word)) {
      out.flags.insert(word);
    } else if (word.size() > 1 && word[0] == '-' && word != "-") {
      error = "unknown option " + word;
      return false;
    } else {
      out.args.push_back(in[i]);
    }
  }
  return true;
}

std::unique_ptr<ICodePage> CodePageFor(const Options& options, std::string& error) {
  auto it = options.values.find("--codepage");
  if (it == options.values.end()) {
#ifdef _WIN32
    return nullptr;  // the system's own
#else
    return std::make_unique<BuiltinCodePage>(1252);
#endif
  }
  if (it->second == L"1250" || it->second == L"1252") return std::make_unique<BuiltinCodePage>(std::stoi(it->second));
  error = "--codepage must be 1250 or 1252";
  return nullptr;
}

// Everything a command needs to read and write menus.
struct Tools {
  std::unique_ptr<ICodePage> ownPage;
  const ICodePage* page = nullptr;
  std::unique_ptr<PortableProfile> profile;
  std::unique_ptr<cDefActions> defs;
  std::unique_ptr<cMenuFile> menus;

  bool Init(const Options& options, std::string& error) {
    ownPage = CodePageFor(options, error);
    if (!error.empty()) return false;
    page = ownPage ? ownPage.get() : &SystemCodePage();
    profile = std::make_unique<PortableProfile>(*page);
    defs = std::make_unique<cDefActions>(*page, *profile);
    menus = std::make_unique<cMenuFile>(*page, *profile);
    return true;
  }
};

std::wstring Value(const Options& options, const std::string& name) {
  auto it = options.values.find(name);
  return it == options.values.end() ? std::wstring() : it->second;
}

int UsageError(const std::string& command, const std::string& message) {
  Err("nxmenu: " + message + "\n");
  Err(command.empty() ? std::string(kUsage) : kCommandHelp.at(command));
  return 2;
}

std::wstring SafeKeyText(cDefActions& defs, const std::wstring& keys, int32_t code) {
  try {
    return defs.GetKeyCodeAsTextEx(keys, code);
  } catch (const std::exception&) {
    return L"(invalid code " + std::to_wstring(code) + L")";
  }
}

// Reads a menu for dump and to-json; null after a message when unusable.
MenuItemPtr ReadMenu(Tools& tools, const std::wstring& path, const std::wstring& braille, bool& complete) {
  if (!IsFolder(path) && PathExists(path)) {
    MenuItemPtr root = tools.menus->InitCommandDef(path, braille, &complete);
    if (!root) Err("nxmenu: " + U8(path) + ": cannot be read\n");
    if (root && !complete)
      Err("nxmenu: " + U8(path) + ": the file is damaged; only the items before the damage were read\n");
    return root;
  }
  Err("nxmenu: " + U8(path) + ": no such menu file\n");
  return nullptr;
}

// Whether from-json would write the menu read from `path` back byte for
// byte, which it cannot for a file the writer would not have made.
bool WritesBackTheSame(const Tools& tools, const std::wstring& path, const cMenuItem& root) {
  std::string bytes;
  if (!ReadFileBytes(path, bytes)) return false;
  const auto written = SerializeMenu(root, *tools.page, nullptr);
  return written && *written == bytes;
}

void WarnIfNotWritersForm(const Tools& tools, const std::wstring& path, const cMenuItem& root) {
  if (WritesBackTheSame(tools, path, root)) return;
  Err("nxmenu: warning: " + U8(path) +
      ": not in the form the menu editor writes (a level jump, or braille codes other than the profile's); "
      "from-json will not give back the same bytes\n");
}

void DumpText(const cMenuItem& root, cDefActions& defs, const std::wstring& keys) {
  WalkTree(
      root,
      [&](const cMenuItem& item, size_t level, int) {
        std::string line(level * 2, ' ');
        line += U8(item.Caption);
        if (!item.Action.empty()) line += "  -> " + U8(item.Action);
        if (item.HotKey != 0) line += "  key: " + U8(SafeKeyText(defs, keys, item.HotKey));
        if (item.Discard) line += "  discard";
        line += "  #" + std::to_string(item.MenuId) + "\n";
        Out(line);
        return true;
      },
      [](const cMenuItem&, size_t) {});
}

int Dump(const std::vector<std::wstring>& argv, bool json) {
  const std::string command = json ? "to-json" : "dump";
  Options options;
  std::string error;
  const std::set<std::string> values = json ? std::set<std::string>{"--braille", "--codepage"}
                                            : std::set<std::string>{"--braille", "--keys", "--base", "--codepage"};
  const std::set<std::string> flags = json ? std::set<std::string>{} : std::set<std::string>{"--json"};
  if (!ParseOptions(argv, values, flags, options, error)) return UsageError(command, error);
  if (options.help) return Out(kCommandHelp.at(command)), 0;
  if (options.args.size() != 1) return UsageError(command, "give one menu file");
  Tools tools;
  if (!tools.Init(options, error)) return UsageError(command, error);

  tools.menus->ItemCounter = 256;
  if (options.values.count("--base")) {
    const std::wstring base = Value(options, "--base");
    wchar_t* end = nullptr;
    const long n = std::wcstol(base.c_str(), &end, 10);
    if (base.empty() || *end || n < 0 || n > 0x7FFFFFFF) return UsageError(command, "--base must be a whole number");
    tools.menus->ItemCounter = static_cast<int32_t>(n);
  }
  const std::wstring braille = Value(options, "--braille");
  if (!braille.empty()) tools.defs->InitBrailleKeyMap(braille);
  const std::wstring keys = Value(options, "--keys");
  bool complete = true;
  MenuItemPtr root = ReadMenu(tools, options.args[0], braille, complete);
  if (!root) return 1;
  if (json || options.flags.count("--json")) {
    MenuJsonOptions jsonOptions;
    if (!json) {
      jsonOptions.withIds = true;
      jsonOptions.hotKeyText = [&](int32_t code) { return SafeKeyText(*tools.defs, keys, code); };
    }
    Out(MenuToJson(*root, complete, jsonOptions));
    if (json && complete) WarnIfNotWritersForm(tools, options.args[0], *root);
  } else {
    DumpText(*root, *tools.defs, keys);
  }
  return complete ? 0 : 1;
}

int FromJson(const std::vector<std::wstring>& argv) {
  Options options;
  std::string error;
  if (!ParseOptions(argv, {"--braille", "--codepage"}, {}, options, error)) return UsageError("from-json", error);
  if (options.help) return Out(kCommandHelp.at("from-json")), 0;
  if (options.args.size() != 2) return UsageError("from-json", "give the JSON file and the menu file");
  Tools tools;
  if (!tools.Init(options, error)) return UsageError("from-json", error);

  const std::wstring& source = options.args[0];
  std::string text;
  if (source == L"-") {
    char buffer[65536];
    for (size_t n; (n = std::fread(buffer, 1, sizeof(buffer), stdin)) > 0;) text.append(buffer, n);
  } else if (ReadFailure failure; !ReadFileBytes(source, text, &failure)) {
    Err("nxmenu: " + U8(source) + ": cannot be read (" + U8(failure.reason) + ")\n");
    return 1;
  }
  auto document = ParseJson(text, error);
  if (!document) {
    Err("nxmenu: " + U8(source) + ": not JSON: " + error + "\n");
    return 1;
  }
  MenuItemPtr root = MenuFromJson(*document, error, tools.page);
  if (!root) {
    Err("nxmenu: " + U8(source) + ": not a menu: " + error + "\n");
    return 1;
  }
  const std::wstring& menu = options.args[1];
  const std::wstring braille = Value(options, "--braille");
  WriteFailure failed;
  if (!tools.menus->FlushCommand2Def(menu, braille, *root, &failed)) {
    const std::string why = " (" + U8(failed.reason) + ")";
    if (failed.menuWritten)
      Err("nxmenu: " + U8(braille) + ": the braille codes could not be written into section Actions" + why + "; " +
          U8(menu) + " was written without them\n");
    else if (failed.file == braille && !braille.empty())
      Err("nxmenu: " + U8(braille) + ": cannot be read" + why + "; nothing was written, neither it nor " + U8(menu) +
          "\n");
    else
      Err("nxmenu: " + U8(menu) + ": cannot be written" + why + "; the old file is unchanged\n");
    return 1;
  }
  return 0;
}

// The key-name table for a menu: gKeyCode.def beside it or one folder up.
std::wstring KeyTableFor(const std::wstring& menuPath) {
  const auto folder = ToFsPath(menuPath).parent_path();
  for (const auto& candidate : {folder / "gKeyCode.def", folder.parent_path() / "gKeyCode.def"}) {
    std::error_code ec;
    if (std::filesystem::is_regular_file(candidate, ec)) return candidate.wstring();
  }
  return {};
}

// The captions as a check line names them: "A", "B".
std::string Quoted(const std::vector<std::wstring>& captions) {
  std::string text;
  for (size_t i = 0; i < captions.size(); ++i) text += (i ? ", \"" : "\"") + U8(captions[i]) + "\"";
  return text;
}

// Reports the problems of one menu; returns how many. `general` (null for
// the general menu itself, or a menu file alone) holds the general menu,
// whose items an application's hot keys shadow.
int CheckMenu(Tools& tools, const std::wstring& path, const std::wstring& displayName, cOtherMenus* general) {
  const std::wstring folder = ToFsPath(path).parent_path().wstring();
  const std::wstring braille = displayName.empty() ? L"" : (ToFsPath(folder) / (displayName + L".ini")).wstring();
  const std::wstring keys = KeyTableFor(path);
  bool complete = true;
  tools.menus->ItemCounter = 256;
  MenuItemPtr root = tools.menus->InitCommandDef(path, braille, &complete);
  const std::string name = U8(path);
  int problems = 0;
  if (!root || !complete) {
    Out(name + ": the file does not read completely (damaged or cut short)\n");
    ++problems;
    if (!root) return problems;
  } else {
    WarnIfNotWritersForm(tools, path, *root);
  }
  std::map<int32_t, std::vector<std::wstring>> byKey;
  WalkTree(
      *root,
      [&](const cMenuItem& item, size_t, int) {
        if (item.HotKey != 0) byKey[item.HotKey].push_back(item.Caption);
        if (item.SubItems.Count() > 0 && !item.Action.empty()) {
          Out(name + ": pull-down \"" + U8(item.Caption) + "\" carries the action \"" + U8(item.Action) + "\"\n");
          ++problems;
        }
        if (item.SubItems.Count() > 0 && item.HotKey != 0) {
          Out(name + ": pull-down \"" + U8(item.Caption) + "\" carries the hot key " +
              U8(SafeKeyText(*tools.defs, keys, item.HotKey)) + "\n");
          ++problems;
        }
        return true;
      },
      [](const cMenuItem&, size_t) {});
  for (const auto& [code, captions] : byKey) {
    const std::string key = name + ": hot key " + U8(SafeKeyText(*tools.defs, keys, code));
    if (captions.size() > 1) {
      Out(key + " is used by " + Quoted(captions) + "\n");
      ++problems;
    }
    const std::vector<std::wstring> shadowed = general ? general->GeneralItems(code) : std::vector<std::wstring>();
    if (!shadowed.empty()) {
      Out(key + " of " + Quoted(captions) + " shadows " + Quoted(shadowed) + " of the general menu\n");
      ++problems;
    }
  }
  return problems;
}

int Check(const std::vector<std::wstring>& argv) {
  Options options;
  std::string error;
  if (!ParseOptions(argv, {"--braille", "--codepage"}, {}, options, error)) return UsageError("check", error);
  if (options.help) return Out(kCommandHelp.at("check")), 0;
  if (options.args.size() != 1) return UsageError("check", "give a menu file or an installation folder");
  Tools tools;
  if (!tools.Init(options, error)) return UsageError("check", error);
  const std::wstring& target = options.args[0];
  const std::wstring display = Value(options, "--braille");
  if (!IsFolder(target)) {
    if (!PathExists(target)) {
      Err("nxmenu: " + U8(target) + ": no such menu file or installation\n");
      return 1;
    }
    return CheckMenu(tools, target, display, nullptr) ? 1 : 0;
  }
  const auto set = ToFsPath(target) / "Set";
  auto apps = ListSubfolders(set.wstring());
  if (!apps) {
    Err("nxmenu: " + U8(target) + ": not an installation (no Set folder)\n");
    return 1;
  }
  // The general menu, read once for all the applications' menus.
  cDefServer defs(*tools.page, *tools.profile, set.wstring() + L"\\");
  cOtherMenus general(defs, {set.wstring(), L"", display, false});
  int problems = 0;
  if (PathExists((set / "Command.mnu").wstring()))
    problems += CheckMenu(tools, (set / "Command.mnu").wstring(), display, nullptr);
  std::sort(apps->begin(), apps->end());
  for (const auto& app : *apps) {
    const auto menu = set / app / "Command.mnu";
    if (PathExists(menu.wstring())) problems += CheckMenu(tools, menu.wstring(), display, &general);
  }
  return problems ? 1 : 0;
}

int FormatKey(const std::vector<std::wstring>& argv) {
  Options options;
  std::string error;
  if (!ParseOptions(argv, {"--keys", "--braille"}, {}, options, error)) return UsageError("format-key", error);
  if (options.help) return Out(kCommandHelp.at("format-key")), 0;
  if (options.args.size() != 1) return UsageError("format-key", "give one code");
  const std::wstring text = options.args[0];
  int64_t value = 0;
  bool ok = !text.empty();
  if (ok && (text.rfind(L"0x", 0) == 0 || text.rfind(L"0X", 0) == 0)) {
    const auto hex = ParseHex32(text.substr(2));
    ok = hex.has_value() && text.size() > 2;
    value = hex.value_or(0);
  } else if (ok) {
    wchar_t* end = nullptr;
    value = std::wcstoll(text.c_str(), &end, 10);
    ok = *end == L'\0' && value >= INT32_MIN && value <= static_cast<int64_t>(UINT32_MAX);
  }
  if (!ok) return UsageError("format-key", U8(text) + " is not a code (decimal or 0x-hexadecimal, 32 bits)");
  Tools tools;
  tools.Init(options, error);
  const std::wstring braille = Value(options, "--braille");
  if (!braille.empty()) tools.defs->InitBrailleKeyMap(braille);
  int32_t code = static_cast<int32_t>(static_cast<uint32_t>(value));
  try {
    Out(U8(tools.defs->GetKeyCodeAsTextEx(Value(options, "--keys"), code)) + "\n");
  } catch (const std::exception&) {
    Err("nxmenu: " + U8(text) + ": not a hot-key code that a menu can hold\n");
    return 1;
  }
  return 0;
}

int ExportHelp(const std::vector<std::wstring>& argv) {
  Options options;
  std::string error;
  if (!ParseOptions(argv, {"--display", "--codepage"}, {}, options, error)) return UsageError("export-help", error);
  if (options.help) return Out(kCommandHelp.at("export-help")), 0;
  if (options.args.size() != 1) return UsageError("export-help", "give the installation folder");
  Tools tools;
  if (!tools.Init(options, error)) return UsageError("export-help", error);
  const std::wstring& root = options.args[0];
  const std::wstring dirSet = JoinPath(root, kSetFolder);
  auto apps = ListSubfolders(dirSet);
  if (!apps) {
    Err("nxmenu: " + U8(root) + ": not an installation (no Set folder)\n");
    return 1;
  }
  // The application list's order: the general menu, then the folders as the list box sorts them.
  std::stable_sort(apps->begin(), apps->end(), ListOrderLess);
  const std::wstring display = Value(options, "--display");
  cDefServer defs(*tools.page, *tools.profile, dirSet + L"\\");
  std::wstring text = MenuHelpSection(defs, {dirSet, LoadResText(504), display, true});
  for (const auto& app : *apps) text += MenuHelpSection(defs, {dirSet, app, display, false});
  const std::wstring page = HelpPagePath(root);
  std::wstring reason;
  switch (UpdateHelpPage(page, text, *tools.page, PageWithoutMarker::LeaveAlone, &reason)) {
    case HelpPageResult::Updated:
      Out(ToFsPath(page).u8string() + "\n");
      return 0;
    case HelpPageResult::NoStartMarker:
      Err("nxmenu: " + U8(page) + ": no '" + kHelpStartMarker + "' line; the page is unchanged, nothing exported\n");
      return 1;
    case HelpPageResult::Unreadable:
      Err("nxmenu: " + U8(page) + ": cannot be read (" + U8(reason) + "); nothing exported\n");
      return 1;
    case HelpPageResult::Unwritable:
      Err("nxmenu: " + U8(page) + ": cannot be written (" + U8(reason) + "); the page is unchanged\n");
      return 1;
  }
  return 1;
}

int Main(const std::vector<std::wstring>& args) {
  if (args.empty()) return UsageError("", "no command");
  const std::string command = U8(args[0]);
  const std::vector<std::wstring> rest(args.begin() + 1, args.end());
  if (command == "--help" || command == "-h" || command == "help") return Out(kUsage), 0;
  if (command == "--version") return Out("nxmenu " NX_VERSION "\n"), 0;  // the build's version
  if (command == "dump") return Dump(rest, false);
  if (command == "to-json") return Dump(rest, true);
  if (command == "from-json") return FromJson(rest);
  if (command == "check") return Check(rest);
  if (command == "format-key") return FormatKey(rest);
  if (command == "export-help") return ExportHelp(rest);
  return UsageError("", "unknown command " + command);
}

}  // namespace
}  // namespace nx

#ifdef _WIN32
int wmain(int argc, wchar_t** argv) {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stdin), _O_BINARY);
  std::vector<std::wstring> args(argv + 1, argv + argc);
#else
int main(int argc, char** argv) {
  std::vector<std::wstring> args;
  for (int i = 1; i < argc; ++i) args.push_back(nx::Utf8ToWide(argv[i]));
#endif
  try {
    return nx::Main(args);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "nxmenu: %s\n", e.what());
    return 1;
  }
}
