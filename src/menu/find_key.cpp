#include "menu/find_key.h"

#include "defs/hot_key.h"
#include "platform/keys.h"
#include "platform/string_table.h"

namespace nx {
namespace {
constexpr int kTitle = 730, kLabel = 731, kCancel = 101;
}  // namespace

fFindKey::fFindKey(IFindKeyView& view, fMenuDef& editor, IBrailleDisplay* display)
    : view_(view), editor_(editor), display_(display) {}

fFindKey::~fFindKey() {
  if (display_) display_->SetEvents(nullptr);
}

void fFindKey::Form_Load() {
  view_.SetTexts(LoadResText(kTitle), LoadResText(kLabel), LoadResText(kCancel));
  if (display_) display_->SetEvents(this);
}

bool fFindKey::KeyDown(int key, int shift) {
  const auto code = hotkey::CapturedKey(key, shift, view_.IsKeyDown(vk::kInsert) || view_.IsKeyDown(vk::kScrollLock));
  if (!code) return false;
  Find(*code);
  return true;
}

bool fFindKey::KeyUp(int key, int shift) { return hotkey::SwallowedRelease(key, shift); }

void fFindKey::Find(int32_t code) {
  view_.SetKeyText(editor_.KeyText(code));
  const std::wstring missing = editor_.FindByKey(code);
  if (missing.empty()) {
    view_.Close();
    return;
  }
  view_.SetStatus(missing);
}

// The display's buttons are taken only while the focus is in the field, so
// that the display can still be used to read the window.
void fFindKey::BrailleBtnAuxStatus(int32_t button) {
  if (view_.KeyHasFocus()) Find(hotkey::StatusButton(button, hotkey::kAuxStatus));
}

void fFindKey::BrailleBtnCusorStatus(int32_t button) {
  if (view_.KeyHasFocus()) Find(hotkey::StatusButton(button, hotkey::kCursorStatus));
}

void fFindKey::BrailleBtnNormal(int32_t buttons) {
  if (view_.KeyHasFocus()) Find(hotkey::Buttons(buttons));
}

}  // namespace nx
