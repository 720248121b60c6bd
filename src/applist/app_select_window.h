// The Windows window of the application list: a modeless dialog that shows
// what fAppSelect decides and forwards the user's actions to it.
#pragma once

#include <windows.h>

#include "applist/app_select.h"
#include "platform/win32/prompts.h"

namespace nx {

class AppSelectWindow final : public IAppSelectView {
 public:
  // `ports` and `editor` must outlive the window.
  AppSelectWindow(HINSTANCE instance, EditSession& session, cNarrixInfo& info, IMenuEditorEntry* editor,
                  AppListPorts ports = {});
  AppSelectWindow(const AppSelectWindow&) = delete;
  AppSelectWindow& operator=(const AppSelectWindow&) = delete;

  // Creates the window hidden and runs its load handler. False when the
  // program ended while loading (the window is then gone).
  bool Create();
  // Shows the window and puts the focus on the list.
  void Show();
  // Gives the window's keyboard handling a message of the program's loop;
  // true when it was handled there.
  bool PreTranslateMessage(MSG& msg);

  fAppSelect& Logic() { return logic_; }
  HWND Handle() const { return hwnd_; }

  void SetText(AppSelectText what, const std::wstring& text) override;
  void ClearList() override;
  void AddListEntry(const std::wstring& text) override;
  int ListCount() const override;
  std::wstring ListEntry(int index) const override;
  int SelectedIndex() const override;
  void SelectEntry(int index) override;
  void EnableOk(bool enabled) override;
  void FocusList() override;
  void EndProgram() override;

 private:
  template <typename T>
  friend INT_PTR CALLBACK DialogProcOf(HWND, UINT, WPARAM, LPARAM);
  INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnCommand(int id, int code);
  HWND List() const;

  HINSTANCE instance_;
  HWND hwnd_ = nullptr;
  bool loading_ = false;
  Win32Prompts prompts_;
  fAppSelect logic_;
};

}  // namespace nx
