#include "wizard/wizard_window.h"

#include <commctrl.h>

#include <vector>

#include "platform/code_page.h"
#include "platform/win32/kit.h"
#include "resource.h"
#include "startup/file_helpers.h"
#include "platform/string_table.h"

namespace nx {
namespace {

int ControlId(WizardControl control) {
  switch (control) {
    case WizardControl::NameLabel:
      return IDC_LBL_NAME_W;
    case WizardControl::TypeFrame:
      return IDC_FRA_ACTION;
    case WizardControl::OptCommand:
      return IDC_OPT_COMMAND;
    case WizardControl::OptScript:
      return IDC_OPT_SCRIPT;
    case WizardControl::OptPullDown:
      return IDC_OPT_PULLDOWN;
    case WizardControl::CommandLabel:
      return IDC_LBL_COMMAND_LIST;
    case WizardControl::ScriptLabel:
      return IDC_LBL_SCRIPT;
    case WizardControl::Browse:
      return IDC_CMD_BROWSE;
    case WizardControl::Open:
      return IDC_CMD_OPEN;
    case WizardControl::Form:
      return IDC_CMD_FORM;
    case WizardControl::Tips:
      return IDC_CMD_TIPS;
    case WizardControl::HotKeyLabel:
      return IDC_LBL_HOTKEY_W;
    case WizardControl::UsedByLabel:
      return IDC_LBL_USEDBY;
    case WizardControl::Discard:
      return IDC_CHK_DISCARD;
    case WizardControl::Braille:
      return IDC_CHK_BRAILLE;
    case WizardControl::BrailleHook:
      return IDC_CHK_BRAILLE_HOOK;
    case WizardControl::Delete:
      return IDC_CMD_HOTKEY_DEL;
    case WizardControl::Back:
      return IDC_CMD_PREV;
    case WizardControl::Next:
      return IDC_CMD_NEXT;
    case WizardControl::Cancel:
      return IDCANCEL;
  }
  return 0;
}

// The controls of each pane, in the order the focus meets them.
const std::vector<int>& PaneControls(WizardPane pane) {
  static const std::vector<int> name{IDC_LBL_NAME_W, IDC_TXT_NAME_W};
  static const std::vector<int> type{IDC_FRA_ACTION, IDC_OPT_COMMAND, IDC_OPT_SCRIPT, IDC_OPT_PULLDOWN};
  static const std::vector<int> command{IDC_LBL_COMMAND_LIST, IDC_LST_COMMAND, IDC_LBL_COMMAND_TEXT, IDC_TXT_COMMAND_W};
  static const std::vector<int> script{IDC_LBL_SCRIPT, IDC_TXT_SCRIPT, IDC_CMD_BROWSE,
                                       IDC_CMD_OPEN,   IDC_CMD_FORM,   IDC_CMD_TIPS};
  static const std::vector<int> hotKey{IDC_LBL_HOTKEY_W, IDC_HK,          IDC_LBL_USEDBY,       IDC_TXT_USEDBY,
                                       IDC_CHK_DISCARD,  IDC_CHK_BRAILLE, IDC_CHK_BRAILLE_HOOK, IDC_CMD_HOTKEY_DEL};
  switch (pane) {
    case WizardPane::Name:
      return name;
    case WizardPane::Type:
      return type;
    case WizardPane::Command:
      return command;
    case WizardPane::Script:
      return script;
    case WizardPane::HotKey:
      return hotKey;
  }
  return name;
}

}  // namespace

WizardWindow::WizardWindow(HINSTANCE instance, IProcesses& processes, EditSession& session, cNarrixInfo& info,
                           cDefServer& defs)
    : ModalDialog(instance), logic_(*this, prompts_, processes, session, info, defs, SystemCodePage()) {}

// Keys in the capture field are taken before the dialog sees them: Alt
// combinations, F10 and Enter are hot keys there, not commands, and their
// releases must not start menu mode.
bool WizardWindow::PreTranslate(const MSG& msg) {
  if (msg.hwnd != Item(IDC_HK)) return false;
  switch (msg.message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
      return logic_.hk_KeyDown(static_cast<int>(msg.wParam), KeyShiftMask());
    case WM_KEYUP:
    case WM_SYSKEYUP:
      return logic_.hk_KeyUp(static_cast<int>(msg.wParam), KeyShiftMask());
    default:
      return false;
  }
}

INT_PTR WizardWindow::OnMessage(UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      prompts_.SetOwner(hwnd_);
      logic_.Form_Load();
      return FALSE;
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_CLOSE:
      logic_.cmdCANCEL_Click();
      return TRUE;
    case WM_ACTIVATE:
      // The dialog would give the focus back to the control it had when it
      // was hidden, which belongs to the old page.
      if (LOWORD(wParam) == WA_INACTIVE || !focusPending_ || !pageFocus_) return FALSE;
      focusPending_ = false;
      SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(pageFocus_)), TRUE);
      return TRUE;
    case WM_SYSCOMMAND:
      // Menu mode, however it is asked for, never starts from the capture
      // field: it would take the keys meant as hot keys.
      return (wParam & 0xFFF0) == SC_KEYMENU && GetFocus() == Item(IDC_HK);
    default:
      return FALSE;
  }
}

void WizardWindow::OnCommand(int id, int code) {
  switch (id) {
    case IDC_CMD_NEXT:
      logic_.cmdNext_Click();
      break;
    case IDC_CMD_PREV:
      logic_.cmdPrev_Click();
      break;
    case IDCANCEL:
      logic_.cmdCANCEL_Click();
      break;
    case IDC_TXT_NAME_W:
      if (code == EN_CHANGE && !filling_) logic_.txtName_Change(TextOf(IDC_TXT_NAME_W));
      if (code == EN_SETFOCUS) SendMessageW(Item(IDC_TXT_NAME_W), EM_SETSEL, 0, -1);
      break;
    case IDC_TXT_SCRIPT:
      if (code == EN_CHANGE && !filling_) logic_.txtScriptPath_Change(TextOf(IDC_TXT_SCRIPT));
      break;
    case IDC_OPT_COMMAND:
      logic_.Kind_Click(WizardKind::Command);
      break;
    case IDC_OPT_SCRIPT:
      logic_.Kind_Click(WizardKind::Script);
      break;
    case IDC_OPT_PULLDOWN:
      logic_.Kind_Click(WizardKind::PullDown);
      break;
    case IDC_CMD_BROWSE:
      logic_.cmdScriptBrowse_Click();
      break;
    case IDC_CMD_OPEN:
      logic_.cmdScriptEdit_Click();
      break;
    case IDC_CMD_FORM:
      logic_.cmdScriptForm_Click();
      break;
    case IDC_CMD_TIPS:
      logic_.cmdTips_Click();
      break;
    case IDC_CHK_DISCARD:
      logic_.chkDiscard_Click(Checked(WizardControl::Discard));
      break;
    case IDC_CHK_BRAILLE:
      logic_.chkBraille_Click(Checked(WizardControl::Braille));
      break;
    case IDC_CHK_BRAILLE_HOOK:
      logic_.chkBrailleHook_Click(Checked(WizardControl::BrailleHook));
      break;
    case IDC_CMD_HOTKEY_DEL:
      logic_.cmdHotKeyDel_Click();
      break;
    default:
      break;
  }
}

std::wstring WizardWindow::TextOf(int id) const { return WindowText(Item(id)); }

// A hidden window is not given the focus: that would activate it, and the
// dialog would first give the focus back to the control it had.
void WizardWindow::Focus(int id) {
  if (IsWindowVisible(hwnd_)) SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(id)), TRUE);
}

void WizardWindow::FocusPageIfPending() {
  if (!focusPending_) return;
  focusPending_ = false;
  Focus(pageFocus_);
}

void WizardWindow::SetTitle(const std::wstring& text) { SetWindowTextW(hwnd_, text.c_str()); }

void WizardWindow::SetText(WizardControl control, const std::wstring& text) {
  SetDlgItemTextW(hwnd_, ControlId(control), text.c_str());
  // The free-text command field has its own copy of the command label.
  if (control == WizardControl::CommandLabel) SetDlgItemTextW(hwnd_, IDC_LBL_COMMAND_TEXT, text.c_str());
}

void WizardWindow::EnableControl(WizardControl control, bool enabled) {
  HWND item = Item(ControlId(control));
  if (!enabled && GetFocus() == item) SendMessageW(hwnd_, WM_NEXTDLGCTL, 0, FALSE);
  EnableWindow(item, enabled ? TRUE : FALSE);
}

void WizardWindow::ShowControl(WizardControl control, bool shown) {
  ShowWindow(Item(ControlId(control)), shown && pane_ == WizardPane::Script ? SW_SHOW : SW_HIDE);
  if (control == WizardControl::Form) formShown_ = shown;
}

// Pages are laid out while the window is hidden; the focus goes to the
// page's control when the window is shown (or now, if it is shown).
void WizardWindow::ShowPane(WizardPane pane) {
  pane_ = pane;
  for (WizardPane p : {WizardPane::Name, WizardPane::Type, WizardPane::Command, WizardPane::Script, WizardPane::HotKey})
    if (p != pane)
      for (int id : PaneControls(p)) ShowWindow(Item(id), SW_HIDE);
  for (int id : PaneControls(pane)) {
    bool shown = true;
    if (id == IDC_LST_COMMAND || id == IDC_LBL_COMMAND_LIST) shown = commandList_;
    if (id == IDC_TXT_COMMAND_W || id == IDC_LBL_COMMAND_TEXT) shown = !commandList_;
    if (id == IDC_CMD_FORM) shown = formShown_;
    ShowWindow(Item(id), shown ? SW_SHOW : SW_HIDE);
  }
  switch (pane) {
    case WizardPane::Name:
      pageFocus_ = IDC_TXT_NAME_W;
      break;
    case WizardPane::Type:
      pageFocus_ = IsDlgButtonChecked(hwnd_, IDC_OPT_COMMAND)  ? IDC_OPT_COMMAND
                   : IsDlgButtonChecked(hwnd_, IDC_OPT_SCRIPT) ? IDC_OPT_SCRIPT
                                                               : IDC_OPT_PULLDOWN;
      break;
    case WizardPane::Command:
      pageFocus_ = commandList_ ? IDC_LST_COMMAND : IDC_TXT_COMMAND_W;
      break;
    case WizardPane::Script:
      pageFocus_ = IDC_TXT_SCRIPT;
      break;
    case WizardPane::HotKey:
      pageFocus_ = IDC_HK;
      break;
  }
  Focus(pageFocus_);
}

// The new page is laid out while the window is hidden: controls shown in a
// visible window that is then hidden and shown again were left unpainted.
void WizardWindow::HideWindow() { ShowWindow(hwnd_, SW_HIDE); }

void WizardWindow::ShowWindowAgain() {
  focusPending_ = true;
  ShowWindow(hwnd_, SW_SHOWNORMAL);
  SetForegroundWindow(hwnd_);
  FocusPageIfPending();
}

void WizardWindow::Close() { EndModal(); }

void WizardWindow::SetName(const std::wstring& text) {
  filling_ = true;
  SetDlgItemTextW(hwnd_, IDC_TXT_NAME_W, text.c_str());
  filling_ = false;
}

void WizardWindow::SetKind(WizardKind kind) {
  const int id = kind == WizardKind::Command  ? IDC_OPT_COMMAND
                 : kind == WizardKind::Script ? IDC_OPT_SCRIPT
                                              : IDC_OPT_PULLDOWN;
  CheckRadioButton(hwnd_, IDC_OPT_COMMAND, IDC_OPT_PULLDOWN, id);
}

void WizardWindow::ClearCommands() { SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_RESETCONTENT, 0, 0); }

void WizardWindow::AddCommand(const std::wstring& text, int data) {
  const LRESULT line =
      SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
  SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_SETITEMDATA, static_cast<WPARAM>(line), data);
}

void WizardWindow::SelectCommand(int line) {
  SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_SETCURSEL, static_cast<WPARAM>(line), 0);
}

int WizardWindow::SelectedCommand() const {
  return static_cast<int>(SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_GETCURSEL, 0, 0));
}

int WizardWindow::CommandData(int line) const {
  return static_cast<int>(SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_GETITEMDATA, static_cast<WPARAM>(line), 0));
}

int WizardWindow::CommandCount() const {
  return static_cast<int>(SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_GETCOUNT, 0, 0));
}

void WizardWindow::ScrollCommandToTop(int line) {
  SendDlgItemMessageW(hwnd_, IDC_LST_COMMAND, LB_SETTOPINDEX, static_cast<WPARAM>(line), 0);
}

void WizardWindow::ShowCommandList(bool list) { commandList_ = list; }
bool WizardWindow::CommandListShown() const { return commandList_; }

void WizardWindow::SetCommandText(const std::wstring& text) { SetDlgItemTextW(hwnd_, IDC_TXT_COMMAND_W, text.c_str()); }
std::wstring WizardWindow::CommandText() const { return TextOf(IDC_TXT_COMMAND_W); }

void WizardWindow::SetScriptPath(const std::wstring& text) {
  filling_ = true;
  SetDlgItemTextW(hwnd_, IDC_TXT_SCRIPT, text.c_str());
  filling_ = false;
}
std::wstring WizardWindow::ScriptPath() const { return TextOf(IDC_TXT_SCRIPT); }

void WizardWindow::SelectText(WizardField field, size_t start, size_t length) {
  const int id = field == WizardField::Name      ? IDC_TXT_NAME_W
                 : field == WizardField::Command ? IDC_TXT_COMMAND_W
                                                 : IDC_TXT_SCRIPT;
  Focus(id);
  SendDlgItemMessageW(hwnd_, id, EM_SETSEL, start, static_cast<LPARAM>(start + length));
}

void WizardWindow::SetHotKeyText(const std::wstring& text, bool keepFocus) {
  SetDlgItemTextW(hwnd_, IDC_HK, text.c_str());
  if (!keepFocus) Focus(IDC_HK);
}

void WizardWindow::FocusHotKey() { Focus(IDC_HK); }

bool WizardWindow::HotKeyHasFocus() const { return GetFocus() == Item(IDC_HK); }

void WizardWindow::SetUsedBy(const std::wstring& text) { SetDlgItemTextW(hwnd_, IDC_TXT_USEDBY, text.c_str()); }

void WizardWindow::SetChecked(WizardControl box, bool checked) {
  CheckDlgButton(hwnd_, ControlId(box), checked ? BST_CHECKED : BST_UNCHECKED);
}

bool WizardWindow::Checked(WizardControl box) const { return IsDlgButtonChecked(hwnd_, ControlId(box)) == BST_CHECKED; }

bool WizardWindow::IsKeyDown(int key) const { return GetKeyState(key) < 0; }

std::optional<ItemFields> WizardLauncher::Describe(const ItemFields& fields, bool isNew, const cMenuItem* root,
                                                   const cMenuItem* original) {
  WizardWindow window(instance_, processes_, session_, info_, defs_);
  if (!window.Create(GetActiveWindow())) return std::nullopt;
  fWizard& wizard = window.Logic();
  wizard.SetMenu(root, original);
  wizard.SetCaptionBase(LoadResText(isNew ? 704 : 703));
  wizard.SetTipsCaption(LoadResText(724));
  wizard.LoadDefs(JoinPath(info_.DirSet(), L"gKeyCode.def"), JoinPath(info_.DirSet(), L"gActions.def"));
  wizard.SetBrailleOpener(brailleOpener_);
  wizard.SetMenuItem(fields);
  window.RunModal();
  if (wizard.Response() != 1) return std::nullopt;
  return wizard.MenuItem();
}

bool Win32Processes::Start(const std::wstring& commandLine) {
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION process{};
  std::wstring line = commandLine;
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    return false;
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return true;
}

}  // namespace nx
