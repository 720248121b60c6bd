// The Windows window of find by hot key, run modally over the menu editor.
#pragma once

#include <windows.h>

#include "menu/find_key.h"
#include "platform/win32/modal_dialog.h"
#include "resource.h"

namespace nx {

class FindKeyWindow final : public ModalDialog, public IFindKeyView {
 public:
  FindKeyWindow(HINSTANCE instance, fMenuDef& editor, IBrailleDisplay* display)
      : ModalDialog(instance), logic_(*this, editor, display) {}

  bool Create(HWND owner) { return CreateFrom(IDD_FINDKEY, owner, this); }

  void SetTexts(const std::wstring& title, const std::wstring& label, const std::wstring& cancel) override;
  void SetKeyText(const std::wstring& text) override;
  void SetStatus(const std::wstring& text) override;
  bool KeyHasFocus() const override;
  bool IsKeyDown(int key) const override { return GetKeyState(key) < 0; }
  void Close() override { EndModal(); }

 private:
  template <typename T>
  friend INT_PTR CALLBACK DialogProcOf(HWND, UINT, WPARAM, LPARAM);
  INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  // Keys in the capture field are taken before the dialog sees them: Enter
  // and Escape are hot keys there, not OK and Cancel.
  bool PreTranslate(const MSG& msg) override;
  void OnShown() override;
  HWND Field() const { return GetDlgItem(hwnd_, IDC_FINDKEY_KEY); }

  fFindKey logic_;
};

}  // namespace nx
