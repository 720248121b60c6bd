// cDefActions reads the screen reader's definition tables (key names,
// commands, braille button names) and turns hot-key codes into text.
// cDefServer is the one shared way to it.
#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/code_page.h"
#include "platform/folders.h"
#include "platform/profile.h"
#include "defs/narrix_actions.h"

namespace nx {

class cDefActions {
 public:
  // Both references must outlive this object.
  cDefActions(const ICodePage& codePage, IProfile& profile);

  // Fills the key-name table from gKeyCode.def (later lines win). A missing
  // file changes nothing; a line whose code is not a number from 0 to 255
  // ends the reading there.
  void RenderKeyCodeDescrip2List(const std::wstring& path);
  // The key-name table entry; std::out_of_range outside 0..255.
  std::wstring GetHotKeyString(int16_t index) const;
  // Clears `list` and fills it from gActions.def; false when there is no
  // list or no file.
  bool InitNXactionsDef(const std::wstring& path, cNarrixActions* list);
  // Reads the button names from section "KeyMap" of a braille display
  // profile; missing names become "H" + the button's bit in hexadecimal.
  void InitBrailleKeyMap(const std::wstring& path);
  // Index 0..30: button bit names; 31: CursorStatus; 32: AuxStatus.
  const std::wstring& BrailleKeyName(int index) const { return brailleKeys_.at(static_cast<size_t>(index)); }

  // "C+S+F5", "Narrix+A+key(255)"; "" for key 0 without modifiers. The key
  // names come from the table at `path` as it is on disk: the table is read
  // again when its size or time has changed, looked at no more than once a
  // millisecond (a file-system call costs more than a whole key text).
  std::wstring GetKeyCodeAsText(const std::wstring& path, int16_t key, int16_t mask);
  // The text of a whole hot-key code: keyboard as above, braille in "[...]".
  // Clears bit 30 (and for status buttons bit 31) in `code`. Throws
  // std::overflow_error for codes the model never holds.
  std::wstring GetKeyCodeAsTextEx(const std::wstring& path, int32_t& code);

 private:
  std::wstring ModifierText(int16_t mask, bool longNames) const;
  std::wstring KeyName(const std::wstring& path, int16_t key);

  struct KeyTable {
    std::optional<FileStamp> stamp;  // nothing: no such file
    std::chrono::steady_clock::time_point checked;
    std::array<std::wstring, 256> names;  // first line of each code 0..255
    std::map<int16_t, std::wstring> negative;
  };

  const ICodePage& codePage_;
  IProfile& profile_;
  std::array<std::wstring, 256> keyNames_;
  std::array<std::wstring, 33> brailleKeys_;
  std::map<std::wstring, KeyTable> keyTables_;
};

class cDefServer {
 public:
  // `folder` is where gKeyCode.def lies, ending with a backslash.
  cDefServer(const ICodePage& codePage, IProfile& profile, std::wstring folder);
  cDefActions& DefActions();
  void SetFolder(std::wstring folder) { folder_ = std::move(folder); }
  const std::wstring& Folder() const { return folder_; }
  std::wstring FormatKeycode(int16_t key, int16_t mask);
  std::wstring FormatKeycodeEx(int32_t& code);
  // The text of a whole hot-key code, "" for a code the model never holds.
  std::wstring KeyText(int32_t code);
  const ICodePage& CodePage() const { return codePage_; }
  IProfile& Profile() const { return profile_; }

 private:
  const ICodePage& codePage_;
  IProfile& profile_;
  std::wstring folder_;
  std::unique_ptr<cDefActions> actions_;
};

}  // namespace nx
