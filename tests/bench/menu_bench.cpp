// make bench: the menu file, the key texts and the hot-key export against
// baselines measured in the same run; each pair prints its ratio.
#include <benchmark/benchmark.h>

#include <algorithm>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "applist/help_page.h"
#include "defs/def_actions.h"
#include "menu/menu_help.h"
#include "menu/menu_file.h"
#include "defs/def_text.h"
#include "platform/folders.h"
#include "platform/text.h"

namespace {

const nx::BuiltinCodePage kPage(1252);

// A 100,000-item menu: pull-downs of ten entries, every third entry with
// three entries of its own, captions and actions of realistic length.
std::string MakeMenuBytes(int items) {
  auto root = nx::cMenuItem::New();
  nx::cMenuItem* group = nullptr;
  nx::cMenuItem* entry = nullptr;
  for (int i = 0; i < items; ++i) {
    auto item = nx::cMenuItem::New();
    item->Caption = L"Menu entry number " + std::to_wstring(i);
    const int slot = i % 14;
    if (slot == 0) {
      group = root->SubItems.Add(1, root.get(), item).get();
    } else if (slot % 4 == 1) {
      item->Action = L"shell(wscript.exe \"$(appsetdir)\\script" + std::to_wstring(i) + L".vbs\")";
      item->HotKey = 0x20020000 | (65 + i % 26);
      item->Discard = true;
      entry = group->SubItems.Add(1, group, item).get();
    } else if (slot % 4 == 2 || slot % 4 == 3) {
      item->Action = L"SayLine";
      entry->SubItems.Add(1, entry, item);
    } else {
      item->Action = L"SayWord";
      item->HotKey = 0x00030070 | (i % 12);
      group->SubItems.Add(1, group, item);
    }
  }
  return *nx::SerializeMenu(*root, kPage, nullptr);
}

const std::string& MenuBytes() {
  static const std::string bytes = MakeMenuBytes(100000);
  return bytes;
}

// Baseline: what any reader must do with the bytes, building nothing. Every
// record's fields are read with their bounds checked, and every byte of both
// texts is added to a checksum, so that the walk touches all the bytes the
// reader decodes instead of hopping over the texts by their lengths.
void BM_RawWalk(benchmark::State& state) {
  const std::string& bytes = MenuBytes();
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  const size_t size = bytes.size();
  auto word = [data](size_t at) { return static_cast<uint32_t>(data[at] | (data[at + 1] << 8)); };
  auto sumText = [data](size_t at, size_t length) {
    uint32_t sum = 0;
    for (size_t i = 0; i < length; ++i) sum += data[at + i];
    return sum;
  };
  for (auto _ : state) {
    size_t pos = 0, records = 0;
    uint32_t sum = 0;
    while (pos < size) {
      if (size - pos < 8) break;
      const uint32_t level = word(pos);
      const uint32_t keyWord = word(pos + 2) | (word(pos + 4) << 16);
      const size_t caption = word(pos + 6);
      pos += 8;
      if (size - pos < caption + 2) break;
      sum += sumText(pos, caption);
      pos += caption;
      const size_t action = word(pos);
      pos += 2;
      if (size - pos < action) break;
      sum += sumText(pos, action);
      pos += action;
      sum += level ^ keyWord;
      ++records;
    }
    benchmark::DoNotOptimize(records);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_RawWalk)->Unit(benchmark::kMillisecond);

// Reading builds the tree; releasing it afterwards is not part of reading.
void BM_ReadMenu(benchmark::State& state) {
  const std::string& bytes = MenuBytes();
  for (auto _ : state) {
    int32_t counter = 256;
    auto result = nx::ParseMenu(bytes, kPage, nullptr, counter);
    benchmark::DoNotOptimize(result.root.get());
    state.PauseTiming();
    result.root.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_ReadMenu)->Unit(benchmark::kMillisecond);

struct Flat {
  uint16_t level;
  uint32_t keyWord;
  std::string caption, action;
};

// Baseline: the same records, already flat and in bytes, appended to a buffer.
void BM_BufferSerialisation(benchmark::State& state) {
  int32_t counter = 0;
  auto root = nx::ParseMenu(MenuBytes(), kPage, nullptr, counter).root;
  std::vector<Flat> flat;
  std::vector<std::pair<const nx::cMenuItem*, int>> stack{{root.get(), -1}};
  while (!stack.empty()) {
    auto [node, level] = stack.back();
    stack.pop_back();
    if (level >= 0)
      flat.push_back({static_cast<uint16_t>(level), static_cast<uint32_t>(node->HotKey), kPage.ToAnsi(node->Caption),
                      kPage.ToAnsi(node->Action)});
    for (int i = node->SubItems.Count(); i >= 1; --i) stack.push_back({node->SubItems.item(i).get(), level + 1});
  }
  for (auto _ : state) {
    std::string out;
    for (const auto& r : flat) {
      out.append(reinterpret_cast<const char*>(&r.level), 2);
      out.append(reinterpret_cast<const char*>(&r.keyWord), 4);
      const uint16_t c = static_cast<uint16_t>(r.caption.size()), a = static_cast<uint16_t>(r.action.size());
      out.append(reinterpret_cast<const char*>(&c), 2);
      out += r.caption;
      out.append(reinterpret_cast<const char*>(&a), 2);
      out += r.action;
    }
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_BufferSerialisation)->Unit(benchmark::kMillisecond);

void BM_WriteMenu(benchmark::State& state) {
  int32_t counter = 0;
  auto root = nx::ParseMenu(MenuBytes(), kPage, nullptr, counter).root;
  for (auto _ : state) {
    auto bytes = nx::SerializeMenu(*root, kPage, nullptr);
    benchmark::DoNotOptimize(bytes->data());
  }
  state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_WriteMenu)->Unit(benchmark::kMillisecond);

// The whole save: the bytes, a new file beside the old one, the replacement.
void BM_WriteMenuFile(benchmark::State& state) {
  int32_t counter = 0;
  auto root = nx::ParseMenu(MenuBytes(), kPage, nullptr, counter).root;
  nx::PortableProfile profile(kPage);
  nx::cDefActions defs(kPage, profile);
  nx::cMenuFile defsFiles(kPage, profile);
  const std::wstring path = L"/tmp/nx-bench-Command.mnu";
  for (auto _ : state) benchmark::DoNotOptimize(defsFiles.FlushCommand2Def(path, L"", *root));
  std::remove("/tmp/nx-bench-Command.mnu");
  state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_WriteMenuFile)->Unit(benchmark::kMillisecond);

// Menus of `items` braille-button items (in pull-downs of ten) with their
// display profile (button names, and one code a command in section Actions),
// against the same menu with keyboard hot keys and no profile.
struct MenuOnDisk {
  std::wstring menu, profile;
  nx::MenuItemPtr root;
};

const MenuOnDisk& MenuWithKeys(int items, bool braille) {
  static std::map<std::pair<int, bool>, MenuOnDisk> made;
  auto found = made.find({items, braille});
  if (found != made.end()) return found->second;
  const std::string folder = "/tmp/nx-bench-" + std::string(braille ? "braille-" : "keys-") + std::to_string(items);
  std::filesystem::create_directories(folder);
  MenuOnDisk files{L"", L"", nx::cMenuItem::New()};
  files.menu = std::wstring(folder.begin(), folder.end()) + L"/Command.mnu";
  std::string profile = "[KeyMap]\r\n";
  for (int bit = 0; bit <= 30; ++bit)
    profile += nx::WideToUtf8(nx::HexText(1u << bit)) + "=Dot " + std::to_string(bit) + "\r\n";
  profile += "CursorStatus=Routing %1\r\nAuxStatus=Status %1\r\n\r\n[Actions]\r\n";
  nx::cMenuItem* group = nullptr;
  for (int i = 0; i < items; ++i) {
    if (i % 10 == 0) {
      group = files.root->SubItems.Add(1, files.root.get(), nx::cMenuItem::New()).get();
      group->Caption = L"Group " + std::to_wstring(i / 10);
    }
    auto item = group->SubItems.Add(1, group, nx::cMenuItem::New());
    item->Caption = L"Menu entry number " + std::to_wstring(i);
    item->Action = L"shell(wscript.exe \"$(appsetdir)\\script" + std::to_wstring(i) + L".vbs\")";
    const uint32_t code = static_cast<uint32_t>(i % 0x3FFF) + 1;
    item->HotKey = braille ? static_cast<int32_t>(0x40000000u | code) : static_cast<int32_t>(0x00020041 + i % 26);
    profile += nx::WideToUtf8(item->Action) + "=" + nx::WideToUtf8(nx::HexText(code)) + "\r\n";
  }
  if (braille) {
    files.profile = std::wstring(folder.begin(), folder.end()) + L"/Focus 40.ini";
    nx::WriteFileBytes(files.profile, profile);
  }
  nx::WriteFileBytes(files.menu, *nx::SerializeMenu(*files.root, kPage, nullptr));
  return made.emplace(std::make_pair(items, braille), std::move(files)).first->second;
}

// Opening a menu as the editor does: the menu with its codes, and the
// button names when there is a profile.
void ReadMenuWithKeys(benchmark::State& state, bool braille) {
  const MenuOnDisk& files = MenuWithKeys(static_cast<int>(state.range(0)), braille);
  nx::PortableProfile profile(kPage);
  nx::cDefActions defs(kPage, profile);
  nx::cMenuFile defsFiles(kPage, profile);
  for (auto _ : state) {
    auto root = defsFiles.InitCommandDef(files.menu, files.profile);
    if (braille) defs.InitBrailleKeyMap(files.profile);
    benchmark::DoNotOptimize(root.get());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
void BM_ReadKeyboardMenu(benchmark::State& state) { ReadMenuWithKeys(state, false); }
void BM_ReadBrailleMenu(benchmark::State& state) { ReadMenuWithKeys(state, true); }
BENCHMARK(BM_ReadKeyboardMenu)->Arg(1000)->Arg(8000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadBrailleMenu)->Arg(1000)->Arg(8000)->Unit(benchmark::kMillisecond);

// Saving it: the menu file and the codes in the profile.
void SaveMenuWithKeys(benchmark::State& state, bool braille) {
  const MenuOnDisk& files = MenuWithKeys(static_cast<int>(state.range(0)), braille);
  nx::PortableProfile profile(kPage);
  nx::cDefActions defs(kPage, profile);
  nx::cMenuFile defsFiles(kPage, profile);
  for (auto _ : state)
    if (!defsFiles.FlushCommand2Def(files.menu, files.profile, *files.root)) state.SkipWithError("the save failed");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
void BM_SaveKeyboardMenu(benchmark::State& state) { SaveMenuWithKeys(state, false); }
void BM_SaveBrailleMenu(benchmark::State& state) { SaveMenuWithKeys(state, true); }
BENCHMARK(BM_SaveKeyboardMenu)->Arg(1000)->Arg(8000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveBrailleMenu)->Arg(1000)->Arg(8000)->Unit(benchmark::kMillisecond);

std::vector<int32_t> MixedCodes() {
  std::vector<int32_t> codes;
  codes.reserve(1000000);
  uint32_t seed = 12345;
  for (int i = 0; i < 1000000; ++i) {
    seed = seed * 1103515245u + 12345u;
    const uint32_t r = seed >> 8;
    // A plain key, one with modifiers, one with Narrix as well, a braille button.
    const uint32_t kinds[] = {r % 256, ((r % 8) << 16) | (r % 256), 0x20000000 | ((r % 8) << 16) | (r % 256),
                              0x40000000 | (r & 0x3FF)};
    codes.push_back(static_cast<int32_t>(kinds[r % 4]));
  }
  return codes;
}

std::wstring KeyTablePath() {
  static const std::wstring path = [] {
    std::string text;
    for (int code = 0; code < 256; ++code) text += std::to_string(code) + "=Key name " + std::to_string(code) + "\r\n";
    nx::WriteFileBytes(L"/tmp/nx-bench-gKeyCode.def", text);
    return std::wstring(L"/tmp/nx-bench-gKeyCode.def");
  }();
  return path;
}

// Baseline: the names already in memory, the modifier letters glued on.
void BM_KeyTextBaseline(benchmark::State& state) {
  const auto codes = MixedCodes();
  std::vector<std::wstring> names(256);
  for (int i = 0; i < 256; ++i) names[static_cast<size_t>(i)] = L"Key name " + std::to_wstring(i);
  for (auto _ : state) {
    size_t total = 0;
    for (int32_t code : codes) {
      std::wstring text;
      if (code & 0x20000000) text += L"Narrix+";
      if (code & 0x20000) text += L"C+";
      text += names[static_cast<size_t>(code & 0xFF)];
      total += text.size();
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(codes.size()));
}
BENCHMARK(BM_KeyTextBaseline)->Unit(benchmark::kMillisecond);

void BM_FormatKeycodeEx(benchmark::State& state) {
  const auto codes = MixedCodes();
  nx::PortableProfile profile(kPage);
  const std::wstring table = KeyTablePath();
  nx::cDefServer server(kPage, profile, table.substr(0, table.size() - 12));
  // cDefServer appends "gKeyCode.def" to its folder: point it at the table.
  server.SetFolder(L"/tmp/nx-bench-");
  for (auto _ : state) {
    size_t total = 0;
    for (int32_t code : codes) {
      int32_t copy = code;
      total += server.FormatKeycodeEx(copy).size();
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(codes.size()));
}
BENCHMARK(BM_FormatKeycodeEx)->Unit(benchmark::kMillisecond);

// The hot-key export over generated installations of 75, 150 and 300
// applications with 200-item menus each, against reading the same menu files
// and writing a page of the same size (the file work alone). The export
// should cost the same per item at every size.
namespace fs = std::filesystem;
constexpr int kItemsPerMenu = 200;

// A 200-item menu: pull-downs of ten entries, most with a hot key.
std::string MenuOf(int app) {
  auto root = nx::cMenuItem::New();
  nx::cMenuItem* group = nullptr;
  for (int i = 0; i < kItemsPerMenu; ++i) {
    auto item = nx::cMenuItem::New();
    item->Caption = L"Entry " + std::to_wstring(i) + L" of application " + std::to_wstring(app);
    if (i % 10 == 0) {
      group = root->SubItems.Add(1, root.get(), item).get();
      continue;
    }
    item->Action = i % 3 ? L"SayLine" : L"shell(wscript.exe \"$(appsetdir)\\tips.vbs\")";
    if (i % 4) item->HotKey = 0x20020000 | (65 + i % 26);
    group->SubItems.Add(1, group, item);
  }
  return *nx::SerializeMenu(*root, kPage, nullptr);
}

void Write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

// An installation under the temporary folder, made once per size.
const fs::path& Installation(int apps) {
  static std::map<int, fs::path> made;
  auto it = made.find(apps);
  if (it != made.end()) return it->second;
  const fs::path root = fs::temp_directory_path() / ("nx-export-bench-" + std::to_string(apps));
  fs::remove_all(root);
  std::string keys;
  for (int k = 48; k < 91; ++k) keys += std::to_string(k) + "=" + std::string(1, static_cast<char>(k)) + "\r\n";
  Write(root / "Set" / "gKeyCode.def", keys);
  for (int a = 0; a < apps; ++a) Write(root / "Set" / ("app" + std::to_string(a)) / "Command.mnu", MenuOf(a));
  Write(root / "help" / "narrix" / "hotkey.htm",
        "<HTML><BODY>\r\n<!-- app hotkey start -->\r\n<!-- app hotkey end -->\r\n</BODY></HTML>\r\n");
  return made[apps] = root;
}

// The export as the Export button does it: every menu listed, the page
// rewritten.
void BM_Export(benchmark::State& state) {
  const int apps = static_cast<int>(state.range(0));
  const fs::path& root = Installation(apps);
  const std::wstring dirSet = (root / "Set").wstring();
  nx::PortableProfile profile(kPage);
  nx::cDefServer defs(kPage, profile, dirSet + L"\\");
  const auto names = *nx::ListSubfolders(dirSet);
  for (auto _ : state) {
    std::wstring text = nx::MenuHelpSection(defs, {dirSet, L"(Narrix)", L"", true});
    for (const auto& name : names) text += nx::MenuHelpSection(defs, {dirSet, name, L"", false});
    if (nx::UpdateHelpPage(nx::HelpPagePath(root.wstring()), text, kPage) != nx::HelpPageResult::Updated)
      state.SkipWithError("the page was not updated");
  }
  state.SetComplexityN(static_cast<int64_t>(apps) * kItemsPerMenu);
  state.counters["items"] = static_cast<double>(apps) * kItemsPerMenu;
}
BENCHMARK(BM_Export)->Arg(75)->Arg(150)->Arg(300)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

// Baseline: the same menu files read as bytes and a page of the size the
// export writes put in place, nothing parsed or formatted.
void BM_ExportFileWork(benchmark::State& state) {
  const int apps = static_cast<int>(state.range(0));
  const fs::path& root = Installation(apps);
  const auto names = *nx::ListSubfolders((root / "Set").wstring());
  const std::wstring page = (root / "help" / "narrix" / "baseline.htm").wstring();
  std::string bytes;
  for (auto _ : state) {
    size_t total = 0;
    for (const auto& name : names) {
      nx::ReadFileBytes((root / "Set" / name / "Command.mnu").wstring(), bytes);
      total += bytes.size();
    }
    // The page holds about 60 bytes a menu item.
    nx::WriteFileBytes(page, std::string(static_cast<size_t>(apps) * kItemsPerMenu * 60, 'x'));
    benchmark::DoNotOptimize(total);
  }
}
BENCHMARK(BM_ExportFileWork)->Arg(75)->Arg(150)->Arg(300)->Unit(benchmark::kMillisecond);

// Keeps each result so that the ratios can be printed after the table;
// with --benchmark_repetitions, the median of them (run them with
// --benchmark_enable_random_interleaving=true, so that the sizes compared
// take turns under the same load of the machine).
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, double> median;  // the time of a run, in its benchmark's unit
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const std::string name = run.run_name.str();
      times_[name].push_back(run.GetAdjustedRealTime());
      median[name] = Median(times_[name]);
    }
  }

 private:
  static double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
  }
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  auto ratio = [&](const char* name, const char* baseline, double target) {
    if (!reporter.median.count(name) || !reporter.median.count(baseline)) return;
    const double r = reporter.median[name] / reporter.median[baseline];
    if (target <= 0) {
      std::printf("%-24s %6.2fx %-24s\n", name, r, baseline);
      return;
    }
    std::printf("%-24s %6.2fx %-24s (target at most %.1fx: %s)\n", name, r, baseline, target,
                r <= target ? "met" : "MISSED");
  };
  std::printf("\nRatios to the baselines of this run:\n");
  ratio("BM_ReadMenu", "BM_RawWalk", 5.0);
  ratio("BM_WriteMenu", "BM_BufferSerialisation", 3.0);
  ratio("BM_WriteMenuFile", "BM_BufferSerialisation", 0);
  ratio("BM_FormatKeycodeEx", "BM_KeyTextBaseline", 0);
  for (const char* size : {"/1000", "/8000"}) {
    ratio(("BM_ReadBrailleMenu" + std::string(size)).c_str(), ("BM_ReadKeyboardMenu" + std::string(size)).c_str(), 0);
    ratio(("BM_SaveBrailleMenu" + std::string(size)).c_str(), ("BM_SaveKeyboardMenu" + std::string(size)).c_str(), 0);
  }
  // Eight times the items within ten times the time.
  for (const char* name : {"BM_ReadKeyboardMenu", "BM_ReadBrailleMenu", "BM_SaveKeyboardMenu", "BM_SaveBrailleMenu"})
    ratio((std::string(name) + "/8000").c_str(), (std::string(name) + "/1000").c_str(), 10.0);
  if (reporter.median.count("BM_FormatKeycodeEx")) {
    const double rate = 1e9 / reporter.median["BM_FormatKeycodeEx"];  // a million codes in so many ms
    std::printf("BM_FormatKeycodeEx   %.2f million key texts a second (target at least 2: %s)\n", rate / 1e6,
                rate >= 2e6 ? "met" : "MISSED");
  }
  std::printf("\nThe export per menu item, and against the file work of the same run:\n");
  for (int apps : {75, 150, 300}) {
    const std::string name = "BM_Export/" + std::to_string(apps), base = "BM_ExportFileWork/" + std::to_string(apps);
    if (!reporter.median.count(name) || !reporter.median.count(base)) continue;
    std::printf("%3d applications, %6d items: %6.2f us an item, %5.2fx the file work\n", apps, apps * kItemsPerMenu,
                reporter.median[name] * 1000.0 / (apps * kItemsPerMenu), reporter.median[name] / reporter.median[base]);
  }
  for (int apps : {75, 150, 300})
    fs::remove_all(fs::temp_directory_path() / ("nx-export-bench-" + std::to_string(apps)));
  return 0;
}
