// fAppSelect: the application list, the first window. It lists the general
// menu "(Narrix)" and every application folder of the installation, and
// opens the menu editor for the chosen one. The window itself only shows
// what this class tells it through IAppSelectView and forwards its events.
#pragma once

#include <optional>
#include <string>

#include "platform/code_page.h"
#include "platform/folder_ops.h"
#include "platform/prompts.h"
#include "platform/running_apps.h"
#include "startup/edit_session.h"
#include "startup/narrix_info.h"

namespace nx {

enum class AppSelectText { Window, ListLabel, Ok, Cancel, Rename, Remove, AddVersion, Export };

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
  // The menu's section of the help page, without showing the editor.
  virtual std::wstring ListDefs(const std::wstring& dirSet, const std::wstring& appName, bool general) = 0;
};

// What the folder buttons and the export work with; all must outlive the
// list. Without them those buttons do nothing.
struct AppListPorts {
  IFolderOps* folders = nullptr;
  IRunningApps* apps = nullptr;
  const ICodePage* codePage = nullptr;  // of the help page
};

class fAppSelect {
 public:
  // All references must outlive this object; `editor` may be null while the
  // program has no editor to open.
  fAppSelect(IAppSelectView& view, IPrompts& prompts, EditSession& session, cNarrixInfo& info, IMenuEditorEntry* editor,
             AppListPorts ports = {});

  // Load handler: captions, the installation settings, the list. When the
  // settings folder cannot be opened the program ends here (Ended()).
  void Form_Load(void* form);

  // Acts on the program's arguments: sets the session's display name and
  // script path,
  // opens the named application's menu, or offers to create it when the
  // name can be a menu folder (a refused name is told and nothing made).
  void SelectAppByCommand(const std::wstring& arguments);

  // Refills the list from the subfolders of `folder`. False, after the fatal
  // message, when the folder cannot be opened; the program then ends.
  bool FillAppList(const std::wstring& folder);

  void lstApplication_Click();
  void lstApplication_DblClick();
  void cmdOK_Click();
  void cmdCANCEL_Click();
  // Renames the selected application's folder to a name asked for; a name
  // that cannot be a folder, or is taken, is refused with a message.
  void cmdRename_Click();
  // Deletes the selected application's folder with its menu, after asking.
  void cmdRemoveApp_Click();
  // Copies the selected application's folder to name_ver.VERSION, the
  // version of that application running now.
  void cmdAddVer_Click();
  // Writes every menu's hot keys into the help page.
  void cmdExport_Click();
  // A key anywhere in the window; true when it was handled (Delete).
  bool Form_KeyDown(int key);

  bool Ended() const { return ended_; }

 private:
  void SetCaptions();
  int FindEntry(const std::wstring& name) const;
  // The selected application's name; nothing for none or the general menu
  // (after saying it cannot be changed when `refuseGeneral`).
  std::optional<std::wstring> SelectedApp(bool refuseGeneral);
  // True, after the rule's message and the string `outcome` ("nothing was
  // renamed", "no menu was created"), when `newName` cannot be a menu folder
  // in Set.
  bool NameRefused(const std::wstring& oldName, const std::wstring& newName, int outcome);
  // Refills the list, selects position `index` (or the nearest) and puts the
  // focus back into it.
  void Refill(int index);
  void Tell(const std::wstring& text, unsigned icon);

  IAppSelectView& view_;
  IPrompts& prompts_;
  EditSession& session_;
  cNarrixInfo& info_;
  IMenuEditorEntry* editor_;
  AppListPorts ports_;
  bool ended_ = false;
};

}  // namespace nx
