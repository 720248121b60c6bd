// fAppSelect: the application list, the first window. It lists the general
// menu "(Narrix)" and every application folder of the installation, and
// opens the menu editor for the chosen one. The window itself only shows
// what this class tells it through IAppSelectView and forwards its events.
#pragma once

#include <string>

#include "platform/prompts.h"
#include "startup/narrix_info.h"

namespace nx {

enum class AppSelectText { Window, ListLabel, Ok, Cancel };

class IAppSelectView {
 public:
  virtual ~IAppSelectView() = default;
  virtual void SetText(AppSelectText what, const std::wstring& text) = 0;
  virtual void ClearList() = 0;
  // The list keeps its entries sorted as a Windows list box does
  // (alphabetically, ignoring case), whatever the order they are added in.
  virtual void AddListEntry(const std::wstring& text) = 0;
  virtual int ListCount() const = 0;
  virtual std::wstring ListEntry(int index) const = 0;
  virtual int SelectedIndex() const = 0;  // -1 when nothing is selected
  virtual void SelectEntry(int index) = 0;
  virtual void EnableOk(bool enabled) = 0;
  // Brings the window forward with the keyboard focus in the list.
  virtual void FocusList() = 0;
  // Closes the window, which ends the program.
  virtual void EndProgram() = 0;
};

// The menu editor as the application list reaches it: loads the menu of one
// application (or the general menu), shows the editor modally and returns
// when the user has closed it.
class IMenuEditorEntry {
 public:
  virtual ~IMenuEditorEntry() = default;
  virtual void EditMenu(const std::wstring& dirSet, const std::wstring& appName, bool general) = 0;
};

class fAppSelect {
 public:
  // All references must outlive this object; `editor` may be null while the
  // program has no editor to open.
  fAppSelect(IAppSelectView& view, IPrompts& prompts, cNarrixInfo& info, IMenuEditorEntry* editor);

  // Load handler: captions, the installation settings, the list. When the
  // settings folder cannot be opened the program ends here (Ended()).
  void Form_Load(void* form);

  // Acts on the program's arguments: sets the display name and script path,
  // opens the named application's menu, or offers to create it.
  void SelectAppByCommand(const std::wstring& arguments);

  // Refills the list from the subfolders of `folder`. False, after the fatal
  // message, when the folder cannot be opened; the program then ends.
  bool FillAppList(const std::wstring& folder);

  void lstApplication_Click();
  void lstApplication_DblClick();
  void cmdOK_Click();
  void cmdCANCEL_Click();

  bool Ended() const { return ended_; }

 private:
  void SetCaptions();
  int FindEntry(const std::wstring& name) const;

  IAppSelectView& view_;
  IPrompts& prompts_;
  cNarrixInfo& info_;
  IMenuEditorEntry* editor_;
  bool ended_ = false;
};

}  // namespace nx
