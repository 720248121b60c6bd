// The braille display object over a component in memory, and the rule that
// decides whether it is opened at all.
#include <gtest/gtest.h>

#include <filesystem>

#include "braille/braille_opener.h"
#include "braille/koral.h"
#include "fake_koral.h"
#include "platform/code_page.h"
#include "platform/registry.h"
#include "platform/profile.h"
#include "startup/settings.h"
#include "platform/string_table.h"
#include "temp_folder.h"

namespace nx {
namespace {

// What reached the listener, in order.
struct HeardButtons : IBrailleEvents {
  std::vector<std::wstring> heard;
  void BrailleBtnAuxStatus(int32_t b) override { heard.push_back(L"aux " + std::to_wstring(b)); }
  void BrailleBtnCusorStatus(int32_t b) override { heard.push_back(L"cursor " + std::to_wstring(b)); }
  void BrailleBtnNormal(int32_t b) override { heard.push_back(L"normal " + std::to_wstring(b)); }
};

TEST(Koral, AttachesOpensAndClosesInOrder) {
  const struct {
    bool running, installed;
    int32_t displays;
    bool valid;
    const wchar_t* log;
  } cases[] = {
      {false, true, 1, true, L"Create, Initialize 3, Display 1, ButtonEvents 1, Open, Close, Shutdown"},
      {true, true, 1, true, L"Attach, Initialize 3, Display 1, ButtonEvents 1, Open, Close, Shutdown"},
      {false, true, 2, true, L"Create, Initialize 3, Display 1, ButtonEvents 1, Open, Close, Shutdown"},
      {false, true, 0, false, L"Create, Initialize 3, Shutdown"},
      {false, false, 1, false, L""},
  };
  for (const auto& c : cases) {
    test::FakeKoralFactory factory;
    factory.koral.running = c.running;
    factory.koral.installed = c.installed;
    factory.koral.displays = c.displays;
    {
      cKoral koral(factory);
      EXPECT_EQ(koral.Initialize(), c.valid);
      EXPECT_EQ(koral.isValid(), c.valid);
      EXPECT_EQ(koral.BrailleDescription(), c.valid ? L"Focus 40" : L"");
      if (!c.valid) {
        EXPECT_EQ(koral.GetInfo(), L"");
      }
    }
    EXPECT_EQ(factory.koral.Log(), c.log) << c.running << c.installed << c.displays;
  }
}

TEST(Koral, PassesOnButtonPressesOfItsOwnUnit) {
  test::FakeKoralFactory factory;
  cKoral koral(factory);
  HeardButtons listener;
  koral.SetEvents(&listener);
  ASSERT_TRUE(koral.Initialize());
  IKoralDisplayEvents& component = *factory.koral.events;
  component.koral_BrailleBtnNormal(7, 5, 1);
  component.koral_BrailleBtnNormal(7, 5, 0);  // the release
  component.koral_BrailleBtnNormal(8, 5, 1);  // another display
  component.koral_BrailleBtnCusorStatus(7, 3);
  component.koral_BrailleBtnCusorStatus(1, 3);
  component.koral_BrailleBtnAuxStatus(7, -1);
  component.koral_BrailleBtnAuxStatus(0, 2);
  component.koral_BrailleBtnNormal(7, 0x30000001, -1);  // any non-zero flag is a press
  EXPECT_EQ(listener.heard, (std::vector<std::wstring>{L"normal 5", L"cursor 3", L"aux -1", L"normal 805306369"}));

  koral.SetEvents(nullptr);
  component.koral_BrailleBtnNormal(7, 5, 1);
  EXPECT_EQ(listener.heard.size(), 4u);
}

TEST(Koral, DescribesTheDisplay) {
  const struct {
    int32_t caps;
    const wchar_t* line;
  } cases[] = {
      {0x26,
       L"caps(hex)=26 {Eight dots, cursor routing, status routing, no aux routing, no aux status routing, battery, }"},
      {0,
       L"caps(hex)=0 {Six dots, no cursor routing, no status routing, no aux routing, no aux status routing, "
       L"no battery, }"},
      // The battery word asks whether any bit is set, so one that is not
      // about dots or routing at all still reads "battery".
      {0x1,
       L"caps(hex)=1 {Six dots, no cursor routing, no status routing, no aux routing, no aux status routing, "
       L"battery, }"},
      {0x3A,
       L"caps(hex)=3A {Eight dots, cursor routing, no status routing, aux routing, aux status routing, "
       L"battery, }"},
  };
  for (const auto& c : cases) {
    test::FakeKoralFactory factory;
    factory.koral.caps = c.caps;
    factory.koral.unitId = 12;
    cKoral koral(factory);
    koral.Initialize();
    EXPECT_EQ(koral.GetInfo(), std::wstring(L"Focus 40\r\nwidth=40, height=1, status=4\r\n") + c.line +
                                   L"\r\nlanguages=2\r\nbuttons=12\r\nmaxRate=10\r\nunitid=12");
  }
}

class NoticeLog : public IBusyNotice {
 public:
  std::vector<std::wstring> shown;
  bool up = false;
  void Show(const std::wstring& text) override {
    shown.push_back(text);
    up = true;
  }
  void Hide() override { up = false; }
};

TEST(BrailleOpener, OpensOnlyWhenSwitchedOnAndInstalled) {
  const struct {
    const char* setting;  // setting.ini, or null for none
    bool installed;
    bool opened;
  } cases[] = {
      {nullptr, true, false},
      {"[Braille]\r\n", true, false},
      {"[Braille]\r\nBrailleActive=0\r\n", true, false},
      {"[Braille]\r\nBrailleActive=1\r\n", false, false},
      {"[Braille]\r\nBrailleActive=1\r\n", true, true},
      {"[braille]\r\nbrailleactive=2\r\n", true, true},
  };
  for (const auto& c : cases) {
    test::TempFolder dir;
    std::filesystem::create_directories(dir.Fs() / "Set");
    if (c.setting) dir.Write(L"Set\\setting.ini", c.setting);
    MemoryRegistry registry;
    registry.WriteString(kProductKey, L"Path", dir.Path());
    cNarrixInfo info(registry, L"");
    info.Inicialize(nullptr);
    BuiltinCodePage page(1252);
    PortableProfile profile(page);
    test::FakeKoralFactory factory;
    factory.koral.installed = c.installed;
    NoticeLog notice;
    BrailleOpener opener(factory, profile, info, &notice);

    std::unique_ptr<IBrailleDisplay> display = opener.OpenNew();
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(display->isValid(), c.opened) << (c.setting ? c.setting : "none");
    EXPECT_EQ(notice.shown, c.opened ? std::vector<std::wstring>{L"Initialize brl. display. This may take a while."}
                                     : std::vector<std::wstring>{});
    EXPECT_FALSE(notice.up);
  }
}

}  // namespace
}  // namespace nx
