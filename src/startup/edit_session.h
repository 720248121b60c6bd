// The edit session: the values the application list, the menu editor and the
// item wizard share during one run of the program. The program's entry owns
// the one session and hands it to each window; nothing else keeps these
// values.
#pragma once

#include <string>

namespace nx {

struct EditSession {
  // From the command line, for the whole run: the script path after "*" (the
  // wizard empties it once it has offered it, so only one item gets it) and
  // the braille display name after "/".
  std::wstring gCmdScriptPath;
  std::wstring gCmdDisplayName;
  // Set by the menu the editor loaded last: the folder of the menus, the
  // application, and the braille display whose profile holds the menus'
  // braille keys.
  std::wstring gMenuDir;
  std::wstring gAppName;
  std::wstring gBrailleName;
  bool gGeneralMenu = false;  // the menu the editor loaded last is the general menu
};

}  // namespace nx
