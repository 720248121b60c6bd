// Keyboard access of the windows: every input control has its label directly
// before it, and no two captions of one window share an access key in any
// language.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "platform/text.h"
#include "platform/string_table.h"

namespace nx {
namespace {

struct Control {
  std::string kind, caption;
};

// The controls of each dialog template of the resource script, in order:
// the indented lines between a DIALOGEX line and the END that closes it.
std::map<std::string, std::vector<Control>> ReadDialogs() {
  std::ifstream in(NX_SOURCE_DIR "/resources/narrixmenu.rc");
  std::map<std::string, std::vector<Control>> dialogs;
  std::string line, current;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string first, second;
    words >> first >> second;
    if (second == "DIALOGEX") current = first, dialogs[current];
    if (line == "END") current.clear();
    if (current.empty() || line.rfind("    ", 0) != 0) continue;
    const size_t open = line.find('"');
    dialogs[current].push_back(
        {first, open == std::string::npos ? "" : line.substr(open + 1, line.find('"', open + 1) - open - 1)});
  }
  return dialogs;
}

wchar_t AccessKey(const std::wstring& caption) {
  for (size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != L'&') continue;
    if (caption[i + 1] != L'&') return UpperChar(caption[i + 1]);
    ++i;
  }
  return 0;
}

// The string-table texts each window puts on its controls when it loads.
const std::map<std::string, std::vector<int>> kCaptionIds = {
    {"IDD_APPSELECT", {502, 503, 101, 657, 658, 659, 660}},
    {"IDD_INPUTBOX", {650, 100, 101}},
    {"IDD_FINDKEY", {731, 101}},
    // The menu bar's entries count too: Alt and their letter open them.
    {"IDD_MENUDEF", {602, 603, 604, 605, 100, 101, 608, 617, 640}},
};

TEST(Resources, InputControlsHaveALabelDirectlyBefore) {
  const auto dialogs = ReadDialogs();
  ASSERT_FALSE(dialogs.empty());
  for (const auto& [name, controls] : dialogs) {
    for (size_t i = 0; i < controls.size(); ++i) {
      const std::string& kind = controls[i].kind;
      if (kind == "LISTBOX" || kind == "EDITTEXT" || kind == "COMBOBOX" || kind == "CONTROL") {
        ASSERT_GT(i, 0u) << name << ": " << kind << " has no label";
        EXPECT_EQ(controls[i - 1].kind, "LTEXT") << name << ": " << kind << " is not labelled";
      }
    }
  }
}

// Every caption but Cancel's (Escape) has an access key when `all` says so,
// and no two share one.
void ExpectUniqueAccessKeys(const std::vector<std::wstring>& captions, const std::string& where, bool all) {
  std::map<wchar_t, std::wstring> seen;
  for (const auto& caption : captions) {
    const wchar_t key = AccessKey(caption);
    EXPECT_TRUE(key || !all || caption == TableText(101, UiLanguage::English) ||
                caption == TableText(101, UiLanguage::Czech))
        << where << ": \"" << WideToUtf8(caption) << "\" has no access key";
    if (!key) continue;
    EXPECT_FALSE(seen.count(key)) << where << ": \"" << WideToUtf8(caption) << "\" and \"" << WideToUtf8(seen[key])
                                  << "\" share an access key";
    seen[key] = caption;
  }
}

TEST(Resources, AccessKeysAreUniqueInEveryLanguage) {
  // The wizard's pages; Next and Finish share the one button, so only one is on a page.
  const std::vector<std::vector<int>> pages = {
      {710, 700, 701, 101},
      {711, 712, 713, 714, 700, 701, 101},
      {715, 700, 701, 101},
      {717, 719, 718, 646, 724, 700, 701, 101},
      {723, 645, 722, 647, 648, 725, 700, 702, 101},
      {606, 612, 610, 611, 614, 615, 616, 613, 643, 644, 680, 681, 693, 694, 695, 696},  // the item menu
  };
  const auto dialogs = ReadDialogs();
  for (UiLanguage language : {UiLanguage::English, UiLanguage::Czech}) {
    for (const auto& page : pages) {
      std::vector<std::wstring> captions;
      for (int id : page) captions.push_back(TableText(id, language));
      ExpectUniqueAccessKeys(captions, "wizard page " + std::to_string(page.front()), true);
    }
    for (const auto& [dialog, ids] : kCaptionIds) {
      ASSERT_TRUE(dialogs.count(dialog)) << dialog;
      std::vector<std::wstring> captions;
      for (int id : ids) captions.push_back(TableText(id, language));
      for (const auto& control : dialogs.at(dialog)) captions.push_back(Utf8ToWide(control.caption));
      ExpectUniqueAccessKeys(captions, dialog, false);
      // The first label (of the list or the tree) must carry an access key.
      EXPECT_NE(AccessKey(captions.front()), 0) << dialog;
    }
  }
}

}  // namespace
}  // namespace nx
