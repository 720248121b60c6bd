// make bench: the hot-key export over generated installations of 75, 150
// and 300 applications with 200-item menus each, against reading the same
// menu files and writing a page of the same size (the file work alone). The
// export should cost the same per item at every size.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "applist/help_page.h"
#include "menu/menu_file.h"
#include "menu/menu_help.h"
#include "platform/folders.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "startup/settings.h"
#include "platform/string_table.h"

namespace {

namespace fs = std::filesystem;
const nx::BuiltinCodePage kPage(1252);
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

std::wstring Wide(const fs::path& path) { return path.wstring(); }

// The export as the Export button does it: every menu listed, the page
// rewritten.
void BM_Export(benchmark::State& state) {
  const int apps = static_cast<int>(state.range(0));
  const fs::path& root = Installation(apps);
  const std::wstring dirSet = Wide(root / "Set");
  nx::PortableProfile profile(kPage);
  nx::cDefServer defs(kPage, profile, dirSet + L"\\");
  const auto names = *nx::ListSubfolders(dirSet);
  for (auto _ : state) {
    std::wstring text = nx::MenuHelpSection(defs, {dirSet, L"(Narrix)", L"", true});
    for (const auto& name : names) text += nx::MenuHelpSection(defs, {dirSet, name, L"", false});
    if (nx::UpdateHelpPage(nx::HelpPagePath(Wide(root)), text, kPage) != nx::HelpPageResult::Updated)
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
  const auto names = *nx::ListSubfolders(Wide(root / "Set"));
  const std::wstring page = Wide(root / "help" / "narrix" / "baseline.htm");
  std::string bytes;
  for (auto _ : state) {
    size_t total = 0;
    for (const auto& name : names) {
      nx::ReadFileBytes(Wide(root / "Set" / name / "Command.mnu"), bytes);
      total += bytes.size();
    }
    // The page holds about 60 bytes a menu item.
    nx::WriteFileBytes(page, std::string(static_cast<size_t>(apps) * kItemsPerMenu * 60, 'x'));
    benchmark::DoNotOptimize(total);
  }
}
BENCHMARK(BM_ExportFileWork)->Arg(75)->Arg(150)->Arg(300)->Unit(benchmark::kMillisecond);

class Keeper : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, double> ms;
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs)
      if (run.run_type == Run::RT_Iteration) ms[run.benchmark_name()] = run.GetAdjustedRealTime();
  }
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Keeper reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\nThe export per menu item, and against the file work of the same run:\n");
  for (int apps : {75, 150, 300}) {
    const std::string name = "BM_Export/" + std::to_string(apps), base = "BM_ExportFileWork/" + std::to_string(apps);
    if (!reporter.ms.count(name) || !reporter.ms.count(base)) continue;
    std::printf("%3d applications, %6d items: %6.2f us an item, %5.2fx the file work\n", apps, apps * kItemsPerMenu,
                reporter.ms[name] * 1000.0 / (apps * kItemsPerMenu), reporter.ms[name] / reporter.ms[base]);
  }
  for (int apps : {75, 150, 300})
    fs::remove_all(fs::temp_directory_path() / ("nx-export-bench-" + std::to_string(apps)));
  return 0;
}
