// The Windows window of the item wizard, and the editor's way to run it.
#pragma once

#include <windows.h>

#include "menu/menu_editor.h"
#include "platform/win32/modal_dialog.h"
#include "platform/win32/prompts.h"
#include "resource.h"
#include "wizard/wizard.h"

namespace nx {

class WizardWindow final : public ModalDialog, public IWizardView {
 public:
  WizardWindow(HINSTANCE instance, IProcesses& processes, EditSession& session, cNarrixInfo& info, cDefServer& defs);

  bool Create(HWND owner) { return CreateFrom(IDD_WIZARD, owner, this); }
  fWizard& Logic() { return logic_; }

  void SetTitle(const std::wstring& text) override;
  void SetText(WizardControl control, const std::wstring& text) override;
  void EnableControl(WizardControl control, bool enabled) override;
  void ShowControl(WizardControl control, bool shown) override;
  void ShowPane(WizardPane pane) override;
  void HideWindow() override;
  void ShowWindowAgain() override;
  void Close() override;
  void SetName(const std::wstring& text) override;
  void SetKind(WizardKind kind) override;
  void ClearCommands() override;
  void AddCommand(const std::wstring& text, int data) override;
  void SelectCommand(int line) override;
  int SelectedCommand() const override;
  int CommandData(int line) const override;
  int CommandCount() const override;
  void ScrollCommandToTop(int line) override;
  void ShowCommandList(bool list) override;
  bool CommandListShown() const override;
  void SetCommandText(const std::wstring& text) override;
  std::wstring CommandText() const override;
  void SetScriptPath(const std::wstring& text) override;
  std::wstring ScriptPath() const override;
  void SelectText(WizardField field, size_t start, size_t length) override;
  void SetHotKeyText(const std::wstring& text, bool keepFocus) override;
  void FocusHotKey() override;
  bool HotKeyHasFocus() const override;
  void SetUsedBy(const std::wstring& text) override;
  void SetChecked(WizardControl box, bool checked) override;
  bool Checked(WizardControl box) const override;
  bool IsKeyDown(int key) const override;

 private:
  template <typename T>
  friend INT_PTR CALLBACK DialogProcOf(HWND, UINT, WPARAM, LPARAM);
  INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnCommand(int id, int code);
  bool PreTranslate(const MSG& msg) override;
  void OnShown() override { FocusPageIfPending(); }
  void OnEnded() override { logic_.Form_Unload(); }
  HWND Item(int id) const { return GetDlgItem(hwnd_, id); }
  std::wstring TextOf(int id) const;
  // Moves the focus to control `id`; nothing while the window is hidden.
  void Focus(int id);
  // The window has been shown: the focus goes to the page's control unless
  // the activation has already put it there.
  void FocusPageIfPending();

  bool filling_ = false;  // texts set by the program, not typed
  // The window is shown with a new page: its activation puts the focus on
  // the page's control, not back on the control of the old page.
  bool focusPending_ = true;
  int pageFocus_ = 0;  // the control of the page that takes the focus
  WizardPane pane_ = WizardPane::Name;
  bool commandList_ = true;
  bool formShown_ = false;  // the script has a form file
  Win32Prompts prompts_;
  fWizard logic_;
};

// Runs the wizard modally over the menu editor.
class WizardLauncher final : public IItemWizard {
 public:
  // Everything must outlive the launcher; `brailleOpener` may be null.
  WizardLauncher(HINSTANCE instance, IProcesses& processes, EditSession& session, cNarrixInfo& info, cDefServer& defs,
                 IBrailleOpener* brailleOpener)
      : instance_(instance),
        processes_(processes),
        session_(session),
        info_(info),
        defs_(defs),
        brailleOpener_(brailleOpener) {}
  std::optional<ItemFields> Describe(const ItemFields& fields, bool isNew, const cMenuItem* root,
                                     const cMenuItem* original) override;

 private:
  HINSTANCE instance_;
  IProcesses& processes_;
  EditSession& session_;
  cNarrixInfo& info_;
  cDefServer& defs_;
  IBrailleOpener* brailleOpener_;
};

// Starts programs with CreateProcess in a normal window.
class Win32Processes final : public IProcesses {
 public:
  bool Start(const std::wstring& commandLine) override;
};

}  // namespace nx
