#include "applist/app_select.h"

#include "platform/folders.h"
#include "platform/text.h"
#include "startup/command_line.h"
#include "startup/file_helpers.h"
#include "startup/string_table.h"

namespace nx {
namespace {

constexpr int kCaption = 501, kListLabel = 502, kEdit = 503, kGeneralMenu = 504, kCreateMenuQuestion = 505;
constexpr int kCancel = 101, kBadInstallation = 1050, kProductTitle = 2053;

}  // namespace

fAppSelect::fAppSelect(IAppSelectView& view, IPrompts& prompts, cNarrixInfo& info, IMenuEditorEntry* editor)
    : view_(view), prompts_(prompts), info_(info), editor_(editor) {}

void fAppSelect::Form_Load(void* form) {
  SetCaptions();
  info_.Inicialize(form);
  FillAppList(info_.DirSet());
}

void fAppSelect::SetCaptions() {
  view_.SetText(AppSelectText::Window, LoadResText(kCaption));
  view_.SetText(AppSelectText::ListLabel, LoadResText(kListLabel));
  view_.SetText(AppSelectText::Ok, LoadResText(kEdit));
  view_.SetText(AppSelectText::Cancel, LoadResText(kCancel));
}

bool fAppSelect::FillAppList(const std::wstring& folder) {
  if (ended_) return false;
  view_.ClearList();
  const auto names = ListSubfolders(folder);
  if (!names) {
    prompts_.Message(LoadResText(kBadInstallation), mb::kOkOnly | mb::kIconCritical, LoadResText(kProductTitle));
    ended_ = true;
    view_.EndProgram();
    return false;
  }
  view_.AddListEntry(LoadResText(kGeneralMenu));
  for (const auto& name : *names) view_.AddListEntry(name);
  if (view_.ListCount() > 0 && view_.SelectedIndex() < 0) view_.SelectEntry(0);
  lstApplication_Click();
  return true;
}

int fAppSelect::FindEntry(const std::wstring& name) const {
  const std::wstring wanted = UpperCase(name);
  for (int i = 0, n = view_.ListCount(); i < n; ++i)
    if (UpperCase(view_.ListEntry(i)) == wanted) return i;
  return -1;
}

void fAppSelect::SelectAppByCommand(const std::wstring& arguments) {
  // A second pass follows only the creation of a new folder. Should the new
  // folder still not be listed (a name Windows changes on creation, such as
  // one ending in a dot), stop rather than ask again.
  for (int pass = 0; pass < 2; ++pass) {
    if (!FillAppList(info_.DirSet())) return;
    const CommandLineRequest request = ParseCommandLine(arguments);
    if (request.displayName) gCmdDisplayName = *request.displayName;
    if (request.appName.empty()) return;
    if (request.scriptPath) gCmdScriptPath = *request.scriptPath;

    const int index = FindEntry(request.appName);
    if (index >= 0) {
      view_.SelectEntry(index);
      lstApplication_Click();
      cmdOK_Click();
      return;
    }
    if (pass > 0) return;
    const int answer = prompts_.Message(LoadResText(kCreateMenuQuestion, request.appName),
                                        mb::kYesNo | mb::kIconQuestion, LoadResText(kProductTitle));
    if (answer != mb::kIdYes) return;
    if (!CreateFolder(JoinPath(info_.DirSet(), request.appName))) return;
  }
}

void fAppSelect::lstApplication_Click() {
  if (!ended_) view_.EnableOk(view_.SelectedIndex() > -1);
}

void fAppSelect::lstApplication_DblClick() { cmdOK_Click(); }

void fAppSelect::cmdOK_Click() {
  if (ended_ || !editor_) return;
  const int index = view_.SelectedIndex();
  if (index < 0) return;
  const std::wstring name = view_.ListEntry(index);
  editor_->EditMenu(info_.DirSet(), name, name == LoadResText(kGeneralMenu));
  // Back from the editor, the user is where they left.
  if (!ended_) view_.FocusList();
}

void fAppSelect::cmdCANCEL_Click() {
  if (ended_) return;
  ended_ = true;
  view_.EndProgram();
}

}  // namespace nx
