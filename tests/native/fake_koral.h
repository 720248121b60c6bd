// A braille component in memory with one display "Focus 40" of unit 7: every
// call is written to a log, and the test presses the buttons.
#pragma once

#include <string>
#include <vector>

#include "braille/koral_component.h"

namespace nx::test {

struct FakeKoral {
  bool running = false;   // the screen reader's window exists
  bool installed = true;  // the component can be created
  std::vector<std::wstring> log;
  IKoralDisplayEvents* events = nullptr;  // of the display given out last

  std::wstring Log() const {
    std::wstring all;
    for (const auto& line : log) all += (all.empty() ? L"" : L", ") + line;
    return all;
  }
};

// The component and its display in one.
struct FakeKoralPart final : IKoralComponent, IKoralDisplay {
  explicit FakeKoralPart(FakeKoral& owner) : k(owner) {}
  void Initialize(int32_t mode) override { k.log.push_back(L"Initialize " + std::to_wstring(mode)); }
  int32_t DisplayCount() override { return 1; }
  std::unique_ptr<IKoralDisplay> Display(int32_t index, IKoralDisplayEvents& events) override {
    return k.log.push_back(L"Display " + std::to_wstring(index)), k.events = &events,
                                                                  std::make_unique<FakeKoralPart>(k);
  }
  void Shutdown() override { k.log.push_back(L"Shutdown"); }
  std::wstring Description() override { return L"Focus 40"; }
  int32_t Width() override { return 40; }
  int32_t Height() override { return 1; }
  int32_t StatusCells() override { return 4; }
  int32_t Caps() override { return 0x26; }
  int32_t Languages() override { return 2; }
  int32_t Buttons() override { return 12; }
  int32_t MaxRate() override { return 10; }
  int32_t UnitId() override { return 7; }
  void SetButtonEvents(int32_t on) override { k.log.push_back(L"ButtonEvents " + std::to_wstring(on)); }
  void Open() override { k.log.push_back(L"Open"); }
  void Close() override { k.log.push_back(L"Close"); }
  FakeKoral& k;
};

struct FakeKoralFactory final : IKoralFactory {
  FakeKoral koral;
  bool ScreenReaderRunning() override { return koral.running; }
  std::unique_ptr<IKoralComponent> Attach() override { return Make(L"Attach"); }
  std::unique_ptr<IKoralComponent> Create() override { return Make(L"Create"); }
  bool Probe() override { return koral.installed; }
  std::unique_ptr<IKoralComponent> Make(const wchar_t* how) {
    return koral.installed ? (koral.log.push_back(how), std::make_unique<FakeKoralPart>(koral)) : nullptr;
  }
};

}  // namespace nx::test
