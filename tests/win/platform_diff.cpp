// Runs the portable implementations beside the Windows ones on the same
// input and reports every difference: profile reads (also after writes, and
// a batch of keys written at once against Windows' writes one by one),
// the built-in code pages, and the compiled string tables.
// Usage: platform_diff WORK_FOLDER
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/code_page.h"
#include "platform/folders.h"
#include "platform/list_order.h"
#include "platform/profile.h"
#include "platform/text.h"
#include "menu/menu_item.h"
#include "platform/win32/native_menus.h"
#include "platform/win32/profile.h"
#include "platform/string_table.h"

namespace {

int passed = 0, failed = 0;

void Check(bool same, const std::string& what) {
  if (same) {
    ++passed;
  } else {
    ++failed;
    std::printf("DIFFERENT: %s\n", what.c_str());
  }
}

std::string Show(const std::wstring& s) { return "\"" + nx::WideToUtf8(s) + "\""; }

const char* const kFiles[] = {
    "[section1]\r\nname1=val1\r\nname2=\"val2\"\r\nname3\r\nname4=a\r\n[section2]\r\n",
    "junk\r\n[ section1 ]\r\n  name1  =  spaced value  \r\nempty=\r\nq1='x'\r\nq2=\"\r\nq3=\"a'\r\n=nokey\r\n",
    "[dup]\r\nk=first\r\nk=second\r\n[DUP]\r\nk=third\r\nother=in second\r\n",
    "[cr]\rk=cr only\r[lf]\nk=lf only\n\n\n[tab]\n\tk\t=\tv\t\n",
    "; comment\r\n[c]\r\n;k=commented\r\nk2=v2 ; not a comment\r\n#k3=hash\r\n",
    "[n]\r\nminus=-1\r\nplus=+1\r\nwrap=4294967296\r\nwrap1=4294967297\r\ntrail=42A94967297\r\nlead=B4294967297\r\n"
    "blank=  7 \r\nempty=\r\nquoted=\"12\"\r\nneg= -5\r\nbig=99999999999999999999\r\n",
    "[bad\r\nk=in bad\r\n[]\r\nk=in empty\r\n[ok]]\r\nk=odd\r\n",
    "[NoBreak]\r\nlast=at end",
    "",
    // Letters outside ASCII at the same places in code pages 1250 and 1252.
    "[Sk\xe1r\xe9]\r\nN\xe1zev=hodnota \xe9\xed \x8a\x9e\r\n\x8e\x9alut\xe9=k\xf9\r\nodd=x\x81y\r\n",
};

struct Query {
  const wchar_t *section, *key, *def;
};

const Query kQueries[] = {
    {L"section1", L"name1", L"d"},
    {L"SECTION1", L"NaMe1", L"d"},
    {L" section1 ", L" name1 ", L"d"},
    {L"section1", L"name2", L"d"},
    {L"section1", L"name3", L"d"},
    {L"section1", L"name4", L"d"},
    {L"section1", L"empty", L"d"},
    {L"section1", L"q1", L"d"},
    {L"section1", L"q2", L"d"},
    {L"section1", L"q3", L"d"},
    {L"section1", L"", L"d"},
    {L"", L"name1", L"d"},
    {L"section1", L"x", L"def  "},
    {L"dup", L"k", L"d"},
    {L"dup", L"other", L"d"},
    {L"cr", L"k", L"d"},
    {L"lf", L"k", L"d"},
    {L"tab", L"k", L"d"},
    {L"c", L"k", L"d"},
    {L"c", L";k", L"d"},
    {L"c", L"k2", L"d"},
    {L"c", L"#k3", L"d"},
    {L"bad", L"k", L"d"},
    {L"", L"k", L"d"},
    {L"ok]", L"k", L"d"},
    {L"ok", L"k", L"d"},
    {L"NoBreak", L"last", L"d"},
    {L"n", L"minus", L"d"},
    {L"section2", L"any", L"d"},
    {L"missing", L"k", L""},
    // Spelt as in the file: Wine folds only ASCII letters when it compares
    // names, while Windows promises case-insensitive names without limits and
    // the portable reader folds every letter (tested natively).
    {L"Sk\u00e1r\u00e9", L"N\u00e1zev", L"d"},
    {L"Sk\u00e1r\u00e9", L"\u017d\u0161lut\u00e9", L"d"},
    {L"Sk\u00e1r\u00e9", L"odd", L"d"},
    {L"Sk\u00e1r\u00e9", L"", L"d"},
};

const wchar_t* const kIntKeys[] = {L"minus", L"plus",  L"wrap",   L"wrap1", L"trail", L"lead",
                                   L"blank", L"empty", L"quoted", L"neg",   L"big",   L"missing"};

void CompareReads(const nx::Win32Profile& win, const nx::PortableProfile& portable, const std::wstring& winFile,
                  const std::wstring& portableFile, const std::string& label) {
  for (const Query& q : kQueries) {
    for (size_t size : {size_t{1024}, size_t{4}, size_t{1}}) {
      const std::wstring a = win.GetString(q.section, q.key, q.def, winFile, size);
      const std::wstring b = portable.GetString(q.section, q.key, q.def, portableFile, size);
      Check(a == b, label + " [" + nx::WideToUtf8(q.section) + "] " + nx::WideToUtf8(q.key) + " size " +
                        std::to_string(size) + ": Windows " + Show(a) + ", portable " + Show(b));
    }
  }
  for (const wchar_t* key : kIntKeys) {
    const int a = win.GetInt(L"n", key, 5, winFile), b = portable.GetInt(L"n", key, 5, portableFile);
    Check(a == b,
          label + " int " + nx::WideToUtf8(key) + ": Windows " + std::to_string(a) + ", portable " + std::to_string(b));
  }
}

void ProfileReads(const std::wstring& work) {
  nx::Win32Profile win;
  nx::PortableProfile portable(nx::SystemCodePage());
  const std::wstring missing = work + L"\\missing.ini";
  CompareReads(win, portable, missing, missing, "missing file");
  int index = 0;
  for (const char* content : kFiles) {
    const std::wstring file = work + L"\\read" + std::to_wstring(index) + L".ini";
    nx::WriteFileBytes(file, content);
    std::string label = "file " + std::to_string(index++);
    CompareReads(win, portable, file, file, label);
  }
  const std::wstring longFile = work + L"\\long.ini";
  nx::WriteFileBytes(longFile, "[s]\r\nk=" + std::string(1500, 'x') + "\r\n");
  Check(win.GetString(L"s", L"k", L"", longFile) == portable.GetString(L"s", L"k", L"", longFile),
        "1024-character truncation");
}

void ProfileWrites(const std::wstring& work) {
  struct Write {
    const wchar_t* section;
    std::optional<std::wstring> key, value;
  };
  const Write writes[] = {
      {L"section1", L"name1", L"changed"},
      {L"section1", L"added", L"new"},
      {L"fresh", L"k", L"v"},
      {L"SECTION1", L"NAME2", L""},
      {L"section1", L"name4", std::nullopt},
      {L"dup", L"k", L"rewritten"},
      {L"section2", std::nullopt, std::nullopt},
      {L"n", L"minus", L"0x10"},
      {L"NoBreak", L"next", L"line"},
  };
  nx::Win32Profile win;
  nx::PortableProfile portable(nx::SystemCodePage());
  const std::wstring a = work + L"\\win.ini", b = work + L"\\portable.ini";
  const std::string start = std::string(kFiles[0]) + kFiles[2] + kFiles[5] + kFiles[7];
  nx::WriteFileBytes(a, start);
  nx::WriteFileBytes(b, start);
  int step = 0;
  for (const Write& w : writes) {
    const bool okA = win.WriteString(w.section, w.key, w.value, a);
    const bool okB = portable.WriteString(w.section, w.key, w.value, b);
    Check(okA == okB, "write " + std::to_string(step) + " result");
    CompareReads(win, portable, a, b, "after write " + std::to_string(step++));
  }
  const std::wstring fresh = work + L"\\new.ini";
  Check(win.WriteString(L"s", L"k", L"v", fresh) && portable.GetString(L"s", L"k", L"", fresh) == L"v",
        "a written file reads back");
}

// A save writes all its braille codes into the profile at once: the file
// must come out as Windows' own writes of the same codes one by one leave it.
// Wine writes a whole profile back in a layout of its own (no blank lines, no
// blanks around "="), so the bytes are compared on files already in that
// layout, and what reads back on files in any other.
void ProfileBatchWrites(const std::wstring& work) {
  const std::vector<std::pair<std::wstring, std::wstring>> codes = {
      {L"SayLine", L"4000"},
      {L"Beep", L"12A"},
      {L"New one", L"1"},
      {L"N\u00e1zev \u00e9", L"7"},
      {L"shell(wscript.exe \"$(appsetdir)\\a.vbs\")", L"F"},
      {L"New one", L"2"}};
  const struct {
    const char* start;  // null: no file yet
    bool sameLayout;
  } files[] = {
      {nullptr, true},
      {"", true},
      {";Focus 40\r\n[KeyMap]\r\n1=Dot 1\r\n2=Dot 2\r\nCursorStatus=Routing %1\r\n[Actions]\r\nSayLine=3\r\nBeep=5\r\n"
       "[Other]\r\nk=v\r\n",
       true},
      {"[KeyMap]\r\n1=Dot 1", true},
      {"; Focus 40\r\n[KeyMap]\r\n1 = Dot 1\r\n\t2=Dot 2\r\n\r\n[Actions]\r\n  SayLine =  3 "
       "\r\nbeep=5\r\n\r\n\r\n[Other]\r\n"
       "k=v",
       false},
  };
  nx::Win32Profile win;
  nx::PortableProfile portable(nx::SystemCodePage());
  int index = 0;
  for (const auto& file : files) {
    const std::string label = "batch " + std::to_string(index);
    const std::wstring a = work + L"\\batch-win" + std::to_wstring(index) + L".ini",
                       b = work + L"\\batch-portable" + std::to_wstring(index++) + L".ini";
    DeleteFileW(a.c_str());
    DeleteFileW(b.c_str());
    if (file.start) {
      nx::WriteFileBytes(a, file.start);
      nx::WriteFileBytes(b, file.start);
    }
    bool written = true;
    for (const auto& [key, value] : codes) written = win.WriteString(L"Actions", key, value, a) && written;
    nx::ProfileDocument document(nx::SystemCodePage());
    written =
        portable.Load(b, document) && document.WriteKeys(L"Actions", codes) && portable.Save(b, document) && written;
    Check(written, label + " written");
    std::string bytesA, bytesB;
    nx::ReadFileBytes(a, bytesA);
    nx::ReadFileBytes(b, bytesB);
    if (file.sameLayout) Check(bytesA == bytesB, label + ": Windows \"" + bytesA + "\", portable \"" + bytesB + "\"");
    for (const wchar_t* key : {L"SayLine", L"Beep", L"New one", L"N\u00e1zev \u00e9", L"1", L"2", L"k"})
      for (const wchar_t* section : {L"Actions", L"KeyMap", L"Other"}) {
        const std::wstring x = win.GetString(section, key, L"d", a), y = portable.GetString(section, key, L"d", b);
        Check(x == y, label + " [" + nx::WideToUtf8(section) + "] " + nx::WideToUtf8(key) + ": Windows " + Show(x) +
                          ", portable " + Show(y));
      }
  }
}

void CodePages() {
  for (unsigned id : {1250u, 1252u}) {
    nx::BuiltinCodePage builtin(id);
    for (int byte = 0; byte < 256; ++byte) {
      const char c = static_cast<char>(byte);
      wchar_t wide = 0;
      MultiByteToWideChar(id, 0, &c, 1, &wide, 1);
      const std::wstring mine = builtin.ToWide(std::string(1, c));
      Check(mine.size() == 1 && mine[0] == wide, "code page " + std::to_string(id) + " byte " + std::to_string(byte));
    }
  }
}

std::wstring ResourceString(int id, LANGID language) {
  // Strings live in bundles of 16, in resource id / 16 + 1.
  HRSRC res = FindResourceExW(nullptr, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), language);
  if (!res) return L"(no bundle)";
  const auto* p = static_cast<const wchar_t*>(LockResource(LoadResource(nullptr, res)));
  for (int i = 0; i < id % 16; ++i) p += 1 + *p;
  return std::wstring(p + 1, *p);
}

void StringTables() {
  const struct {
    LANGID id;
    nx::UiLanguage table;
  } languages[] = {{MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), nx::UiLanguage::English},
                   {MAKELANGID(LANG_CZECH, SUBLANG_DEFAULT), nx::UiLanguage::Czech},
                   {MAKELANGID(LANG_SLOVAK, SUBLANG_DEFAULT), nx::UiLanguage::Czech}};
  for (const auto& language : languages) {
    for (auto* e = nx::StringTableBegin(); e != nx::StringTableEnd(); ++e) {
      const std::wstring res = ResourceString(e->id, language.id), table = nx::TableText(e->id, language.table);
      Check(res == table, "string " + std::to_string(e->id) + " language " + std::to_string(language.id) +
                              ": resource " + Show(res) + ", table " + Show(table));
    }
  }
}

std::wstring MenuLabel(HMENU menu, UINT position) {
  char text[256] = {};
  GetMenuStringA(menu, position, text, sizeof(text), MF_BYPOSITION);
  return nx::SystemCodePage().ToWide(text);
}

// A tree made into a real pop-up menu reads back as the tree.
void NativeMenus() {
  auto root = nx::cMenuItem::New();
  auto file = root->SubItems.Add(1, root.get(), nx::cMenuItem::New());
  file->Caption = L"Soubor";
  auto open = file->SubItems.Add(1, file.get(), nx::cMenuItem::New());
  open->Caption = L"Open";
  open->MenuId = 257;
  open->HotKey = 1;
  auto quit = root->SubItems.Add(1, root.get(), nx::cMenuItem::New());
  quit->Caption = L"Quit";
  quit->MenuId = 258;
  nx::Win32NativeMenus menus;
  auto text = [](int32_t code) { return code ? std::wstring(L"C+O") : std::wstring(); };
  for (int round = 0; round < 2; ++round) {  // the second build replaces the first
    HMENU popup = reinterpret_cast<HMENU>(root->CreateMenu(menus, text));
    Check(IsMenu(popup) && GetMenuItemCount(popup) == 2, "pop-up with two entries");
    HMENU sub = GetSubMenu(popup, 0);
    Check(sub && MenuLabel(popup, 0) == L"Soubor", "submenu entry " + Show(MenuLabel(popup, 0)));
    Check(sub && GetMenuItemID(sub, 0) == 257 && MenuLabel(sub, 0) == L"Open	C+O",
          "command entry " + Show(MenuLabel(sub, 0)));
    Check(GetMenuItemID(popup, 1) == 258 && MenuLabel(popup, 1) == L"Quit", "second entry");
  }
  HMENU last = reinterpret_cast<HMENU>(root->CreateMenu(menus, text));
  root->DestroyMenu();
  Check(!IsMenu(last), "DestroyMenu destroys the pop-up");
}

// Names as they stand in an installation's Set folder.
void ListOrder() {
  std::vector<std::wstring> names;
  const std::wstring all =
      L"(Narrix)|0calc|9lives|acrobat|excel|EXCEL2|Excel|notepad|winword|winword_ver.11.0|"
      L"winwordviewer|co-op|coop|cota|co-ty|a b|a.b|ab|\u00e1bc|abd|zz|\u017ealm|Zoo";
  for (size_t start = 0, bar; start <= all.size(); start = bar + 1) {
    bar = std::min(all.find(L'|', start), all.size());
    names.push_back(all.substr(start, bar - start));
  }
  // The portable order follows English rules; Czech puts letters with a caron
  // after their base letter.
  const bool english = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_ENGLISH;
  for (const std::wstring& a : names)
    for (const std::wstring& b : names) {
      if (!english && (a == L"\u017ealm" || b == L"\u017ealm")) continue;
      const bool win = nx::ListOrderLess(a, b), portable = nx::PortableListOrderLess(a, b);
      Check(win == portable, "list order " + nx::WideToUtf8(a) + " < " + nx::WideToUtf8(b) + ": Windows " +
                                 std::to_string(win) + ", portable " + std::to_string(portable));
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) {
    std::printf("usage: platform_diff WORK_FOLDER\n");
    return 2;
  }
  const std::wstring work = argv[1];
  ProfileReads(work);
  ProfileWrites(work);
  ProfileBatchWrites(work);
  CodePages();
  StringTables();
  NativeMenus();
  ListOrder();
  std::printf("%d passed, %d failed\n", passed, failed);
  return failed == 0 ? 0 : 1;
}
