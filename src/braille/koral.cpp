#include "braille/koral.h"

#include <cstdio>

namespace nx {

namespace {

constexpr int32_t kInitMode = 3;

std::wstring Hex(int32_t value) {
  wchar_t text[16];
  std::swprintf(text, 16, L"%X", static_cast<unsigned>(value));
  return text;
}

}  // namespace

cKoral::~cKoral() {
  if (display_) {
    display_->Close();
    display_.reset();
  }
  if (component_) {
    component_->Shutdown();
    component_.reset();
  }
}

bool cKoral::Initialize() {
  if (factory_.ScreenReaderRunning()) component_ = factory_.Attach();
  if (!component_) component_ = factory_.Create();
  if (!component_) return false;
  component_->Initialize(kInitMode);
  OpenDisplay();
  return isValid();
}

void cKoral::OpenDisplay() {
  if (component_->DisplayCount() == 0) return;
  display_ = component_->Display(1, *this);
  if (!display_) return;
  display_->SetButtonEvents(1);
  display_->Open();
}

std::wstring cKoral::BrailleDescription() const { return display_ ? display_->Description() : std::wstring(); }

std::wstring cKoral::GetInfo() const {
  if (!display_) return {};
  IKoralDisplay& d = *display_;
  const int32_t caps = d.Caps();
  const auto word = [caps](int32_t bit, const wchar_t* yes, const wchar_t* no) {
    return std::wstring(caps & bit ? yes : no) + L", ";
  };
  std::wstring text = d.Description() + L"\r\n";
  text += L"width=" + std::to_wstring(d.Width()) + L", height=" + std::to_wstring(d.Height()) + L", status=" +
          std::to_wstring(d.StatusCells()) + L"\r\n";
  text += L"caps(hex)=" + Hex(caps) + L" {" + word(0x20, L"Eight dots", L"Six dots") +
          word(0x02, L"cursor routing", L"no cursor routing") + word(0x04, L"status routing", L"no status routing") +
          word(0x08, L"aux routing", L"no aux routing") + word(0x10, L"aux status routing", L"no aux status routing") +
          // The battery word looks at the whole value, as the display
          // descriptions users already know have always shown it.
          (caps != 0 ? L"battery, " : L"no battery, ") + L"}\r\n";
  text += L"languages=" + std::to_wstring(d.Languages()) + L"\r\n";
  text += L"buttons=" + std::to_wstring(d.Buttons()) + L"\r\n";
  text += L"maxRate=" + std::to_wstring(d.MaxRate()) + L"\r\n";
  text += L"unitid=" + std::to_wstring(d.UnitId());
  return text;
}

bool cKoral::Heard(int32_t unitId) const { return display_ && events_ && display_->UnitId() == unitId; }

void cKoral::koral_BrailleBtnAuxStatus(int32_t unitId, int32_t button) {
  if (Heard(unitId)) events_->BrailleBtnAuxStatus(button);
}

void cKoral::koral_BrailleBtnCusorStatus(int32_t unitId, int32_t button) {
  if (Heard(unitId)) events_->BrailleBtnCusorStatus(button);
}

void cKoral::koral_BrailleBtnNormal(int32_t unitId, int32_t buttons, int32_t pressed) {
  // Only presses count: a release would bind the same keys a second time.
  if (pressed != 0 && Heard(unitId)) events_->BrailleBtnNormal(buttons);
}

}  // namespace nx
