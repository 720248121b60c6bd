// The braille display object over a component in memory, and the rule that
// decides whether it is opened at all.
#include <gtest/gtest.h>

#include <filesystem>

#include "braille/braille_opener.h"
#include "fake_koral.h"
#include "platform/code_page.h"
#include "platform/registry.h"
#include "startup/settings.h"
#include "temp_folder.h"

namespace nx {
namespace {

// The fake component, and the notice and the button presses that reach the
// listener written to its log.
struct Listener : IBusyNotice, IBrailleEvents {
  test::FakeKoralFactory factory;
  void Show(const std::wstring& text) override { factory.koral.log.push_back(L"Show " + text); }
  void Hide() override { factory.koral.log.push_back(L"Hide"); }
  void BrailleBtnAuxStatus(int32_t b) override { factory.koral.log.push_back(L"aux " + std::to_wstring(b)); }
  void BrailleBtnCusorStatus(int32_t b) override { factory.koral.log.push_back(L"cursor " + std::to_wstring(b)); }
  void BrailleBtnNormal(int32_t b) override { factory.koral.log.push_back(L"normal " + std::to_wstring(b)); }
};

// The display is opened only while setting.ini switches braille on (it is
// read every time) and the component is installed, through the running
// screen reader when there is one; it passes on the presses of its own unit
// (7) only.
TEST(BrailleDisplay, OpensWhenSwitchedOnAndHearsItsOwnUnit) {
  test::TempFolder dir;
  std::filesystem::create_directories(dir.Fs() / "Set");
  MemoryRegistry registry;
  registry.WriteString(kProductKey, L"Path", dir.Path());
  cNarrixInfo info(registry, L"");
  info.Inicialize(nullptr);
  BuiltinCodePage page(1252);
  PortableProfile profile(page);
  const struct {
    const char* setting;
    bool installed, running, opened;
  } cases[] = {
      {"[Braille]\r\n", true, false, false},
      {"[Braille]\r\nBrailleActive=0\r\n", true, false, false},
      {"[Braille]\r\nBrailleActive=1\r\n", false, false, false},
      {"[Braille]\r\nBrailleActive=1\r\n", true, false, true},
      {"[braille]\r\nbrailleactive=2\r\n", true, true, true},
  };
  for (const auto& c : cases) {
    dir.Write(L"Set\\setting.ini", c.setting);
    Listener listener;
    listener.factory.koral.running = c.running, listener.factory.koral.installed = c.installed;
    std::unique_ptr<IBrailleDisplay> display = BrailleOpener(listener.factory, profile, info, &listener).OpenNew();
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(display->isValid(), c.opened);
    if (IKoralDisplayEvents* component = listener.factory.koral.events) {
      display->SetEvents(&listener);
      component->koral_BrailleBtnNormal(7, 5, 1);
      component->koral_BrailleBtnNormal(7, 5, 0);  // the release
      component->koral_BrailleBtnNormal(8, 5, 1);  // another display
      component->koral_BrailleBtnCusorStatus(7, 3);
      component->koral_BrailleBtnAuxStatus(7, -1);
      component->koral_BrailleBtnNormal(7, 0x30000001, -1);  // any non-zero flag is a press
      display->SetEvents(nullptr);
      component->koral_BrailleBtnNormal(7, 5, 1);
    }
    display.reset();
    EXPECT_EQ(listener.factory.koral.Log(),
              c.opened ? L"Show Initialize brl. display. This may take a while., " +
                             std::wstring(c.running ? L"Attach" : L"Create") +
                             L", Initialize 3, Display 1, ButtonEvents 1, Open, Hide, normal 5, cursor 3, aux -1, "
                             L"normal 805306369, Close, Shutdown"
                       : L"")
        << c.setting;
  }
}

}  // namespace
}  // namespace nx
