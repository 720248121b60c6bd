#include <gtest/gtest.h>

#include "platform/profile.h"
#include "platform/text.h"
#include "temp_folder.h"

namespace nx {
namespace {

class ProfileTest : public ::testing::Test {
 protected:
  BuiltinCodePage codePage_{1252};
  PortableProfile profile_{codePage_};
  test::TempFolder dir_;
  std::wstring File() const { return dir_.Path(L"test.ini"); }
};

TEST_F(ProfileTest, ReadsLikeGetPrivateProfileString) {
  dir_.Write(L"test.ini",
             "junk before any section\r\n[ section1 ]\r\nname1=val1\r\nname2=\"val2\"\r\nname3\r\n"
             "  spaced   =   value with blanks   \r\nempty=\r\nsingle='x'\r\nmismatched=\"abc'\r\n"
             "lonequote=\"\r\n; comment=not a key\r\nname1=second wins never\r\n"
             "[Section2]\rcr=only CR\n\nlf=only LF\r\n[section1]\r\ndup=from duplicate section\r\n"
             "[NoBreak]\r\nlast=at end");
  const struct {
    const wchar_t *section, *key, *def, *expected;
  } cases[] = {
      {L"section1", L"name1", L"d", L"val1"},
      {L"SECTION1", L"NaMe1", L"d", L"val1"},
      {L"  section1 ", L" name1 ", L"d", L"val1"},
      {L"section1", L"name2", L"d", L"val2"},
      {L"section1", L"spaced", L"d", L"value with blanks"},
      {L"section1", L"single", L"d", L"x"},
      {L"section1", L"mismatched", L"d", L"\"abc'"},
      {L"section1", L"dup", L"d", L"d"},
      {L"section2", L"cr", L"d", L"only CR"},
      {L"section2", L"lf", L"d", L"only LF"},
      {L"NoBreak", L"last", L"d", L"at end"},
      {L"missing", L"name1", L"default  ", L"default"},
      {L"section1", L"", L"d", L"d"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(profile_.GetString(c.section, c.key, c.def, File()), c.expected)
        << "[" << WideToUtf8(c.section) << "] " << WideToUtf8(c.key);
  EXPECT_EQ(profile_.GetString(L"s", L"k", L"fallback", dir_.Path(L"none.ini")), L"fallback");
}

TEST_F(ProfileTest, WritesOnlyTheLinesItChanges) {
  using namespace std::string_literals;
  const struct {
    std::optional<std::string> before;  // none: no file yet
    const wchar_t* section;
    std::optional<std::wstring> key, value;
    std::string after;
  } cases[] = {
      {std::nullopt, L"App", L"key", L"", "[App]\r\nkey=\r\n"},
      {"; keep me\n[A]\nx = 1\n\n[B]\ny=2\n", L"a", L"X", L"9", "; keep me\n[A]\nX=9\n\n[B]\ny=2\n"},
      {"[A]\nx=1\n\n[B]\ny=2\n", L"A", L"new", L"v", "[A]\nx=1\nnew=v\r\n\n[B]\ny=2\n"},
      {"[A]\r\nx=1", L"B", L"k", L"v", "[A]\r\nx=1\r\n[B]\r\nk=v\r\n"},
      {"[A]\r\nx=1", L"A", L"k", L"v", "[A]\r\nx=1\r\nk=v\r\n"},
      {"[A]\r\nx=1\r\ny=2\r\n", L"A", L"x", std::nullopt, "[A]\r\ny=2\r\n"},
      {"[A]\r\nx=1\r\n[B]\r\ny=2\r\n", L"a", std::nullopt, std::nullopt, "[B]\r\ny=2\r\n"},
      {"[A]\r\nx=1\r\n", L"A", L"gone", std::nullopt, "[A]\r\nx=1\r\n"},
      {"\0\0[A]\r\nx=1\r\n"s, L"A", L"x", L"2", "\0\0[A]\r\nx=2\r\n"s},
  };
  for (const auto& c : cases) {
    std::filesystem::remove(dir_.Fs() / "w.ini");
    if (c.before) dir_.Write(L"w.ini", *c.before);
    ASSERT_TRUE(profile_.WriteString(c.section, c.key, c.value, dir_.Path(L"w.ini")));
    EXPECT_EQ(dir_.Read(L"w.ini"), c.after) << c.before.value_or("(new file)");
  }
}

TEST_F(ProfileTest, KeepsTheEncodingOfTheFile) {
  dir_.Write(L"u8.ini", "\xEF\xBB\xBF[Tlačítka]\r\nklíč=žluť\r\n");
  EXPECT_EQ(profile_.GetString(L"Tlačítka", L"klíč", L"", dir_.Path(L"u8.ini")), L"žluť");
  ASSERT_TRUE(profile_.WriteString(L"Tlačítka", L"klíč", L"kůň", dir_.Path(L"u8.ini")));
  EXPECT_EQ(dir_.Read(L"u8.ini"), "\xEF\xBB\xBF[Tlačítka]\r\nklíč=kůň\r\n");

  BuiltinCodePage central(1250);
  PortableProfile czech(central);
  dir_.Write(L"ansi.ini", "[Tla\xE8\xEDtka]\r\nkl\xED\xE8=\x9Elu\x9D\r\n");
  EXPECT_EQ(czech.GetString(L"TLAČÍTKA", L"KLÍČ", L"", dir_.Path(L"ansi.ini")), L"žluť");
}

// Many keys written at once leave the file as writing them one by one does,
// keys that do not read back as themselves (with "=", as a header, with a
// line break, outside the code page) included.
TEST_F(ProfileTest, ManyKeysAtOnceAsOneByOne) {
  const std::string files[] = {
      "",
      "[KeyMap]\r\n1=Dot 1\r\n; comment\r\n\r\n[Actions]\r\n  Old =  3 \r\nbare\r\n\r\n\r\n[Other]\r\nx=1",
      "[actions]\nOld=1\n[Actions]\nNew=2\n",  // the first header counts
      "[Actions]\r\nOld=1",
      "\xEF\xBB\xBF[Actions]\r\nKl\xC3\xAD\xC4\x8D=1\r\n",
  };
  const std::vector<std::pair<std::wstring, std::wstring>> batches[] = {
      {{L"Old", L"A"}, {L"New", L"B"}, {L"new", L"C"}, {L" bare ", L"D"}, {L"Next", L"E"}, {L"klíč", L"F"}},
      {{L"a=b", L"1"}, {L"a", L"2"}, {L"[x]y", L"3"}, {L"New", L"4"}, {L"line\r\nbreak", L"5"}, {L"ř", L"6"}},
  };
  for (const auto& file : files) {
    for (const auto& batch : batches) {
      dir_.Write(L"one.ini", file);
      for (const auto& [key, value] : batch)
        ASSERT_TRUE(profile_.WriteString(L"Actions", key, value, dir_.Path(L"one.ini")));
      ProfileDocument document = ProfileDocument::Parse(file, codePage_);
      ASSERT_TRUE(document.WriteKeys(L"Actions", batch));
      EXPECT_EQ(document.Serialize(), dir_.Read(L"one.ini")) << file << " + " << WideToUtf8(batch[0].first);
    }
  }
}

// A missing file reads as empty; one that is there but cannot be read is
// never written over.
TEST_F(ProfileTest, FilesThatCannotBeReadOrWritten) {
  std::filesystem::create_directory(dir_.Fs() / "folder.ini");
  const struct {
    std::wstring file, outcome;  // loaded, missing, why, written
  } cases[] = {
      {dir_.Path(L"none.ini"), L"loaded missing No such file or directory written"},
      {dir_.Path(L"no such folder\\x.ini"), L"loaded missing No such file or directory -"},
      {dir_.Path(L"folder.ini"), L"- - Is a directory -"},
      {L"", L"loaded missing No such file or directory -"},
  };
  for (const auto& c : cases) {
    ProfileDocument document(codePage_);
    ReadFailure failure;
    const bool loaded = profile_.Load(c.file, document, &failure);
    const bool written = profile_.WriteString(L"s", L"k", L"v", c.file);
    EXPECT_EQ(std::wstring(loaded ? L"loaded " : L"- ") + (failure.missing ? L"missing " : L"- ") + failure.reason +
                  (written ? L" written" : L" -"),
              c.outcome)
        << WideToUtf8(c.file);
  }
}

}  // namespace
}  // namespace nx
