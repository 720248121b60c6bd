#include "menu/menu_editor_window.h"

#include "menu/find_key_window.h"
#include "platform/win32/kit.h"
#include "resource.h"

namespace nx {
namespace {

int CommandId(EditorCommand command) {
  switch (command) {
    case EditorCommand::New:
      return IDM_NEW;
    case EditorCommand::Edit:
      return IDM_EDIT;
    case EditorCommand::Copy:
      return IDM_COPY;
    case EditorCommand::Cut:
      return IDM_CUT;
    case EditorCommand::Paste:
      return IDM_PASTE;
    case EditorCommand::PasteAsNext:
      return IDM_PASTE_NEXT;
    case EditorCommand::PasteAsChild:
      return IDM_PASTE_CHILD;
    case EditorCommand::Delete:
      return IDM_DELETE;
    case EditorCommand::MoveUp:
      return IDM_MOVE_UP;
    case EditorCommand::MoveDown:
      return IDM_MOVE_DOWN;
    case EditorCommand::Preview:
      return IDM_PREVIEW;
    case EditorCommand::Undo:
      return IDM_UNDO;
    case EditorCommand::Redo:
      return IDM_REDO;
    case EditorCommand::FindName:
      return IDM_FIND_NAME;
    case EditorCommand::FindNext:
      return IDM_FIND_NEXT;
    case EditorCommand::FindPrevious:
      return IDM_FIND_PREVIOUS;
    case EditorCommand::FindKey:
      return IDM_FIND_KEY;
  }
  return 0;
}

constexpr UINT kTreeFocused = WM_APP + 1;

}  // namespace

MenuEditorWindow::MenuEditorWindow(HINSTANCE instance, const MenuEditorServices& services, IPrompts* askWith)
    : ModalDialog(instance), logic_(*this, askWith ? *askWith : prompts_, services) {}

// Only now can a message box be owned by the editor and keep the windows
// behind it disabled; the tree gets the focus once the box is answered.
void MenuEditorWindow::OnShown() {
  logic_.Form_Activate();
  SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Tree()), TRUE);
}

bool MenuEditorWindow::PreTranslate(const MSG& msg) {
  if (msg.message != WM_KEYDOWN && msg.message != WM_SYSKEYDOWN) return false;
  if (msg.hwnd != hwnd_ && !IsChild(hwnd_, msg.hwnd)) return false;
  const int key = static_cast<int>(msg.wParam), shift = KeyShiftMask();
  if (key == VK_F9 && shift == 0) {
    logic_.Run(EditorCommand::Preview);
    return true;
  }
  if (msg.hwnd != Tree()) return false;
  if (logic_.trvMenu_KeyDown(key, shift)) return true;
  // Enter in the tree must not press OK: it would save and close the menu.
  return key == VK_RETURN && shift == 0;
}

HWND MenuEditorWindow::Tree() const { return GetDlgItem(hwnd_, IDC_TRV_MENU); }

INT_PTR MenuEditorWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      prompts_.SetOwner(hwnd_);
      logic_.Form_Load();
      return FALSE;
    case WM_COMMAND:
      OnCommand(LOWORD(wParam));
      return TRUE;
    case WM_INITMENUPOPUP:
      if (reinterpret_cast<HMENU>(wParam) == GetSubMenu(GetMenu(hwnd_), 0)) logic_.PrepareItemMenu();
      return TRUE;
    case WM_CONTEXTMENU:
      OnContextMenu(reinterpret_cast<HWND>(wParam), lParam);
      return TRUE;
    case WM_NOTIFY: {
      const auto* header = reinterpret_cast<const NMHDR*>(lParam);
      // A new item pending from the command line starts once the tree has
      // the focus, after the messages already waiting.
      if (header->idFrom == IDC_TRV_MENU && header->code == NM_SETFOCUS) PostMessageW(hwnd_, kTreeFocused, 0, 0);
      if (header->idFrom == IDC_TRV_MENU && header->code == TVN_SELCHANGEDW && !updating_) {
        const auto* change = reinterpret_cast<const NMTREEVIEWW*>(lParam);
        auto key = keys_.find(change->itemNew.hItem);
        if (key != keys_.end()) logic_.trvMenu_NodeClick(key->second);
      }
      return FALSE;
    }
    case WM_CLOSE:
      if (logic_.Form_QueryUnload()) EndModal();
      return TRUE;
    case kTreeFocused:
      logic_.trvMenu_GotFocus();
      return TRUE;
    default:
      return FALSE;
  }
}

void MenuEditorWindow::OnCommand(int id) {
  switch (id) {
    case IDOK:
      logic_.cmdOK_Click();
      return;
    case IDCANCEL:
      logic_.cmdCancel_Click();
      return;
    case IDC_CMD_APPLY:
      logic_.cmdApply_Click();
      return;
    default:
      break;
  }
  for (EditorCommand command :
       {EditorCommand::New, EditorCommand::Edit, EditorCommand::Copy, EditorCommand::Cut, EditorCommand::Paste,
        EditorCommand::PasteAsNext, EditorCommand::PasteAsChild, EditorCommand::Delete, EditorCommand::MoveUp,
        EditorCommand::MoveDown, EditorCommand::Preview, EditorCommand::Undo, EditorCommand::Redo,
        EditorCommand::FindName, EditorCommand::FindNext, EditorCommand::FindPrevious, EditorCommand::FindKey}) {
    if (CommandId(command) == id) logic_.Run(command);
  }
}

void MenuEditorWindow::OnContextMenu(HWND from, LPARAM position) {
  if (from != Tree()) return;
  if (position != -1) {
    // A right click: the node under the pointer becomes the selected one.
    TVHITTESTINFO hit{};
    hit.pt = {static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
    ScreenToClient(Tree(), &hit.pt);
    HTREEITEM item = TreeView_HitTest(Tree(), &hit);
    if (!item || !(hit.flags & TVHT_ONITEM)) return;
    TreeView_SelectItem(Tree(), item);
  }
  logic_.OpenContextMenu();
}

void MenuEditorWindow::SetTitle(const std::wstring& text) { SetWindowTextW(hwnd_, text.c_str()); }

void MenuEditorWindow::SetText(EditorText what, const std::wstring& text) {
  int id = 0;
  switch (what) {
    case EditorText::TreeLabel:
      id = IDC_LBL_TREE;
      break;
    case EditorText::NameLabel:
      id = IDC_LBL_NAME;
      break;
    case EditorText::CommandLabel:
      id = IDC_LBL_COMMAND;
      break;
    case EditorText::HotKeyLabel:
      id = IDC_LBL_HOTKEY;
      break;
    case EditorText::Ok:
      id = IDOK;
      break;
    case EditorText::Cancel:
      id = IDCANCEL;
      break;
    case EditorText::Apply:
      id = IDC_CMD_APPLY;
      break;
    case EditorText::ItemMenu: {
      MENUITEMINFOW info{};
      info.cbSize = sizeof(info);
      info.fMask = MIIM_STRING;
      info.dwTypeData = const_cast<wchar_t*>(text.c_str());
      SetMenuItemInfoW(GetMenu(hwnd_), 0, TRUE, &info);
      DrawMenuBar(hwnd_);
      return;
    }
  }
  SetDlgItemTextW(hwnd_, id, text.c_str());
}

void MenuEditorWindow::SetCommandText(EditorCommand command, const std::wstring& text) {
  HMENU bar = GetMenu(hwnd_);
  MENUITEMINFOW info{};
  info.cbSize = sizeof(info);
  info.fMask = MIIM_STRING;
  info.dwTypeData = const_cast<wchar_t*>(text.c_str());
  SetMenuItemInfoW(bar, static_cast<UINT>(CommandId(command)), FALSE, &info);
  if (command == EditorCommand::Preview) DrawMenuBar(hwnd_);
}

void MenuEditorWindow::EnableCommand(EditorCommand command, bool enabled) {
  EnableMenuItem(GetMenu(hwnd_), static_cast<UINT>(CommandId(command)),
                 MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
  if (command == EditorCommand::Preview) DrawMenuBar(hwnd_);
}

void MenuEditorWindow::EnableApply(bool enabled) {
  HWND apply = GetDlgItem(hwnd_, IDC_CMD_APPLY);
  // A disabled button cannot keep the focus: after Apply it goes back to
  // the tree rather than nowhere.
  if (!enabled && GetFocus() == apply) SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Tree()), TRUE);
  EnableWindow(apply, enabled ? TRUE : FALSE);
}

// The tree is not redrawn while it is refilled. WM_SETREDRAW suspends just
// this control; LockWindowUpdate would freeze the whole desktop's drawing.
void MenuEditorWindow::BeginTreeUpdate() {
  updating_ = true;
  SendMessageW(Tree(), WM_SETREDRAW, FALSE, 0);
}

void MenuEditorWindow::EndTreeUpdate() {
  SendMessageW(Tree(), WM_SETREDRAW, TRUE, 0);
  InvalidateRect(Tree(), nullptr, TRUE);
  updating_ = false;
}

void MenuEditorWindow::ClearTree() {
  const bool wasUpdating = updating_;
  updating_ = true;
  TreeView_DeleteAllItems(Tree());
  updating_ = wasUpdating;
  nodes_.clear();
  keys_.clear();
}

void MenuEditorWindow::AddNode(const std::wstring& key, const std::wstring& parentKey, const std::wstring& text,
                               bool expanded) {
  TVINSERTSTRUCTW insert{};
  auto parent = nodes_.find(parentKey);
  insert.hParent = parentKey.empty() || parent == nodes_.end() ? TVI_ROOT : parent->second;
  insert.hInsertAfter = TVI_LAST;
  insert.item.mask = TVIF_TEXT | TVIF_STATE;
  insert.item.state = expanded ? TVIS_EXPANDED : 0;
  insert.item.stateMask = TVIS_EXPANDED;
  insert.item.pszText = const_cast<wchar_t*>(text.c_str());
  HTREEITEM item = TreeView_InsertItem(Tree(), &insert);
  if (!item) return;
  nodes_[key] = item;
  keys_[item] = key;
}

int MenuEditorWindow::NodeCount() const { return static_cast<int>(TreeView_GetCount(Tree())); }

std::optional<std::wstring> MenuEditorWindow::SelectedNode() const {
  auto key = keys_.find(TreeView_GetSelection(Tree()));
  if (key == keys_.end()) return std::nullopt;
  return key->second;
}

void MenuEditorWindow::SelectNode(const std::wstring& key) {
  auto node = nodes_.find(key);
  if (node == nodes_.end()) return;
  TreeView_SelectItem(Tree(), node->second);
}

std::wstring MenuEditorWindow::NodeText(const std::wstring& key) const {
  auto node = nodes_.find(key);
  if (node == nodes_.end()) return {};
  wchar_t text[1024] = {};
  TVITEMW item{};
  item.mask = TVIF_TEXT;
  item.hItem = node->second;
  item.pszText = text;
  item.cchTextMax = 1024;
  TreeView_GetItem(Tree(), &item);
  return text;
}

void MenuEditorWindow::SetFields(const std::wstring& name, const std::wstring& command, const std::wstring& hotKey) {
  SetDlgItemTextW(hwnd_, IDC_TXT_NAME, name.c_str());
  SetDlgItemTextW(hwnd_, IDC_TXT_COMMAND, command.c_str());
  SetDlgItemTextW(hwnd_, IDC_TXT_HOTKEY, hotKey.c_str());
}

void MenuEditorWindow::FocusNameField() {
  SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(hwnd_, IDC_TXT_NAME)), TRUE);
}

void MenuEditorWindow::OpenItemMenu() {
  // Below the selected node's text, or at the tree's corner without one.
  RECT text{};
  HTREEITEM selected = TreeView_GetSelection(Tree());
  if (selected) TreeView_GetItemRect(Tree(), selected, &text, TRUE);
  POINT at{text.left, text.bottom};
  ClientToScreen(Tree(), &at);
  TrackPopupMenuEx(GetSubMenu(GetMenu(hwnd_), 0), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON, at.x, at.y, hwnd_,
                   nullptr);
}

void MenuEditorWindow::OpenFindKey() {
  FindKeyWindow window(instance_, logic_, logic_.Braille());
  if (window.Create(hwnd_)) window.RunModal();
}

int MenuEditorWindow::TrackPreview(NativeMenu menu) {
  RECT window{};
  GetWindowRect(hwnd_, &window);
  const int y = window.top + GetSystemMetrics(SM_CYCAPTION);
  // The menu's right edge at the window's left edge, the choice returned, no
  // messages.
  constexpr UINT kFlags = TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTALIGN | TPM_RECURSE;
  return static_cast<int>(TrackPopupMenuEx(reinterpret_cast<HMENU>(menu), kFlags, window.left, y, hwnd_, nullptr));
}

void MenuEditorWindow::Close() { PostMessageW(hwnd_, WM_CLOSE, 0, 0); }

}  // namespace nx
