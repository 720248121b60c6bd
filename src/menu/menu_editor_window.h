// The Windows window of the menu editor. It shows what fMenuDef decides,
// forwards the user's actions to it, and runs modally over its owner.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include "resource.h"

#include <unordered_map>
#include <string>

#include "menu/menu_editor.h"
#include "platform/win32/modal_dialog.h"
#include "platform/win32/prompts.h"

namespace nx {

class MenuEditorWindow final : public ModalDialog, public IMenuEditorView {
 public:
  // The window asks its questions in its own message boxes, or through
  // `askWith` when given (for measurements that must not stop).
  MenuEditorWindow(HINSTANCE instance, const MenuEditorServices& services, IPrompts* askWith = nullptr);

  // Creates the window, hidden, and runs its load handler. False on failure.
  bool Create(HWND owner) { return CreateFrom(IDD_MENUDEF, owner, this); }
  fMenuDef& Logic() { return logic_; }

  void SetTitle(const std::wstring& text) override;
  void SetText(EditorText what, const std::wstring& text) override;
  void SetCommandText(EditorCommand command, const std::wstring& text) override;
  void EnableCommand(EditorCommand command, bool enabled) override;
  void EnableApply(bool enabled) override;
  void BeginTreeUpdate() override;
  void EndTreeUpdate() override;
  void ClearTree() override;
  void AddNode(const std::wstring& key, const std::wstring& parentKey, const std::wstring& text,
               bool expanded) override;
  int NodeCount() const override;
  std::optional<std::wstring> SelectedNode() const override;
  void SelectNode(const std::wstring& key) override;
  std::wstring NodeText(const std::wstring& key) const override;
  void SetFields(const std::wstring& name, const std::wstring& command, const std::wstring& hotKey) override;
  void FocusNameField() override;
  void OpenItemMenu() override;
  void OpenFindKey() override;
  int TrackPreview(NativeMenu menu) override;
  void Close() override;

 private:
  template <typename T>
  friend INT_PTR CALLBACK DialogProcOf(HWND, UINT, WPARAM, LPARAM);
  INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnCommand(int id);
  void OnContextMenu(HWND from, LPARAM position);
  // Keys of the program's loop: the tree's own keys and F9 anywhere.
  bool PreTranslate(const MSG& msg) override;
  void OnShown() override;
  HWND Tree() const;

  bool updating_ = false;
  Win32Prompts prompts_;
  fMenuDef logic_;
  std::unordered_map<std::wstring, HTREEITEM> nodes_;
  std::unordered_map<HTREEITEM, std::wstring> keys_;
};

}  // namespace nx
