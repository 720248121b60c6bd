#include "menu/menu_editor.h"

#include <stdexcept>

#include "menu/edit/tree_commands.h"
#include "menu/menu_help.h"
#include "menu/other_menus.h"
#include "platform/folders.h"
#include "platform/keys.h"
#include "platform/text.h"
#include "startup/file_helpers.h"
#include "platform/string_table.h"

namespace nx {

namespace {

constexpr int kTitle = 601, kTreeLabel = 602, kName = 603, kCommand = 604, kHotKey = 605, kNew = 606, kApply = 608;
constexpr int kCopy = 610, kCut = 611, kEdit = 612, kDelete = 613, kPaste = 614, kPasteNext = 615, kPasteChild = 616;
constexpr int kItemMenu = 617, kSaveQuestion = 635, kOk = 100, kCancel = 101, kGeneral = 2051, kApplication = 2052;
constexpr int kPreview = 640, kDamaged = 641, kNotSaved = 642, kMoveUp = 643, kMoveDown = 644;
constexpr int kTooDeepFile = 662, kBackupFailed = 666, kReasonUnknown = 667;
constexpr int kUndoStep = 680, kRedoStep = 681, kUndoNone = 682, kRedoNone = 683, kNothingToUndo = 691;
constexpr int kNothingToRedo = 692, kFindName = 693, kFindNext = 694, kFindPrevious = 695, kFindKey = 696;
constexpr int kFindTitle = 697, kFindLabel = 698, kNoName = 699, kNoKey = 732, kAlsoGeneral = 733, kNoItems = 734;

// The words for each kind of step in the captions of Undo and Redo.
int StepText(StepKind kind) {
  switch (kind) {
    case StepKind::New:
      return 684;
    case StepKind::Edit:
      return 685;
    case StepKind::Paste:
      return 686;
    case StepKind::Delete:
      return 687;
    case StepKind::DeleteMenu:
      return 688;
    case StepKind::MoveUp:
      return 689;
    case StepKind::MoveDown:
      return 690;
  }
  return 686;
}

// Message 642: the file and why it could not be written, each put in once,
// whatever they contain themselves.
std::wstring NotSavedText(const std::wstring& file, const std::wstring& reason) {
  const std::wstring text = LoadResText(kNotSaved), why = reason.empty() ? LoadResText(kReasonUnknown) : reason;
  const size_t at = text.find(L"%2");
  if (at == std::wstring::npos) return ReplaceAll(text, L"%1", file);
  return ReplaceAll(text.substr(0, at), L"%1", file) + why + ReplaceAll(text.substr(at + 2), L"%1", file);
}

}  // namespace

std::wstring NodeKey(int32_t menuId) { return L"k" + std::to_wstring(menuId); }

std::optional<int32_t> MenuIdOfKey(const std::wstring& key) {
  if (key.size() < 2) return std::nullopt;
  try {
    size_t used = 0;
    const long long id = std::stoll(key.substr(1), &used);
    if (used != key.size() - 1 || id < INT32_MIN || id > INT32_MAX) return std::nullopt;
    return static_cast<int32_t>(id);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

fMenuDef::fMenuDef(IMenuEditorView& view, IPrompts& prompts, MenuEditorServices services)
    : view_(view),
      prompts_(prompts),
      services_(std::move(services)),
      session_(services_.session),
      clipboard_(services_.clipboard ? *services_.clipboard : ownClipboard_) {}

void fMenuDef::Form_Load() {
  view_.SetText(EditorText::TreeLabel, LoadResText(kTreeLabel));
  view_.SetText(EditorText::NameLabel, LoadResText(kName));
  view_.SetText(EditorText::CommandLabel, LoadResText(kCommand));
  view_.SetText(EditorText::HotKeyLabel, LoadResText(kHotKey));
  view_.SetText(EditorText::Ok, LoadResText(kOk));
  view_.SetText(EditorText::Cancel, LoadResText(kCancel));
  view_.SetText(EditorText::Apply, LoadResText(kApply));
  view_.SetText(EditorText::ItemMenu, LoadResText(kItemMenu));
  // The keys work in the tree; the menu names them after a tab.
  view_.SetCommandText(EditorCommand::New, LoadResText(kNew) + L"\tCtrl+N");
  view_.SetCommandText(EditorCommand::Edit, LoadResText(kEdit));
  view_.SetCommandText(EditorCommand::Copy, LoadResText(kCopy) + L"\tCtrl+C");
  view_.SetCommandText(EditorCommand::Cut, LoadResText(kCut) + L"\tCtrl+X");
  view_.SetCommandText(EditorCommand::Paste, LoadResText(kPaste) + L"\tCtrl+V");
  view_.SetCommandText(EditorCommand::Delete, LoadResText(kDelete) + L"\tDel");
  view_.SetCommandText(EditorCommand::MoveUp, LoadResText(kMoveUp));
  view_.SetCommandText(EditorCommand::MoveDown, LoadResText(kMoveDown));
  view_.SetCommandText(EditorCommand::Preview, LoadResText(kPreview));
  view_.SetCommandText(EditorCommand::FindName, LoadResText(kFindName));
  view_.SetCommandText(EditorCommand::FindNext, LoadResText(kFindNext));
  view_.SetCommandText(EditorCommand::FindPrevious, LoadResText(kFindPrevious));
  view_.SetCommandText(EditorCommand::FindKey, LoadResText(kFindKey));
  // The paste captions keep their "%1" templates for every later opening.
  pasteNextTemplate_ = LoadResText(kPasteNext);
  pasteChildTemplate_ = LoadResText(kPasteChild);
  view_.SetCommandText(EditorCommand::PasteAsNext, pasteNextTemplate_);
  view_.SetCommandText(EditorCommand::PasteAsChild, pasteChildTemplate_);
  ShowDirty();
}

MenuLocation fMenuDef::Location() const {
  return {session_.gMenuDir, session_.gAppName, session_.gBrailleName, general_};
}

std::wstring fMenuDef::MenuPath() const { return MenuFilePath(Location()); }

std::wstring fMenuDef::BraillePath() const { return BrailleProfilePath(Location()); }

cMenuFile fMenuDef::MenuFile() const { return cMenuFile(services_.defs.CodePage(), services_.profile); }

std::wstring fMenuDef::HotKeyText(int32_t code) const { return services_.defs.KeyText(code); }

void fMenuDef::ShowDirty() { view_.EnableApply(Dirty()); }

void fMenuDef::CaptionRoot() {
  if (root_) root_->Caption = general_ ? LoadResText(kGeneral) : LoadResText(kApplication, session_.gAppName);
}

void fMenuDef::LoadDefs(const std::wstring& menuDir, const std::wstring& appName, bool general) {
  if (!services_.braille) {
    if (session_.gBrailleName.empty()) session_.gBrailleName = session_.gCmdDisplayName;
    if (services_.brailleOpener) services_.braille = services_.brailleOpener->OpenNew();
    if (services_.braille && session_.gBrailleName.empty() && services_.braille->isValid())
      session_.gBrailleName = services_.braille->BrailleDescription();
  }
  session_.gAppName = appName;
  view_.SetTitle(ReplaceAll(LoadResText(kTitle), L"%1", appName));
  session_.gMenuDir = menuDir;
  general_ = general;
  session_.gGeneralMenu = general;
  cMenuFile file = MenuFile();
  file.ItemCounter = IdBase();
  bool complete = true;
  root_ = file.InitCommandDef(MenuPath(), BraillePath(), &complete);
  // A tree control and a pop-up menu cannot hold a deeper menu: it is not
  // shown, and without a tree nothing can be written over the file.
  tooDeep_ = root_ && MenuLevels(*root_) > kMaxMenuLevels;
  if (tooDeep_) root_.reset();
  damaged_ = !complete && !tooDeep_;
  history_.Clear();
  ShowDirty();
  backedUp_ = false;
  CaptionRoot();
  if (!session_.gBrailleName.empty()) services_.defs.DefActions().InitBrailleKeyMap(BraillePath());
  Redraw();
  if (root_) {
    view_.SelectNode(NodeKey(root_->MenuId));
    trvMenu_NodeClick(NodeKey(root_->MenuId));
  }
  damageToReport_ = damaged_ || tooDeep_;
}

void fMenuDef::Tell(const std::wstring& text) {
  prompts_.Message(text, mb::kOkOnly | mb::kIconExclamation, LoadResText(kProductTitle));
}

void fMenuDef::Form_Activate() {
  if (!damageToReport_) return;
  damageToReport_ = false;
  if (!tooDeep_) {
    Tell(LoadResText(kDamaged, MenuPath()));
    return;
  }
  // Back to the application list, which takes the focus again.
  Tell(LoadResText(kTooDeepFile, MenuPath()));
  view_.Close();
}

void fMenuDef::FillTree() {
  if (!root_) return;
  // Every node with children is shown expanded. Marking it so when it is
  // added costs nothing; expanding it afterwards makes the tree recount all
  // its visible nodes each time.
  view_.AddNode(NodeKey(root_->MenuId), L"", root_->Caption, root_->SubItems.Count() > 0);
  WalkTree(
      static_cast<const cMenuItem&>(*root_),
      [this](const cMenuItem& item, size_t, int) {
        view_.AddNode(NodeKey(item.MenuId), NodeKey(item.Parent ? item.Parent->MenuId : 0), item.Caption,
                      item.SubItems.Count() > 0);
        return true;
      },
      [](const cMenuItem&, size_t) {});
}

void fMenuDef::Redraw() {
  view_.BeginTreeUpdate();
  view_.ClearTree();
  FillTree();
  view_.EndTreeUpdate();
  view_.EnableCommand(EditorCommand::Preview, view_.NodeCount() > 0);
}

void fMenuDef::Refresh(const cMenuItem* item) {
  if (root_) {
    int32_t next = IdBase();
    try {
      root_->CreateMenuId(next);
    } catch (const std::overflow_error&) {
      // More items than ids: the numbers already given stay.
    }
  }
  Redraw();
  if (item) {
    view_.SelectNode(NodeKey(item->MenuId));
    trvMenu_NodeClick(NodeKey(item->MenuId));
  }
}

cMenuItem* fMenuDef::FindItem(int32_t menuId) const {
  if (!root_) return nullptr;
  if (root_->MenuId == menuId) return root_.get();
  cMenuItem* found = nullptr;
  WalkTree(
      *root_,
      [&](cMenuItem& item, size_t, int) {
        if (item.MenuId == menuId) found = &item;
        return found == nullptr;
      },
      [](cMenuItem&, size_t) {});
  return found;
}

cMenuItem* fMenuDef::ItemOfNode(const std::wstring& key) const {
  const auto id = MenuIdOfKey(key);
  return id ? FindItem(*id) : nullptr;
}

cMenuItem* fMenuDef::SelectedItem() const {
  const auto key = view_.SelectedNode();
  return key ? ItemOfNode(*key) : nullptr;
}

bool fMenuDef::SelectedIsTop() const {
  const auto key = view_.SelectedNode();
  return key && root_ && *key == NodeKey(root_->MenuId);
}

void fMenuDef::trvMenu_NodeClick(const std::wstring& key) {
  const cMenuItem* item = ItemOfNode(key);
  if (item) view_.SetFields(item->Caption, item->Action, HotKeyText(item->HotKey));
}

bool fMenuDef::Save() {
  if (tooDeep_) return true;
  const std::wstring path = MenuPath();
  // A damaged original is kept before anything is written over it.
  if (damaged_ && !backedUp_) {
    std::string bytes;
    ReadFailure unread;
    std::wstring reason;
    if (PathExists(path) && (!ReadFileBytes(path, bytes, &unread) || !WriteFileBytes(path + L".bak", bytes, &reason))) {
      Tell(NotSavedText(path, LoadResText(kBackupFailed, path + L".bak") + L" " + unread.reason + reason));
      return false;
    }
    backedUp_ = true;
  }
  if (!root_) {
    std::error_code ignored;
    std::filesystem::remove(ToFsPath(path), ignored);
    history_.MarkSaved();
    ShowDirty();
    return true;
  }
  WriteFailure failed;
  if (!MenuFile().FlushCommand2Def(path, BraillePath(), *root_, &failed)) {
    Tell(NotSavedText(failed.file, failed.reason));
    return false;
  }
  history_.MarkSaved();
  ShowDirty();
  return true;
}

void fMenuDef::cmdApply_Click() { Save(); }

void fMenuDef::cmdOK_Click() {
  if (Save()) view_.Close();
}

void fMenuDef::cmdCancel_Click() { view_.Close(); }

bool fMenuDef::Form_QueryUnload() {
  if (!Dirty()) return true;
  const int answer =
      prompts_.Message(LoadResText(kSaveQuestion), mb::kYesNoCancel | mb::kIconQuestion, LoadResText(kProductTitle));
  if (answer == mb::kIdYes) {
    return Save();
  }
  return answer == mb::kIdNo;
}

void fMenuDef::mnuPreview_Click() {
  if (!root_) return;
  const NativeMenu menu = root_->CreateMenu(services_.menus, [this](int32_t code) { return HotKeyText(code); });
  const int chosen = view_.TrackPreview(menu);
  if (chosen == 0) return;
  const cMenuItem* item = FindItem(chosen);
  if (!item) return;
  const std::wstring key = NodeKey(item->MenuId);
  view_.SelectNode(key);
  trvMenu_NodeClick(key);
  view_.FocusNameField();
}

std::wstring fMenuDef::ListDefs(const std::wstring& menuDir, const std::wstring& appName, bool general) {
  return MenuHelpSection(services_.defs, {menuDir, appName, session_.gBrailleName, general});
}

bool fMenuDef::trvMenu_KeyDown(int key, int shift) {
  if (key == vk::kApps || (key == vk::kF10 && shift == vk::kShiftHeld)) {
    OpenContextMenu();
    return true;
  }
  const struct {
    int key, shift;
    EditorCommand command;
  } keys[] = {
      {vk::kReturn, vk::kAltHeld, EditorCommand::Edit},       {vk::kDown, vk::kShiftHeld, EditorCommand::MoveDown},
      {vk::kUp, vk::kShiftHeld, EditorCommand::MoveUp},       {vk::kDelete, 0, EditorCommand::Delete},
      {'C', vk::kControlHeld, EditorCommand::Copy},           {'X', vk::kControlHeld, EditorCommand::Cut},
      {'V', vk::kControlHeld, EditorCommand::Paste},          {'N', vk::kControlHeld, EditorCommand::New},
      {'Z', vk::kControlHeld, EditorCommand::Undo},           {'Y', vk::kControlHeld, EditorCommand::Redo},
      {'F', vk::kControlHeld, EditorCommand::FindName},       {vk::kF3, 0, EditorCommand::FindNext},
      {vk::kF3, vk::kShiftHeld, EditorCommand::FindPrevious}, {'K', vk::kControlHeld, EditorCommand::FindKey},
  };
  for (const auto& k : keys) {
    if (k.key == key && k.shift == shift) {
      Run(k.command);
      return true;
    }
  }
  return false;
}

void fMenuDef::OpenContextMenu() {
  if (!view_.SelectedNode()) return;
  PrepareItemMenu();
  view_.OpenItemMenu();
}

void fMenuDef::PrepareItemMenu() {
  const auto key = view_.SelectedNode();
  const cMenuItem* item = SelectedItem();
  const bool inner = key && item && !SelectedIsTop();
  const bool held = clipboard_.item != nullptr;
  const cMenuItems* siblings = inner && item->Parent ? &item->Parent->SubItems : nullptr;
  view_.EnableCommand(EditorCommand::New, services_.wizard != nullptr);
  view_.EnableCommand(EditorCommand::Edit, inner && services_.wizard != nullptr);
  view_.EnableCommand(EditorCommand::Copy, inner);
  view_.EnableCommand(EditorCommand::Cut, inner);
  view_.EnableCommand(EditorCommand::PasteAsNext, inner && held);
  view_.EnableCommand(EditorCommand::Paste, key.has_value() && held);
  view_.EnableCommand(EditorCommand::PasteAsChild, key.has_value() && held);
  view_.EnableCommand(EditorCommand::MoveUp, siblings && !siblings->IsFirst(item));
  view_.EnableCommand(EditorCommand::MoveDown, siblings && !siblings->IsLast(item));
  const std::wstring target = key ? view_.NodeText(*key) : std::wstring();
  view_.SetCommandText(EditorCommand::PasteAsChild, ReplaceAll(pasteChildTemplate_, L"%1", target));
  view_.SetCommandText(EditorCommand::PasteAsNext, ReplaceAll(pasteNextTemplate_, L"%1", target));
  view_.SetCommandText(EditorCommand::Undo, UndoText(false));
  view_.SetCommandText(EditorCommand::Redo, UndoText(true));
  view_.EnableCommand(EditorCommand::Undo, history_.CanUndo());
  view_.EnableCommand(EditorCommand::Redo, history_.CanRedo());
}

std::wstring fMenuDef::UndoText(bool redo) const {
  if (!(redo ? history_.CanRedo() : history_.CanUndo())) return LoadResText(redo ? kRedoNone : kUndoNone);
  const StepKind kind = redo ? history_.RedoKind() : history_.UndoKind();
  const std::wstring what = LoadResText(StepText(kind), redo ? history_.RedoCaption() : history_.UndoCaption());
  return ReplaceAll(LoadResText(redo ? kRedoStep : kUndoStep), L"%1", what);
}

void fMenuDef::Changed(const cMenuItem* item) {
  history_.Commit();
  Refresh(item);
  if (!item) view_.SetFields(L"", L"", L"");
  ShowDirty();
}

void fMenuDef::Undo(bool redo) {
  if (!(redo ? history_.CanRedo() : history_.CanUndo())) {
    Tell(LoadResText(redo ? kNothingToRedo : kNothingToUndo));
    return;
  }
  const cMenuItem* item = redo ? history_.Redo() : history_.Undo();
  Refresh(item);
  if (!item) view_.SetFields(L"", L"", L"");
  ShowDirty();
}

void fMenuDef::Show(const cMenuItem& item) {
  const std::wstring key = NodeKey(item.MenuId);
  view_.SelectNode(key);
  trvMenu_NodeClick(key);
}

cMenuItem* fMenuDef::Search(const std::function<bool(const cMenuItem&)>& match, bool forward) const {
  if (!root_) return nullptr;
  std::vector<cMenuItem*> order;
  WalkTree(
      *root_,
      [&order](cMenuItem& item, size_t, int) {
        order.push_back(&item);
        return true;
      },
      [](cMenuItem&, size_t) {});
  const size_t count = order.size();
  // Without a selected item (or on the top node) the search starts at the
  // first item going forward and at the last going back.
  const cMenuItem* selected = SelectedItem();
  size_t start = forward ? count - 1 : 0;
  for (size_t i = 0; i < count; ++i) {
    if (order[i] == selected) start = i;
  }
  for (size_t step = 1; step <= count; ++step) {
    cMenuItem* item = order[forward ? (start + step) % count : (start + count - step) % count];
    if (match(*item)) return item;
  }
  return nullptr;
}

void fMenuDef::mnuFindName_Click() {
  if (!root_ || root_->SubItems.Count() == 0) {
    Tell(LoadResText(kNoItems));
    return;
  }
  const std::wstring text = prompts_.InputBox(LoadResText(kFindLabel), LoadResText(kFindTitle), findText_);
  if (text.empty()) return;  // cancelled
  findText_ = text;
  FindNext(true);
}

void fMenuDef::FindNext(bool forward) {
  if (findText_.empty()) {
    mnuFindName_Click();
    return;
  }
  const std::wstring wanted = UpperCase(findText_);
  const cMenuItem* found = Search(
      [&wanted](const cMenuItem& item) { return UpperCase(item.Caption).find(wanted) != std::wstring::npos; }, forward);
  if (found)
    Show(*found);
  else
    Tell(LoadResText(kNoName, findText_));
}

std::wstring fMenuDef::FindByKey(int32_t code) {
  const cMenuItem* found = Search([code](const cMenuItem& item) { return item.HotKey == code; }, true);
  if (found) {
    Show(*found);
    return {};
  }
  std::wstring text = LoadResText(kNoKey, HotKeyText(code));
  if (general_) return text;
  std::wstring users;
  for (const auto& caption : cOtherMenus(services_.defs, Location()).GeneralItems(code))
    users += (users.empty() ? L"\"" : L", \"") + caption + L"\"";
  if (!users.empty()) text += L" " + LoadResText(kAlsoGeneral, users);
  return text;
}

IBrailleDisplay* fMenuDef::Braille() const {
  return services_.braille && services_.braille->isValid() ? services_.braille.get() : nullptr;
}

void fMenuDef::Run(EditorCommand command) {
  switch (command) {
    case EditorCommand::New:
      mnuNew_Click();
      break;
    case EditorCommand::Edit:
      mnuTreeEdit_Click();
      break;
    case EditorCommand::Copy:
      mnuTreeCopy_Click();
      break;
    case EditorCommand::Cut:
      mnuTreeCut_Click();
      break;
    case EditorCommand::Paste:
      mnuTreePaste_Click();
      break;
    case EditorCommand::PasteAsNext:
      mnuTreePasteAsNext_Click();
      break;
    case EditorCommand::PasteAsChild:
      mnuTreePasteAsChild_Click();
      break;
    case EditorCommand::Delete:
      mnuTreeDelete_Click();
      break;
    case EditorCommand::MoveUp:
      MoveSelected(false);
      break;
    case EditorCommand::MoveDown:
      MoveSelected(true);
      break;
    case EditorCommand::Preview:
      mnuPreview_Click();
      break;
    case EditorCommand::Undo:
    case EditorCommand::Redo:
      Undo(command == EditorCommand::Redo);
      break;
    case EditorCommand::FindName:
      mnuFindName_Click();
      break;
    case EditorCommand::FindNext:
    case EditorCommand::FindPrevious:
      FindNext(command == EditorCommand::FindNext);
      break;
    case EditorCommand::FindKey:
      if (root_ && root_->SubItems.Count() > 0)
        view_.OpenFindKey();
      else
        Tell(LoadResText(kNoItems));
      break;
  }
}

}  // namespace nx
