#include "wizard/wizard.h"

#include "defs/hot_key.h"
#include "platform/keys.h"
#include "platform/folders.h"
#include "platform/text.h"
#include "startup/file_helpers.h"
#include "platform/string_table.h"

namespace nx {
namespace {

constexpr int kBack = 700, kNext = 701, kFinish = 702, kName = 705, kType = 706, kCommand = 707, kHotKey = 708;
constexpr int kNarrixCommand = 709, kNameLabel = 710, kTypeFrame = 711, kOptCommand = 712, kOptScript = 713;
constexpr int kOptPullDown = 714, kCommandLabel = 715, kScriptLabel = 717, kOpen = 718, kBrowse = 719;
constexpr int kDiscard = 722, kHotKeyLabel = 723, kDelete = 725, kCancel = 101, kGeneralMenu = 504;
constexpr int kUsedBy = 645, kForm = 646, kBraille = 647, kBrailleHook = 648;
constexpr int kUnstorable = 726;

}  // namespace

fWizard::fWizard(IWizardView& view, IPrompts& prompts, IProcesses& processes, EditSession& session, cNarrixInfo& info,
                 cDefServer& defs, const ICodePage& codePage)
    : view_(view),
      prompts_(prompts),
      processes_(processes),
      session_(session),
      info_(info),
      defs_(defs),
      codePage_(codePage) {}

void fWizard::Form_Load() {
  const struct {
    WizardControl control;
    int id;
  } captions[] = {{WizardControl::NameLabel, kNameLabel},
                  {WizardControl::HotKeyLabel, kHotKeyLabel},
                  {WizardControl::CommandLabel, kCommandLabel},
                  {WizardControl::ScriptLabel, kScriptLabel},
                  {WizardControl::TypeFrame, kTypeFrame},
                  {WizardControl::OptPullDown, kOptPullDown},
                  {WizardControl::OptScript, kOptScript},
                  {WizardControl::OptCommand, kOptCommand},
                  {WizardControl::Browse, kBrowse},
                  {WizardControl::Open, kOpen},
                  {WizardControl::Back, kBack},
                  {WizardControl::Discard, kDiscard},
                  {WizardControl::Next, kNext},
                  {WizardControl::Cancel, kCancel},
                  {WizardControl::Delete, kDelete},
                  {WizardControl::UsedByLabel, kUsedBy},
                  {WizardControl::Form, kForm},
                  {WizardControl::Braille, kBraille},
                  {WizardControl::BrailleHook, kBrailleHook}};
  for (const auto& c : captions) view_.SetText(c.control, LoadResText(c.id));
}

void fWizard::SetCaptionBase(const std::wstring& base) {
  captionBase_ = base;
  view_.SetTitle(base + LoadResText(kName));
}

void fWizard::SetTipsCaption(const std::wstring& text) { view_.SetText(WizardControl::Tips, text); }

void fWizard::LoadDefs(const std::wstring& keyCodePath, const std::wstring& actionsPath) {
  cDefActions& defs = defs_.DefActions();
  defs.RenderKeyCodeDescrip2List(keyCodePath);
  defs.InitNXactionsDef(actionsPath, &actions_);
}

void fWizard::SetMenu(const cMenuItem* root, const cMenuItem* original) {
  root_ = root;
  original_ = original;
}

void fWizard::SetMenuItem(const ItemFields& fields) {
  item_ = fields;
  PageDisplay();
  PageLayout();
}

// The page's contents come from the item first; the layout then adds what
// the command line asks for (a script path makes a script item of a new
// one), so that it is not overwritten by the item's empty command. Once a
// command has been stored (Next on the command page), the user's choice
// counts and the command line is not offered again.
void fWizard::PageDisplay() {
  if (!item_ || page_ < 0 || page_ > 3) return;
  view_.EnableControl(WizardControl::Next, true);
  switch (page_) {
    case 0:
      view_.SetTitle(captionBase_ + LoadResText(kName));
      view_.SetName(item_->Caption);
      break;
    case 1:
      view_.SetTitle(captionBase_ + LoadResText(kType));
      if (item_->Action.empty())
        ShowKind(WizardKind::PullDown);
      else
        ShowKind(StartsWithNoCase(item_->Action, L"shell") ? WizardKind::Script : WizardKind::Command);
      break;
    case 2:
      // Back from the hot-key page: the display is for reading again.
      if (display_) {
        SetBrailleDisplay(nullptr);
        view_.SetChecked(WizardControl::BrailleHook, false);
      }
      if (kind_ == WizardKind::Script) {
        view_.SetTitle(captionBase_ + LoadResText(kCommand));
        FillScript();
      } else {
        view_.SetTitle(captionBase_ + LoadResText(kNarrixCommand));
        FillCommands();
      }
      break;
    case 3:
      view_.SetTitle(captionBase_ + LoadResText(kHotKey));
      FillHotKey();
      break;
  }
}

void fWizard::PageLayout() {
  if (!item_) return;
  view_.EnableControl(WizardControl::Back, page_ > 0);
  switch (page_) {
    case 0:
      // Back from a pull-down on the type page left "Finish" here, but only
      // the type page can finish, so a screen reader would announce the wrong
      // action.
      view_.SetText(WizardControl::Next, LoadResText(kNext));
      view_.ShowPane(WizardPane::Name);
      break;
    case 1:
      if (OffersCommandLineScript()) {
        ShowKind(WizardKind::Script);
        view_.SetScriptPath(session_.gCmdScriptPath);
      }
      view_.ShowPane(WizardPane::Type);
      break;
    case 2:
      view_.SetText(WizardControl::Next, LoadResText(kNext));
      if (kind_ == WizardKind::Command) {
        view_.ShowPane(WizardPane::Command);
      } else {
        if (OffersCommandLineScript()) {
          view_.SetScriptPath(session_.gCmdScriptPath);
          txtScriptPath_Change(session_.gCmdScriptPath);
        }
        view_.ShowPane(WizardPane::Script);
      }
      break;
    case 3:
      view_.SetText(WizardControl::Next, LoadResText(kFinish));
      view_.ShowPane(WizardPane::HotKey);
      break;
  }
}

bool fWizard::OffersCommandLineScript() const { return !session_.gCmdScriptPath.empty() && item_->Action.empty(); }

void fWizard::Move(int step) {
  view_.HideWindow();
  page_ += step;
  PageDisplay();
  PageLayout();
  view_.ShowWindowAgain();
}

void fWizard::cmdNext_Click() {
  if (!item_) return;
  if (page_ == 1 && kind_ == WizardKind::PullDown) {
    response_ = 1;
    view_.Close();
    return;
  }
  if (page_ == 3) {
    response_ = 1;
    view_.Close();
    return;
  }
  // The menu file holds the code page's characters only: a text it cannot
  // hold is refused here rather than stored with "?" in its place.
  if (page_ == 0 && !Storable(WizardField::Name, item_->Caption)) return;
  if (page_ == 2) {
    if (!CommandStorable()) return;
    WriteCommand();
  }
  Move(1);
}

void fWizard::cmdPrev_Click() {
  if (page_ > 0) Move(-1);
}

void fWizard::cmdCANCEL_Click() {
  item_.reset();
  response_ = 2;
  view_.Close();
}

void fWizard::txtName_Change(const std::wstring& text) {
  if (item_) item_->Caption = text;
}

void fWizard::ShowKind(WizardKind kind) {
  view_.SetKind(kind);
  Kind_Click(kind);
}

void fWizard::Kind_Click(WizardKind kind) {
  kind_ = kind;
  view_.SetText(WizardControl::Next, LoadResText(kind == WizardKind::PullDown ? kFinish : kNext));
}

void fWizard::FillCommands() {
  view_.ClearCommands();
  bool found = false;
  const std::wstring wanted = LowerCase(item_->Action);
  for (int i = 0; i < actions_.Count(); ++i) {
    view_.AddCommand(actions_.Comment(i), i);
    if (LowerCase(actions_.Action(i)) == wanted) {
      view_.SelectCommand(view_.CommandCount() - 1);
      found = true;
    }
  }
  if (found || (item_->Action.empty() && view_.CommandCount() > 0)) {
    if (view_.SelectedCommand() < 0) view_.SelectCommand(0);
    view_.ShowCommandList(true);
    view_.ScrollCommandToTop(view_.SelectedCommand());
  } else {
    view_.SetCommandText(item_->Action);
    view_.ShowCommandList(false);
  }
}

void fWizard::FillScript() {
  const std::wstring path = ParenContent(item_->Action);
  view_.SetScriptPath(path);
  txtScriptPath_Change(path);
}

void fWizard::txtScriptPath_Change(const std::wstring& text) {
  const std::wstring lower = LowerCase(text);
  view_.EnableControl(WizardControl::Open,
                      lower.find(L"txt") != std::wstring::npos || lower.find(L"vbs") != std::wstring::npos);
  view_.ShowControl(WizardControl::Form, !FormFile().empty() && FileExists(FormFile()));
}

bool fWizard::Storable(WizardField field, const std::wstring& text) {
  const std::optional<size_t> at = codePage_.FirstUnencodable(text);
  if (!at) return true;
  prompts_.Message(LoadResText(kUnstorable, DescribeCharacter(text, *at)), mb::kOkOnly | mb::kIconExclamation,
                   LoadResText(kProductTitle));
  // A character beyond the first 65,536 takes two places in the field.
  const bool pair = *at + 1 < text.size() && text[*at] >= 0xD800 && text[*at] < 0xDC00;
  view_.SelectText(field, *at, pair ? 2 : 1);
  return false;
}

// The list holds the table's commands, which came from the code page.
bool fWizard::CommandStorable() {
  if (kind_ == WizardKind::Script) return Storable(WizardField::ScriptPath, view_.ScriptPath());
  return view_.CommandListShown() || Storable(WizardField::Command, view_.CommandText());
}

void fWizard::WriteCommand() {
  if (kind_ == WizardKind::Script) {
    item_->Action = L"shell(" + view_.ScriptPath() + L")";
  } else if (view_.CommandListShown()) {
    const int line = view_.SelectedCommand();
    item_->Action = actions_.Action(line < 0 ? -1 : view_.CommandData(line));
  } else {
    item_->Action = TrimSpaces(view_.CommandText());
  }
}

std::wstring fWizard::Expand(const std::wstring& text) const {
  const std::wstring appSet = JoinPath(info_.DirSet(), session_.gAppName);
  return ReplaceAll(ReplaceAll(text, L"$(velkordir)", info_.DirVelkor()), L"$(appsetdir)", appSet);
}

std::wstring fWizard::ScriptFile() const {
  std::wstring text = view_.ScriptPath();
  if (text.compare(0, 11, L"wscript.exe") == 0) {
    text = TrimSpaces(text.substr(11));
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"')
      text = LowerCase(TrimSpaces(text.substr(1, text.size() - 2)));
  }
  return Expand(text);
}

std::wstring fWizard::FormFile() const {
  std::wstring file = ScriptFile();
  const std::wstring title = FileTitleOf(file), lower = LowerCase(title);
  const size_t at = lower.find(L".vbs");
  if (at == std::wstring::npos) return {};
  return FolderOf(file).empty() ? title.substr(0, at) + L".frm" + title.substr(at + 4)
                                : JoinPath(FolderOf(file), title.substr(0, at) + L".frm" + title.substr(at + 4));
}

void fWizard::cmdScriptBrowse_Click() {
  const std::wstring folder = session_.gAppName != LoadResText(kGeneralMenu)
                                  ? JoinPath(session_.gMenuDir, session_.gAppName)
                                  : session_.gMenuDir;
  auto chosen = prompts_.OpenFile(
      L"Script Files (*.vbs)|*.vbs|Applications (*.exe, *.com, *.bat)|*.exe;*.bat;*.com|All|*.*", folder);
  if (!chosen || chosen->empty()) return;
  std::wstring path = ReplaceAll(*chosen, JoinPath(info_.DirSet(), session_.gAppName), L"$(appsetdir)");
  path = ReplaceAll(path, info_.DirVelkor(), L"$(velkordir)");
  const std::wstring lower = LowerCase(path);
  if (lower.size() >= 4 && lower.compare(lower.size() - 4, 4, L".vbs") == 0) path = L"wscript.exe \"" + path + L"\"";
  view_.SetScriptPath(path);
  txtScriptPath_Change(path);
  view_.SelectText(WizardField::ScriptPath, 0, path.size());  // the new path is read
}

void fWizard::cmdScriptEdit_Click() {
  const std::wstring text = view_.ScriptPath();
  if (text.compare(0, 11, L"wscript.exe") == 0)
    processes_.Start(L"notepad.exe " + ScriptFile());  // a script is opened for editing, not run
  else
    processes_.Start(Expand(text));
}

void fWizard::cmdScriptForm_Click() {
  const std::wstring form = FormFile();
  if (!form.empty()) processes_.Start(JoinPath(info_.DirVelkor(), L"scripts\\setscript.exe") + L" " + form);
}

void fWizard::cmdTips_Click() {
  const std::wstring path = L"$(velkordir)\\set\\" + session_.gAppName + L"\\tips.txt";
  const std::wstring command = L"notepad.exe " + path;
  const std::wstring file = Expand(path);
  if (!FileExists(file)) WriteFileBytes(file, "");
  view_.SetScriptPath(command);
  txtScriptPath_Change(command);  // Open, and no Form for a text file
  view_.SelectText(WizardField::ScriptPath, 0, command.size());
}

void fWizard::FillHotKey() {
  ShowCode(item_->HotKey, true);
  view_.SetChecked(WizardControl::Discard, item_->Discard);
  const bool braille = hotkey::IsBraille(item_->HotKey);
  view_.SetChecked(WizardControl::Braille, braille);
  view_.EnableControl(WizardControl::Discard, !braille);
  ShowUsedBy();
}

void fWizard::ShowCode(int32_t code, bool keepFocus) { view_.SetHotKeyText(defs_.KeyText(code), keepFocus); }

// The other items of the menu with the key, then the other menus' (the
// general menu's items, or the applications whose menus override it).
void fWizard::ShowUsedBy() {
  std::wstring users;
  const auto add = [&users](const std::wstring& text) {
    if (!text.empty()) users += (users.empty() ? L"" : L", ") + text;
  };
  if (item_ && item_->HotKey != 0) {
    if (root_)
      WalkTree(
          *root_,
          [&](const cMenuItem& other, size_t, int) {
            if (&other != original_ && other.HotKey == item_->HotKey) add(other.Caption);
            return true;
          },
          [](const cMenuItem&, size_t) {});
    if (!others_)
      others_ = std::make_unique<cOtherMenus>(
          defs_, MenuLocation{session_.gMenuDir, session_.gAppName, session_.gBrailleName, session_.gGeneralMenu});
    add(others_->Text(item_->HotKey));
  }
  view_.SetUsedBy(users);
}

bool fWizard::hk_KeyDown(int key, int shift) {
  if (!item_) return false;
  const auto code = hotkey::CapturedKey(key, shift, view_.IsKeyDown(vk::kInsert) || view_.IsKeyDown(vk::kScrollLock));
  if (!code) return false;
  view_.SetChecked(WizardControl::Braille, false);
  view_.EnableControl(WizardControl::Discard, true);
  ShowCode(*code, false);
  item_->HotKey = *code;
  ShowUsedBy();
  return true;
}

bool fWizard::hk_KeyUp(int key, int shift) { return item_ && hotkey::SwallowedRelease(key, shift); }

void fWizard::chkDiscard_Click(bool checked) {
  if (item_) item_->Discard = checked;
}

void fWizard::chkBraille_Click(bool checked) {
  if (!item_) return;
  // A status button's code unchecked loses its status bit too: the rest is a
  // key the field can name, and what is stored is what is heard.
  const uint32_t code = static_cast<uint32_t>(item_->HotKey);
  item_->HotKey = static_cast<int32_t>(checked ? code | hotkey::kBrailleBit : code & ~hotkey::kStatusButton);
  view_.EnableControl(WizardControl::Discard, !checked);
  ShowCode(item_->HotKey, true);
  ShowUsedBy();
}

void fWizard::SetBrailleDisplay(std::unique_ptr<IBrailleDisplay> display) {
  if (display_) display_->SetEvents(nullptr);
  display_ = std::move(display);
  if (display_) display_->SetEvents(&relay_);
}

void fWizard::chkBrailleHook_Click(bool checked) {
  if (!checked) {
    SetBrailleDisplay(nullptr);  // what was captured stays
    return;
  }
  if (opener_) SetBrailleDisplay(opener_->OpenNew());
  view_.FocusHotKey();
}

void fWizard::CaptureButton(int32_t code) {
  if (!item_ || !view_.HotKeyHasFocus()) return;
  view_.SetChecked(WizardControl::Braille, true);
  view_.EnableControl(WizardControl::Discard, false);  // a display button cannot be discarded
  ShowCode(code, false);
  item_->HotKey = code;
  ShowUsedBy();
}

void fWizard::koral_BrailleBtnAuxStatus(int32_t button) {
  CaptureButton(hotkey::StatusButton(button, hotkey::kAuxStatus));
}

void fWizard::koral_BrailleBtnCusorStatus(int32_t button) {
  CaptureButton(hotkey::StatusButton(button, hotkey::kCursorStatus));
}

void fWizard::koral_BrailleBtnNormal(int32_t buttons) { CaptureButton(hotkey::Buttons(buttons)); }

void fWizard::cmdHotKeyDel_Click() {
  view_.SetHotKeyText(L"", true);
  view_.SetChecked(WizardControl::Braille, false);
  view_.SetChecked(WizardControl::Discard, false);
  view_.EnableControl(WizardControl::Discard, true);
  if (item_) {
    item_->HotKey = 0;
    item_->Discard = false;
  }
  ShowUsedBy();
}

void fWizard::Form_Unload() {
  SetBrailleDisplay(nullptr);
  session_.gCmdScriptPath.clear();
}

}  // namespace nx
