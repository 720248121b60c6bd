#include "applist/app_select.h"

#include "applist/folder_name.h"
#include "applist/help_page.h"
#include "platform/folders.h"
#include "platform/text.h"
#include "platform/keys.h"
#include "startup/command_line.h"
#include "startup/file_helpers.h"
#include "platform/string_table.h"

namespace nx {
namespace {

constexpr int kCaption = 501, kListLabel = 502, kEdit = 503, kGeneralMenu = 504, kCreateMenuQuestion = 505;
constexpr int kCancel = 101, kBadInstallation = 1050;
constexpr int kNewNameLabel = 650, kNameEmpty = 651, kNameBadCharacter = 652, kNameDots = 653, kNameReserved = 654;
constexpr int kNameTaken = 655, kGeneralFixed = 656, kRename = 657, kRemove = 658, kAddVersion = 659, kExport = 660;
constexpr int kNothingRenamed = 664, kNoMenuCreated = 665, kFileInTheWay = 668, kNotCreated = 669;

// The screen reader's own fixed Czech texts for these buttons.
constexpr wchar_t kRenameTitle[] = L"P\u0159ejmenovat";
constexpr wchar_t kRemoveQuestion[] = L"Smazat nab\u00eddku ";
constexpr wchar_t kCannotDo[] = L"Nelze prov\u00e9st.";
constexpr wchar_t kFolderExists[] = L"Slo\u017eka ji\u017e existuje.";
constexpr wchar_t kHelpUpdated[] = L"N\u00e1pov\u011bda aktualizov\u00e1na v souboru ";

}  // namespace

fAppSelect::fAppSelect(IAppSelectView& view, IPrompts& prompts, EditSession& session, cNarrixInfo& info,
                       IMenuEditorEntry* editor, AppListPorts ports)
    : view_(view), prompts_(prompts), session_(session), info_(info), editor_(editor), ports_(ports) {}

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
  view_.SetText(AppSelectText::Rename, LoadResText(kRename));
  view_.SetText(AppSelectText::Remove, LoadResText(kRemove));
  view_.SetText(AppSelectText::AddVersion, LoadResText(kAddVersion));
  view_.SetText(AppSelectText::Export, LoadResText(kExport));
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
    if (request.displayName) session_.gCmdDisplayName = *request.displayName;
    // Without an application the script waits for the first menu opened.
    if (request.scriptPath) session_.gCmdScriptPath = *request.scriptPath;
    if (request.appName.empty()) return;

    const int index = FindEntry(request.appName);
    if (index >= 0) {
      view_.SelectEntry(index);
      lstApplication_Click();
      cmdOK_Click();
      return;
    }
    if (pass > 0) return;
    // The name becomes a folder in Set: the rules of a rename, before asking.
    if (NameRefused(L"", request.appName, kNoMenuCreated)) {
      view_.FocusList();
      return;
    }
    const int answer = prompts_.Message(LoadResText(kCreateMenuQuestion, request.appName),
                                        mb::kYesNo | mb::kIconQuestion, LoadResText(kProductTitle));
    if (answer != mb::kIdYes) return;
    if (!CreateFolder(JoinPath(info_.DirSet(), request.appName))) {
      Tell(LoadResText(kNotCreated, JoinPath(info_.DirSet(), request.appName)), mb::kIconExclamation);
      view_.FocusList();
      return;
    }
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

void fAppSelect::Tell(const std::wstring& text, unsigned icon) {
  prompts_.Message(text, mb::kOkOnly | icon, LoadResText(kProductTitle));
}

std::optional<std::wstring> fAppSelect::SelectedApp(bool refuseGeneral) {
  const int index = view_.SelectedIndex();
  if (ended_ || index < 0) return std::nullopt;
  const std::wstring name = view_.ListEntry(index);
  if (name != LoadResText(kGeneralMenu)) return name;
  if (refuseGeneral) {
    Tell(LoadResText(kGeneralFixed, name), mb::kIconExclamation);
    view_.FocusList();
  }
  return std::nullopt;
}

void fAppSelect::Refill(int index) {
  if (!FillAppList(info_.DirSet())) return;
  const int count = view_.ListCount();
  if (index >= count) index = count - 1;
  if (index >= 0) view_.SelectEntry(index);
  lstApplication_Click();
  view_.FocusList();
}

bool fAppSelect::NameRefused(const std::wstring& oldName, const std::wstring& newName, int outcome) {
  int message = 0;
  switch (CheckFolderName(newName)) {
    case FolderNameProblem::None:
      break;
    case FolderNameProblem::Empty:
      message = kNameEmpty;
      break;
    case FolderNameProblem::BadCharacter:
      message = kNameBadCharacter;
      break;
    case FolderNameProblem::Dots:
      message = kNameDots;
      break;
    case FolderNameProblem::Reserved:
      message = kNameReserved;
      break;
  }
  // The general menu's entry, or another folder of that name; a change of
  // case only is a rename.
  const std::wstring path = JoinPath(info_.DirSet(), newName);
  if (!message && UpperCase(newName) != UpperCase(oldName) &&
      (UpperCase(newName) == UpperCase(LoadResText(kGeneralMenu)) || IsFolder(path)))
    message = kNameTaken;
  // A file of that name (setting.ini) would make the move or the new folder
  // fail with nothing said.
  if (!message && PathExists(path) && !IsFolder(path)) message = kFileInTheWay;
  if (message) Tell(LoadResText(message, newName) + L" " + LoadResText(outcome), mb::kIconExclamation);
  return message != 0;
}

void fAppSelect::cmdRename_Click() {
  if (!ports_.folders) return;
  const auto name = SelectedApp(true);
  if (!name) return;
  const int index = view_.SelectedIndex();
  // A refused name is offered again, as typed, to be corrected.
  std::wstring newName = *name;
  do {
    newName = prompts_.InputBox(LoadResText(kNewNameLabel), kRenameTitle, newName);
    if (newName.empty() || newName == *name) {
      view_.FocusList();
      return;
    }
  } while (NameRefused(*name, newName, kNothingRenamed));
  ports_.folders->MoveFolder(JoinPath(info_.DirSet(), *name), JoinPath(info_.DirSet(), newName));
  Refill(index);
}

void fAppSelect::cmdRemoveApp_Click() {
  if (!ports_.folders) return;
  const auto name = SelectedApp(true);
  if (!name) return;
  const int answer = prompts_.Message(kRemoveQuestion + *name + L" ?",
                                      mb::kYesNo | mb::kIconQuestion | mb::kDefaultButton2, LoadResText(kProductTitle));
  if (answer == mb::kIdYes) {
    ports_.folders->DeleteFolder(JoinPath(info_.DirSet(), *name));
    if (!FillAppList(info_.DirSet())) return;
  }
  view_.FocusList();
}

void fAppSelect::cmdAddVer_Click() {
  if (!ports_.folders || !ports_.apps || ended_) return;
  const int index = view_.SelectedIndex();
  if (index < 0) return;
  const std::wstring name = view_.ListEntry(index);
  const std::wstring version = ports_.apps->GetRunningAppVersion(name);
  if (version.empty()) {
    Tell(kCannotDo, mb::kIconCritical);
    view_.FocusList();
    return;
  }
  const std::wstring copy = JoinPath(info_.DirSet(), name + L"_ver." + version);
  if (ports_.folders->FolderExists(copy)) {
    Tell(kFolderExists, mb::kIconCritical);
    view_.FocusList();
    return;
  }
  ports_.folders->CopyFolder(JoinPath(info_.DirSet(), name), copy);
  Refill(index);
}

void fAppSelect::cmdExport_Click() {
  if (!editor_ || !ports_.codePage || ended_) return;
  std::wstring text;
  const std::wstring general = LoadResText(kGeneralMenu);
  for (int i = 0, n = view_.ListCount(); i < n; ++i) {
    const std::wstring name = view_.ListEntry(i);
    text += editor_->ListDefs(info_.DirSet(), name, name == general);
  }
  const std::wstring page = HelpPagePath(info_.DirVelkor());
  const HelpPageResult result = UpdateHelpPage(page, text, *ports_.codePage);
  if (result == HelpPageResult::Updated || result == HelpPageResult::NoStartMarker)
    Tell(kHelpUpdated + page, mb::kIconInformation);
  view_.FocusList();
}

bool fAppSelect::Form_KeyDown(int key) {
  if (key != vk::kDelete) return false;
  cmdRemoveApp_Click();
  return true;
}

}  // namespace nx
