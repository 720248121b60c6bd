#include <gtest/gtest.h>

#include <cwchar>

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

// An empty value counts as none; names ignore case; a subkey joins the key.
TEST(Settings, RegistryValuesAndDefaults) {
  MemoryRegistry reg;
  reg.WriteString(L"SOFTWARE\\Velkor\\NarrixXP", L"Empty", L"");
  reg.WriteString(L"SOFTWARE\\Velkor\\NarrixXP", L"Name", L"x");
  reg.WriteString(L"SOFTWARE\\Velkor\\NarrixXP\\Lens", L"BufferSize", L"12");
  SetRegValue(reg, kProductKey, L"Sub", L"V", L"1");
  EXPECT_EQ(GetRegValue(reg, kProductKey, L"", L"Empty", L"def") + GetRegValue(reg, kProductKey, L"", L"name", L"-") +
                GetRegValue(reg, L"SOFTWARE\\Velkor\\", L"NarrixXP", L"Name", L"-") +
                GetRegValue(reg, kMakerKey, L"NarrixXP", L"Missing", L"def") +
                std::to_wstring(GetRegNumber(reg, kProductKey, L"Lens", L"BufferSize", 10)) +
                std::to_wstring(GetRegNumber(reg, kProductKey, L"", L"Name", 10)) +
                std::to_wstring(GetRegBool(reg, kProductKey, L"Sub", L"V", false)),
            L"defxxdef12101");
}

TEST(FileHelpers, PathsAndCommands) {
  EXPECT_EQ(FileTitleOf(L"Mail.vbs") + L"|" + FolderOf(L"C:\\Scripts\\Mail.vbs") + L"|" + FolderOf(L"Mail.vbs"),
            L"Mail.vbs|C:\\Scripts|");
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

class NarrixInfoTest : public ::testing::Test {
 protected:
  MemoryRegistry reg_;
  cNarrixInfo info_{reg_, L"C:\\Program Files\\Narrix"};
  void Product(const wchar_t* name, const wchar_t* value) { reg_.WriteString(kProductKey, name, value); }
  // The folders, programs and numbers the installation answers with.
  std::wstring Described() {
    return info_.DirVelkor() + L"|" + info_.DirNx() + L"|" + info_.DirSet() + L"|" + info_.DirSound() + L"|" +
           info_.AppViewer() + L"|" + info_.AppHelpViewer() + L"|" + info_.AppEditor() + L"|" +
           info_.AppClipboardViewer() + L"|" + info_.FileNameHelp(L"keys") + L"|" + (info_.ExitDirect() ? L"x" : L"-") +
           (info_.SRflag() ? L"s" : L"-") + L"|" + std::to_wstring(info_.GetLogFilter()) + L"|" +
           std::to_wstring(info_.VideoBufferSize()) + L" " + std::to_wstring(info_.TextMaxLen()) + L" " +
           std::to_wstring(info_.LensBufferSize(L"fLens"));
  }
};

// Without the registry everything comes from the executable's folder; the
// registry's values win, each in its own key.
TEST_F(NarrixInfoTest, FoldersProgramsAndSettings) {
  info_.Inicialize(nullptr);
  EXPECT_EQ(Described(),
            L"C:\\Program Files\\Narrix|C:\\Program Files\\Narrix|C:\\Program Files\\Narrix\\Set|"
            L"C:\\Program Files\\Narrix\\Sound|notepad %1|c:\\Program Files\\Internet Explorer\\IEXPLORE.EXE \"%1\"|"
            L"notepad %1|c:\\Velkor98\\parlo.exe /CB|C:\\Program Files\\Narrix\\Help\\keys.htm|-s|255|8 3000 10");
  test::TempFolder dir;  // work files go to My Documents, whose folder is made
  reg_.WriteString(L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", L"Personal",
                   dir.Path(L"My Documents"));
  int form = 0;
  // ExitDirect in the product's key is in the wrong key: ignored.
  for (const wchar_t* pair :
       {L"Path=C:\\Reader\\", L"NxPath=D:\\Nx", L"AppViever=view %1", L"AppHelpViever=help \"%1\"",
        L"FileHelp=Doc\\%1\\%1.htm", L"ScreenReaderFlag=0", L"ExitDirect=1", L"LogKey=0"}) {
    const std::wstring text = pair;
    Product(text.substr(0, text.find(L'=')).c_str(), text.substr(text.find(L'=') + 1).c_str());
  }
  info_.Inicialize(&form);
  EXPECT_EQ(info_.frmMain(), &form);
  EXPECT_EQ(Described(),
            L"C:\\Reader|D:\\Nx|C:\\Reader\\Set|C:\\Reader\\Sound|view %1|help \"%1\"|notepad %1|"
            L"c:\\Velkor98\\parlo.exe /CB|C:\\Reader\\Doc\\keys\\keys.htm|--|" +
                std::to_wstring(0xFFu & ~kLogKey) + L"|8 3000 10");
  EXPECT_EQ(info_.LogFlags(), 0xFFu & ~kLogKey);
  EXPECT_EQ(info_.FileNameWork(), dir.Path(L"My Documents\\Work\\Info.txt"));
  EXPECT_TRUE(IsFolder(dir.Path(L"My Documents\\Work")));
  reg_.WriteString(kMakerKey, L"ExitDirect", L"1");
  Product(L"Path", L"C:\\Reader\\\\");  // only one trailing backslash is dropped
  info_.Inicialize(nullptr);
  EXPECT_TRUE(info_.ExitDirect());
  EXPECT_EQ(info_.DirVelkor(), L"C:\\Reader\\");
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
    EXPECT_TRUE(r.appName == c.app && r.scriptPath == c.script && r.displayName == c.display) << WideToUtf8(c.args);
  }
  EXPECT_EQ(ArgumentsOf(L"\"C:\\Program Files\\x.exe\"  notepad/Focus 40"), L"notepad/Focus 40");
  EXPECT_EQ(ArgumentsOf(L"x.exe notepad"), L"notepad");
  EXPECT_EQ(ArgumentsOf(L"x.exe"), L"");
}

TEST(StringTable, TextsAndPlaceholders) {
  for (auto* e = StringTableBegin(); e != StringTableEnd(); ++e) {
    // Every text in both languages; a placeholder in one is in the other too.
    EXPECT_TRUE(*e->english && *e->czech) << e->id;
    EXPECT_EQ(std::wcsstr(e->english, L"%1") == nullptr, std::wcsstr(e->czech, L"%1") == nullptr) << e->id;
  }
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
