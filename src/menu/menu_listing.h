// Every menu as a list for the help page, without a window: the editor's
// logic over a view that shows nothing and asks nothing.
#pragma once

#include <memory>
#include <string>

#include "menu/menu_editor.h"

namespace nx {

class MenuListing {
 public:
  // All three must outlive the listing.
  MenuListing(cNarrixInfo& info, cDefServer& defs, IProfile& profile);

  // The menu of `appName` in `dirSet` (or the general menu) as its help
  // section; "" when it has no menu.
  std::wstring ListDefs(const std::wstring& dirSet, const std::wstring& appName, bool general);

 private:
  class NoView final : public IMenuEditorView {
   public:
    void SetTitle(const std::wstring&) override {}
    void SetText(EditorText, const std::wstring&) override {}
    void SetCommandText(EditorCommand, const std::wstring&) override {}
    void EnableCommand(EditorCommand, bool) override {}
    void EnableApply(bool) override {}
    void BeginTreeUpdate() override {}
    void EndTreeUpdate() override {}
    void ClearTree() override {}
    void AddNode(const std::wstring&, const std::wstring&, const std::wstring&, bool) override {}
    int NodeCount() const override { return 0; }
    std::optional<std::wstring> SelectedNode() const override { return std::nullopt; }
    void SelectNode(const std::wstring&) override {}
    std::wstring NodeText(const std::wstring&) const override { return {}; }
    void SetFields(const std::wstring&, const std::wstring&, const std::wstring&) override {}
    void FocusNameField() override {}
    void OpenItemMenu() override {}
    int TrackPreview(NativeMenu) override { return 0; }
    void Close() override {}
  };
  class NoPrompts final : public IPrompts {
   public:
    int Message(const std::wstring&, unsigned, const std::wstring&) override { return mb::kIdCancel; }
  };
  // A listing shows no preview and opens no display.
  class NoMenus final : public INativeMenus {
   public:
    NativeMenu CreatePopup() override { return 0; }
    void AppendPopup(NativeMenu, NativeMenu, const std::wstring&) override {}
    void AppendCommand(NativeMenu, int, const std::wstring&) override {}
    void Destroy(NativeMenu) override {}
  };

  cDefServer& defs_;
  NoMenus menus_;
  std::unique_ptr<IBrailleDisplay> braille_;
  NoView view_;
  NoPrompts prompts_;
  fMenuDef editor_;
};

}  // namespace nx
