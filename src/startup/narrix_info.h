// cNarrixInfo: where the screen reader is installed and how its settings
// read. One object is shared by the whole program; every other part asks it
// for paths instead of building them.
#pragma once

#include <functional>
#include <string>

#include "platform/registry.h"

namespace nx {

// Bits of the log filter, in the order of their registry values.
enum LogFlag : unsigned {
  kLogFocus = 1u << 0,
  kLogKey = 1u << 1,
  kLogText = 1u << 2,
  kLogBmp = 1u << 3,
  kLogDef = 1u << 4,
  kLogOkoExp = 1u << 5,
  kLogToFile = 1u << 6,
  kLogToDbgView = 1u << 7,
};

// The folder of the installation that holds the menus and definition tables.
inline constexpr wchar_t kSetFolder[] = L"Set";

struct FormPosition {
  long left = 0, top = 0, width = 0, height = 0;
};

// A text box's font and colours as the screen reader's windows keep them.
struct TextBoxFont {
  std::wstring name = L"Arial";
  long size = 10;
  bool bold = false, italic = false, underline = false, strikethrough = false;
  long charset = 0;
  long backColor = 0xFFFFFF, fontColor = 0;
};

class cNarrixInfo {
 public:
  // `registry` must outlive this object. `exeFolder` is the folder of the
  // program's own executable, the installation root when the registry names
  // none.
  cNarrixInfo(IRegistry& registry, std::wstring exeFolder);

  // Reads the installation settings; call once before the other members.
  // Never fails: missing values take their defaults. `form` is the main
  // window, kept only to be handed back by frmMain().
  void Inicialize(void* form);

  const std::wstring& DirVelkor() const { return dirVelkor_; }
  const std::wstring& DirNx() const { return dirNx_; }
  std::wstring DirSet() const;
  std::wstring DirSound() const;
  bool ExitDirect() const { return exitDirect_; }
  bool SRflag() const { return srFlag_; }
  void* frmMain() const { return frmMain_; }

  // The work file in the user's documents folder; its folders are created
  // when missing.
  std::wstring FileNameWork() const;
  // Command templates; "%1" stands for the file to open.
  std::wstring AppViewer() const;
  std::wstring AppHelpViewer() const;
  std::wstring AppEditor() const;
  std::wstring AppClipboardViewer() const;
  std::wstring FileNameHelp(const std::wstring& topic) const;

  // Settings kept for the other programs of the screen reader.
  // GetLogFilter also keeps its result, which LogFlags() gives to logging
  // code of the whole program (bit i = LogFocus, LogKey, ... LogToDbgView).
  unsigned GetLogFilter();
  unsigned LogFlags() const { return gLogFlags_; }
  long LensBufferSize(const std::wstring& formName) const;
  long VideoBufferSize() const;
  long TextMaxLen() const;
  bool FormVisibility(const std::wstring& formName) const;
  void FormVisibilitySave(const std::wstring& formName, bool visible);
  // Calls `showEx` (the window's own way of showing itself) when the window
  // is stored as visible.
  void FormVisibilityLoad(const std::wstring& formName, const std::function<void()>& showEx) const;
  // The stored font, each missing value taken from `current` (the name from
  // "Arial" when none is stored).
  TextBoxFont TextBoxFontLoad(const std::wstring& formName, const TextBoxFont& current) const;
  void TextBoxFontSave(const std::wstring& formName, const TextBoxFont& font);
  // The stored position, each missing value taken from `current`.
  FormPosition FormPositionLoad(const std::wstring& formName, const FormPosition& current) const;
  void FormPositionSave(const std::wstring& formName, const FormPosition& position);

 private:
  std::wstring Product(const std::wstring& valueName, const std::wstring& def) const;

  IRegistry& registry_;
  std::wstring exeFolder_;
  void* frmMain_ = nullptr;
  unsigned gLogFlags_ = 0;
  std::wstring dirVelkor_;
  std::wstring dirNx_;
  bool exitDirect_ = false;
  bool srFlag_ = true;
  std::wstring setFolderName_ = kSetFolder;
  std::wstring soundFolderName_ = L"Sound";
};

}  // namespace nx
