// fFindKey: find by hot key. A chord pressed in its capture field (taken as
// the item wizard's Hot Key field takes it) or, with a braille display, a
// display button pressed while the field has the focus, is looked for in
// the editor's menu at once: the item that has it is selected and the
// window closes; when none has it, the window says so and waits for the
// next key.
#pragma once

#include <cstdint>
#include <string>

#include "braille/braille_display.h"
#include "menu/menu_editor.h"

namespace nx {

class IFindKeyView {
 public:
  virtual ~IFindKeyView() = default;
  virtual void SetTexts(const std::wstring& title, const std::wstring& label, const std::wstring& cancel) = 0;
  // The capture field's text: the key last pressed.
  virtual void SetKeyText(const std::wstring& text) = 0;
  // The line below the field, read out by the screen reader when it changes.
  virtual void SetStatus(const std::wstring& text) = 0;
  virtual bool KeyHasFocus() const = 0;
  // Whether a key is held down now (not its toggle state).
  virtual bool IsKeyDown(int key) const = 0;
  virtual void Close() = 0;
};

class fFindKey final : IBrailleEvents {
 public:
  // `editor` finds the items; `display` (null: none) lends its buttons while
  // the window is open. Both must outlive the window's logic.
  fFindKey(IFindKeyView& view, fMenuDef& editor, IBrailleDisplay* display);
  ~fFindKey() override;
  fFindKey(const fFindKey&) = delete;
  fFindKey& operator=(const fFindKey&) = delete;

  void Form_Load();
  // A key pressed (released) in the capture field; true when it must go no
  // further.
  bool KeyDown(int key, int shift);
  bool KeyUp(int key, int shift);

 private:
  void Find(int32_t code);
  void BrailleBtnAuxStatus(int32_t button) override;
  void BrailleBtnCusorStatus(int32_t button) override;
  void BrailleBtnNormal(int32_t buttons) override;

  IFindKeyView& view_;
  fMenuDef& editor_;
  IBrailleDisplay* display_;
};

}  // namespace nx
