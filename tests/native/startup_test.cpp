#include <gtest/gtest.h>

#include "platform/folders.h"
#include "platform/text.h"
#include "startup/command_line.h"
#include "startup/file_helpers.h"
#include "startup/narrix_info.h"
#include "startup/settings.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

TEST(Settings, RegistryValuesAndDefaults) {
  MemoryRegistry reg;
  reg.WriteString(L"SOFTWARE\\Velkor\\NarrixXP", L"Empty", L"");
  reg.WriteString(L"SOFTWARE\\Velkor\\NarrixXP", L"Name", L"x");
  reg.WriteString(L"SOFTWARE\\Velkor\\NarrixXP\\Lens", L"BufferSize", L"12");
  EXPECT_EQ(GetRegValue(reg, kProductKey, L"", L"Empty", L"def"), L"def");
  EXPECT_EQ(GetRegValue(reg, kProductKey, L"", L"name", L"def"), L"x");
  EXPECT_EQ(GetRegValue(reg, L"SOFTWARE\\Velkor\\", L"NarrixXP", L"Name", L"def"), L"x");
  EXPECT_EQ(GetRegValue(reg, kMakerKey, L"NarrixXP", L"Missing", L"def"), L"def");
  EXPECT_EQ(GetRegNumber(reg, kProductKey, L"Lens", L"BufferSize", 10), 12);
  EXPECT_EQ(GetRegNumber(reg, kProductKey, L"", L"Name", 10), 10);
  SetRegValue(reg, kProductKey, L"Sub", L"V", L"1");
  EXPECT_TRUE(GetRegBool(reg, kProductKey, L"Sub", L"V", false));
}

TEST(FileHelpers, PathsAndCommands) {
  EXPECT_EQ(FileTitleOf(L"C:\\Scripts\\Mail.vbs"), L"Mail.vbs");
  EXPECT_EQ(FileTitleOf(L"Mail.vbs"), L"Mail.vbs");
  EXPECT_EQ(FolderOf(L"C:\\Scripts\\Mail.vbs"), L"C:\\Scripts");
  EXPECT_EQ(FolderOf(L"Mail.vbs"), L"");
  const struct {
    const wchar_t *text, *paren, *shell;
  } cases[] = {
      {L"Shell(WScript C:\\Scripts\\Mail.vbs)", L"WScript C:\\Scripts\\Mail.vbs", L"mail.vbs"},
      {L"shell(notepad x.txt)", L"notepad x.txt", L"notepad x.txt"},
      {L"SHELL(\"$(appsetdir)\\Čtečka.exe\" /a)", L"\"$(appsetdir)\\Čtečka.exe\" /a",
       L"\"$(appsetdir)\\čtečka.exe\" /a"},
      {L"shell(calc (sci))", L"calc (sci)", L"calc (sci)"},
      {L"shellnotepad", L"shellnotepad", L"notepad"},
      {L"run x", L"run x", L""},
      {L"SayLine", L"SayLine", L""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ParenContent(c.text), c.paren) << WideToUtf8(c.text);
    EXPECT_EQ(ShellCommandOf(c.text), c.shell) << WideToUtf8(c.text);
  }
}

TEST(FileHelpers, MakePathCreatesEveryMissingFolder) {
  test::TempFolder dir;
  const std::wstring deep = dir.Path(L"My Documents\\Work\\Deeper");
  MakePath(deep);
  EXPECT_TRUE(IsFolder(deep));
  EXPECT_TRUE(FileExists(dir.Path(L"My Documents")));
  EXPECT_FALSE(FileExists(dir.Path(L"nothing")));
  EXPECT_FALSE(FileExists(L""));
}

class NarrixInfoTest : public ::testing::Test {
 protected:
  MemoryRegistry reg_;
  cNarrixInfo info_{reg_, L"C:\\Program Files\\Narrix"};
  void Product(const wchar_t* name, const wchar_t* value) { reg_.WriteString(kProductKey, name, value); }
};

TEST_F(NarrixInfoTest, WithoutRegistryEverythingComesFromTheExecutableFolder) {
  info_.Inicialize(nullptr);
  EXPECT_EQ(info_.DirVelkor(), L"C:\\Program Files\\Narrix");
  EXPECT_EQ(info_.DirNx(), L"C:\\Program Files\\Narrix");
  EXPECT_EQ(info_.DirSet(), L"C:\\Program Files\\Narrix\\Set");
  EXPECT_EQ(info_.DirSound(), L"C:\\Program Files\\Narrix\\Sound");
  EXPECT_FALSE(info_.ExitDirect());
  EXPECT_TRUE(info_.SRflag());
  EXPECT_EQ(info_.AppViewer(), L"notepad %1");
  EXPECT_EQ(info_.AppEditor(), L"notepad %1");
  EXPECT_EQ(info_.AppHelpViewer(), L"c:\\Program Files\\Internet Explorer\\IEXPLORE.EXE \"%1\"");
  EXPECT_EQ(info_.AppClipboardViewer(), L"c:\\Velkor98\\parlo.exe /CB");
  EXPECT_EQ(info_.FileNameHelp(L"index"), L"C:\\Program Files\\Narrix\\Help\\index.htm");
  EXPECT_EQ(info_.GetLogFilter(), 0xFFu);
  EXPECT_EQ(info_.VideoBufferSize(), 8);
  EXPECT_EQ(info_.TextMaxLen(), 3000);
  EXPECT_EQ(info_.LensBufferSize(L"fLens"), 10);
  EXPECT_FALSE(info_.FormVisibility(L"fLens"));
  test::TempFolder dir;  // work files go to My Documents, whose folder is made
  reg_.WriteString(L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", L"Personal", dir.Path());
  info_.Inicialize(nullptr);
  EXPECT_EQ(info_.FileNameWork(), dir.Path(L"Work\\Info.txt"));
  EXPECT_TRUE(IsFolder(dir.Path(L"Work")));
}

TEST_F(NarrixInfoTest, RegistryValuesWin) {
  int form = 0;
  Product(L"Path", L"C:\\Reader\\");
  Product(L"NxPath", L"D:\\Nx");
  Product(L"AppViever", L"view %1");
  Product(L"AppHelpViever", L"help \"%1\"");
  Product(L"FileHelp", L"Doc\\%1\\%1.htm");
  Product(L"ScreenReaderFlag", L"0");
  Product(L"ExitDirect", L"1");  // in the wrong key: ignored
  Product(L"LogKey", L"0");
  info_.Inicialize(&form);
  EXPECT_EQ(info_.frmMain(), &form);
  EXPECT_EQ(info_.DirVelkor(), L"C:\\Reader");
  EXPECT_EQ(info_.DirSet(), L"C:\\Reader\\Set");
  EXPECT_EQ(info_.DirNx(), L"D:\\Nx");
  EXPECT_EQ(info_.AppViewer(), L"view %1");
  EXPECT_EQ(info_.AppHelpViewer(), L"help \"%1\"");
  EXPECT_EQ(info_.FileNameHelp(L"keys"), L"C:\\Reader\\Doc\\keys\\keys.htm");
  EXPECT_FALSE(info_.SRflag());
  EXPECT_FALSE(info_.ExitDirect());
  EXPECT_EQ(info_.GetLogFilter(), 0xFFu & ~kLogKey);
  EXPECT_EQ(info_.LogFlags(), 0xFFu & ~kLogKey);

  reg_.WriteString(kMakerKey, L"ExitDirect", L"1");
  info_.Inicialize(&form);
  EXPECT_TRUE(info_.ExitDirect());
  Product(L"Path", L"C:\\Reader\\\\");  // only one trailing backslash is dropped
  info_.Inicialize(nullptr);
  EXPECT_EQ(info_.DirVelkor(), L"C:\\Reader\\");
}

TEST_F(NarrixInfoTest, FontsAndVisibilityOfOtherWindows) {
  TextBoxFont current;
  current.size = 12;
  current.name = L"Courier";
  EXPECT_EQ(info_.TextBoxFontLoad(L"fText", current).name, L"Arial");  // nothing stored: "Arial"
  EXPECT_EQ(info_.TextBoxFontLoad(L"fText", current).size, 12);
  TextBoxFont stored;
  stored.name = L"Verdana";
  stored.bold = true;
  stored.fontColor = 255;
  info_.TextBoxFontSave(L"fText", stored);
  const TextBoxFont loaded = info_.TextBoxFontLoad(L"fText", current);
  EXPECT_EQ(loaded.name, L"Verdana");
  EXPECT_TRUE(loaded.bold);
  EXPECT_EQ(loaded.fontColor, 255);
  int shown = 0;
  info_.FormVisibilityLoad(L"fText", [&] { ++shown; });
  info_.FormVisibilitySave(L"fText", true);
  info_.FormVisibilityLoad(L"fText", [&] { ++shown; });
  EXPECT_EQ(shown, 1);
}

TEST(CommandLine, Splitting) {
  const struct {
    const wchar_t* args;
    const wchar_t* app;
    std::optional<std::wstring> script, display;
  } cases[] = {
      {L"notepad*C:\\s\\a.vbs/Focus 40", L"notepad", L"C:\\s\\a.vbs", L"Focus 40"},
      {L"  winword  ", L"winword", std::nullopt, std::nullopt},
      {L"/Focus 40", L"", std::nullopt, L"Focus 40"},
      {L" excel / Focus 40 ", L"excel", std::nullopt, L"Focus 40"},
      {L"excel * D:\\x.vbs", L"excel", L"D:\\x.vbs", std::nullopt},
      {L"a/b/c", L"a", std::nullopt, L"b/c"},
      {L"", L"", std::nullopt, std::nullopt},
      {L"\"notepad*$(appsetdir)\\hello.vbs\"", L"notepad", L"$(appsetdir)\\hello.vbs", std::nullopt},
      {L"notepad*\"C:\\My Scripts\\a.vbs\" / \"Focus 40\"", L"notepad", L"C:\\My Scripts\\a.vbs", L"Focus 40"},
  };
  for (const auto& c : cases) {
    const CommandLineRequest r = ParseCommandLine(c.args);
    EXPECT_EQ(r.appName, c.app) << WideToUtf8(c.args);
    EXPECT_EQ(r.scriptPath, c.script) << WideToUtf8(c.args);
    EXPECT_EQ(r.displayName, c.display) << WideToUtf8(c.args);
  }
  EXPECT_EQ(ArgumentsOf(L"\"C:\\Program Files\\x.exe\"  notepad/Focus 40"), L"notepad/Focus 40");
  EXPECT_EQ(ArgumentsOf(L"x.exe notepad"), L"notepad");
  EXPECT_EQ(ArgumentsOf(L"x.exe"), L"");
}

TEST(StringTable, EveryIdInBothLanguages) {
  std::vector<int> ids;
  for (auto* e = StringTableBegin(); e != StringTableEnd(); ++e) {
    ids.push_back(e->id);
    EXPECT_NE(std::wstring(e->english), L"") << e->id;
    EXPECT_NE(std::wstring(e->czech), L"") << e->id;
    // A placeholder in one language must be in the other too.
    EXPECT_EQ(std::wstring(e->english).find(L"%1") == std::wstring::npos,
              std::wstring(e->czech).find(L"%1") == std::wstring::npos)
        << e->id;
  }
  std::vector<int> expected;
  for (auto [from, to] : {std::pair{100, 107},
                          {501, 505},
                          {601, 606},
                          {608, 617},
                          {630, 636},
                          {640, 648},  // ours: preview, damaged file, failed save, moving, the wizard's extras
                          {650, 669},  // ours: the folder buttons, their messages, the editor's refusals
                          {670, 674},  // ours: what a menu file cannot hold
                          {700, 715},
                          {717, 726},  // 726: ours, a character the code page lacks
                          {1050, 1050},
                          {2050, 2053},
                          {5025, 5029}})
    for (int id = from; id <= to; ++id) expected.push_back(id);
  EXPECT_EQ(ids, expected);
}

TEST(StringTable, TextsAndPlaceholders) {
  EXPECT_EQ(LoadResText(999), L"");
  EXPECT_EQ(LoadResText(612), L"&Edit\tAlt+ENTER");
  setenv("LC_ALL", "sk_SK.UTF-8", 1);  // Slovak reads the Czech texts
  EXPECT_EQ(LoadResText(501), L"Úprava nabídky");
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(TableText(1050, UiLanguage::Czech), L"Špatná instalace programu.");
  EXPECT_EQ(ReplaceAll(TableText(505, UiLanguage::Czech), L"%1", L"winword"),
            L"Vytvořit novou nabídku pro \"winword\"?");
}

}  // namespace
}  // namespace nx
