// The menu file "Command.mnu": item records in pre-order, with no header.
// Each record: level (int16), key word (int32: bit 31 Discard, bit 30 braille
// button, bits 0-29 the code), caption and action (uint16 length + bytes in
// the ANSI code page), all little-endian.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "menu/menu_item.h"
#include "platform/code_page.h"
#include "platform/profile.h"

namespace nx {

struct MenuReadResult {
  MenuItemPtr root;      // "[root]" with the items as its subtree
  bool complete = true;  // false when the read stopped at damaged data
};

// Builds the tree from file bytes. Items get MenuIds from `counter` in file
// order. `brailleCode(action)` gives the code of an item whose record marks a
// braille button. Never fails: damaged data ends the read, and what was
// attached up to there is the result.
MenuReadResult ParseMenu(std::string_view bytes, const ICodePage& codePage,
                         const std::function<int32_t(const std::wstring&)>& brailleCode, int32_t& counter);

// The file bytes of the tree below `root` (the root itself is not stored).
// `brailleEntry(action, code)` is called for every braille-button item, in
// file order, with the code without bit 30. Nothing when the file cannot
// hold the tree: a text longer than 65,535 bytes, more than 32,768 levels,
// or a character the code page does not have (never written as "?" or a
// look-alike); `reason` (optional) then says which, naming the item and the
// character, in the user's language.
std::optional<std::string> SerializeMenu(const cMenuItem& root, const ICodePage& codePage,
                                         const std::function<void(const std::wstring&, uint32_t)>& brailleEntry,
                                         std::wstring* reason = nullptr);

// Where a menu is: the menu of `appName` in `menuDir` (the general menu, in
// `menuDir` itself, when `general`), and the braille display whose profile
// beside the menu holds the braille codes of its items ("": none).
struct MenuLocation {
  std::wstring menuDir;
  std::wstring appName;
  std::wstring brailleName;
  bool general = false;
};

// The menu's file and its display's profile ("" without a display).
std::wstring MenuFilePath(const MenuLocation& menu);
std::wstring BrailleProfilePath(const MenuLocation& menu);

// A file that could not be written, and why: the system's own words (disk
// full, access denied), or what the menu file cannot hold, in the user's
// language. `menuWritten`: the menu file was written, only the braille codes
// of `file` (the profile) were not.
struct WriteFailure {
  std::wstring file;
  std::wstring reason;
  bool menuWritten = false;
};

// A menu file with the braille codes of its items, which live in section
// "Actions" of a braille display's profile beside it.
class cMenuFile {
 public:
  // The MenuId the menu reader gives the next item it reads.
  int32_t ItemCounter = 0;

  // Both references must outlive this object.
  cMenuFile(const ICodePage& codePage, IProfile& profile) : codePage_(codePage), profile_(profile) {}

  // Reads a menu file; null when it does not exist. `complete` (optional)
  // tells whether the whole file could be read. The braille codes come from
  // section "Actions" of the profile, read once.
  MenuItemPtr InitCommandDef(const std::wstring& menuPath, const std::wstring& braillePath, bool* complete = nullptr);
  // Writes the menu below `root`, replacing the file only once the new one
  // is whole, then the braille codes into section "Actions" of
  // `braillePath` (when given), the profile read and replaced once. Nothing
  // is written when the menu cannot be stored, or when the profile has codes
  // to take but is there and cannot be read (it would lose what it holds).
  // False on any failure, with `failure` (optional) naming the file that
  // failed and why; when only the profile could not be written, the menu
  // file is already written.
  bool FlushCommand2Def(const std::wstring& menuPath, const std::wstring& braillePath, const cMenuItem& root,
                        WriteFailure* failure = nullptr);

 private:
  const ICodePage& codePage_;
  IProfile& profile_;
};

}  // namespace nx
