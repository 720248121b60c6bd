// fWizard: describes one menu item page by page: its name, its kind, its
// command and its hot key. It starts from the fields it is given and, when
// Response() is 1, MenuItem() holds the described fields; the caller places
// them. Cancel leaves no fields.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "braille/braille_display.h"
#include "defs/def_actions.h"
#include "menu/menu_item.h"
#include "menu/other_menus.h"
#include "platform/code_page.h"
#include "platform/prompts.h"
#include "startup/edit_session.h"
#include "startup/narrix_info.h"

namespace nx {

enum class WizardPane { Name, Type, Command, Script, HotKey };
enum class WizardKind { Command, Script, PullDown };
// The text fields whose text is stored in the menu file.
enum class WizardField { Name, Command, ScriptPath };
enum class WizardControl {
  NameLabel,
  TypeFrame,
  OptCommand,
  OptScript,
  OptPullDown,
  CommandLabel,
  ScriptLabel,
  Browse,
  Open,
  Form,
  Tips,
  HotKeyLabel,
  UsedByLabel,
  Discard,
  Braille,
  BrailleHook,
  Delete,
  Back,
  Next,
  Cancel,
};

class IWizardView {
 public:
  virtual ~IWizardView() = default;
  virtual void SetTitle(const std::wstring& text) = 0;
  virtual void SetText(WizardControl control, const std::wstring& text) = 0;
  virtual void EnableControl(WizardControl control, bool enabled) = 0;
  virtual void ShowControl(WizardControl control, bool shown) = 0;
  // Shows one pane, hides the others and moves the focus into it.
  virtual void ShowPane(WizardPane pane) = 0;
  // A page move hides the window and shows it again with the new page, so
  // that a screen reader announces the page as a new window.
  virtual void HideWindow() = 0;
  virtual void ShowWindowAgain() = 0;
  virtual void Close() = 0;

  virtual void SetName(const std::wstring& text) = 0;
  virtual void SetKind(WizardKind kind) = 0;

  // The command pane: a list of the screen reader's commands, or a free-text
  // field for a command the list does not have.
  virtual void ClearCommands() = 0;
  virtual void AddCommand(const std::wstring& text, int data) = 0;
  virtual void SelectCommand(int line) = 0;
  virtual int SelectedCommand() const = 0;  // the line, -1 for none
  virtual int CommandData(int line) const = 0;
  virtual int CommandCount() const = 0;
  virtual void ScrollCommandToTop(int line) = 0;
  virtual void ShowCommandList(bool list) = 0;  // false: the free-text field
  virtual bool CommandListShown() const = 0;
  virtual void SetCommandText(const std::wstring& text) = 0;
  virtual std::wstring CommandText() const = 0;

  virtual void SetScriptPath(const std::wstring& text) = 0;
  virtual std::wstring ScriptPath() const = 0;
  // Puts the focus into a text field with `length` characters from `start`
  // selected, so that a screen reader reads them.
  virtual void SelectText(WizardField field, size_t start, size_t length) = 0;

  // The capture field's text; unless `keepFocus`, the focus goes back into
  // it so that the next key is captured too.
  virtual void SetHotKeyText(const std::wstring& text, bool keepFocus) = 0;
  virtual void FocusHotKey() = 0;
  // Whether the keyboard focus is in the capture field now.
  virtual bool HotKeyHasFocus() const = 0;
  virtual void SetUsedBy(const std::wstring& text) = 0;
  virtual void SetChecked(WizardControl box, bool checked) = 0;
  virtual bool Checked(WizardControl box) const = 0;
  // Whether a key is held down now (not its toggle state).
  virtual bool IsKeyDown(int key) const = 0;
};

class fWizard {
 public:
  // All references must outlive the wizard; `codePage` is the one the menu
  // file is written in.
  fWizard(IWizardView& view, IPrompts& prompts, IProcesses& processes, EditSession& session, cNarrixInfo& info,
          cDefServer& defs, const ICodePage& codePage);

  void Form_Load();
  // Starts from `fields` and shows the current page.
  void SetMenuItem(const ItemFields& fields);
  // The fields as described so far; nothing before SetMenuItem and after
  // Cancel.
  const std::optional<ItemFields>& MenuItem() const { return item_; }
  int Response() const { return response_; }
  // "New item" or "Edit item": the start of every window caption.
  void SetCaptionBase(const std::wstring& base);
  void SetTipsCaption(const std::wstring& text);
  void LoadDefs(const std::wstring& keyCodePath, const std::wstring& actionsPath);
  // The menu the item belongs to, so that the hot-key page can name other
  // items with the same key; `original` is the item being edited and is not
  // counted.
  void SetMenu(const cMenuItem* root, const cMenuItem* original);
  // Where "Braille keys" gets a display from; null: the box attaches nothing.
  // Must outlive the wizard.
  void SetBrailleOpener(IBrailleOpener* opener) { opener_ = opener; }
  // The display whose buttons the wizard captures from now on; null detaches
  // (and closes) the one it had.
  void SetBrailleDisplay(std::unique_ptr<IBrailleDisplay> display);
  bool BrailleAttached() const { return display_ != nullptr; }

  void cmdNext_Click();
  void cmdPrev_Click();
  void cmdCANCEL_Click();
  void txtName_Change(const std::wstring& text);
  // A kind chosen in the window.
  void Kind_Click(WizardKind kind);
  WizardKind Kind() const { return kind_; }
  void txtScriptPath_Change(const std::wstring& text);
  // A key pressed in the capture field; true when it was captured (and must
  // go no further).
  bool hk_KeyDown(int key, int shift);
  // A key released in the capture field; true when it must go no further.
  bool hk_KeyUp(int key, int shift);
  void chkDiscard_Click(bool checked);
  void chkBraille_Click(bool checked);
  void chkBrailleHook_Click(bool checked);
  // The display's buttons; captured only while the focus is in the capture
  // field, so that the display can still be used to read the wizard.
  void koral_BrailleBtnAuxStatus(int32_t button);
  void koral_BrailleBtnCusorStatus(int32_t button);
  void koral_BrailleBtnNormal(int32_t buttons);
  void cmdHotKeyDel_Click();
  void cmdScriptBrowse_Click();
  void cmdScriptEdit_Click();
  void cmdScriptForm_Click();
  void cmdTips_Click();
  // The window closes: the command-line script path has been offered.
  void Form_Unload();

  int Page() const { return page_; }

 private:
  // Chooses `kind` and shows it chosen.
  void ShowKind(WizardKind kind);
  void PageLayout();
  void PageDisplay();
  void Move(int step);
  // The script path of the command line is offered until the item has a
  // command of its own.
  bool OffersCommandLineScript() const;
  void FillCommands();
  void FillScript();
  void FillHotKey();
  void ShowCode(int32_t code, bool keepFocus);
  void CaptureButton(int32_t code);
  void ShowUsedBy();
  // False, after saying why and selecting the character in the field, when
  // `text` holds a character the menu file's code page cannot hold.
  bool Storable(WizardField field, const std::wstring& text);
  bool CommandStorable();
  void WriteCommand();
  std::wstring Expand(const std::wstring& text) const;
  // The script (or program) path of the script field, unwrapped and expanded.
  std::wstring ScriptFile() const;
  std::wstring FormFile() const;

  IWizardView& view_;
  IPrompts& prompts_;
  IProcesses& processes_;
  EditSession& session_;
  cNarrixInfo& info_;
  cDefServer& defs_;
  const ICodePage& codePage_;
  cNarrixActions actions_;
  std::optional<ItemFields> item_;
  WizardKind kind_ = WizardKind::PullDown;
  const cMenuItem* root_ = nullptr;
  const cMenuItem* original_ = nullptr;
  // The installation's other menus, made when a key is first looked up and
  // kept for the wizard's run, so that each menu is read once.
  std::unique_ptr<cOtherMenus> others_;
  int page_ = 0;
  int response_ = 0;
  std::wstring captionBase_;
  IBrailleOpener* opener_ = nullptr;
  // Hands the display's buttons to the wizard's handlers.
  struct ButtonRelay final : IBrailleEvents {
    explicit ButtonRelay(fWizard& w) : wizard(w) {}
    void BrailleBtnAuxStatus(int32_t button) override { wizard.koral_BrailleBtnAuxStatus(button); }
    void BrailleBtnCusorStatus(int32_t button) override { wizard.koral_BrailleBtnCusorStatus(button); }
    void BrailleBtnNormal(int32_t buttons) override { wizard.koral_BrailleBtnNormal(buttons); }
    fWizard& wizard;
  } relay_{*this};
  // After the relay, so that the display is closed before the relay goes.
  std::unique_ptr<IBrailleDisplay> display_;
};

}  // namespace nx
