// The hot-key section of the screen reader's help page. The page belongs to
// the help; only the lines between the marker comments are the program's.
#pragma once

#include <string>

#include "platform/code_page.h"

namespace nx {

inline constexpr char kHelpStartMarker[] = "<!-- app hotkey start -->";
inline constexpr char kHelpEndMarker[] = "<!-- app hotkey end -->";

// The page in the installation folder `dirVelkor`: help\narrix\hotkey.htm.
std::wstring HelpPagePath(const std::wstring& dirVelkor);

// The page with the lines after a start-marker line and before the next
// end-marker line replaced by `text`; both marker lines stay (a line that
// holds a marker anywhere counts as the marker). Without an end marker
// everything after the start marker goes. Lines end in CR LF whatever they
// ended in before, the last one included.
std::string ReplaceHelpSection(const std::string& page, const std::string& text);

enum class HelpPageResult {
  Updated,
  NoStartMarker,  // rewritten with its line breaks made CR LF only, or left alone (see below)
  Unreadable,     // missing or unreadable: left alone
  Unwritable,     // the old page is still there, unchanged
};

// What becomes of a page without a start marker: the window writes it back
// with its line breaks made CR LF, as it always has; nxmenu leaves it alone.
enum class PageWithoutMarker { Rewrite, LeaveAlone };

// Rewrites the page at `path` with `text` (converted to the ANSI code page
// the page is written in). The page is replaced in one piece or not at all;
// `reason` (optional) gets the system's words when it cannot be read or
// written.
HelpPageResult UpdateHelpPage(const std::wstring& path, const std::wstring& text, const ICodePage& codePage,
                              PageWithoutMarker withoutMarker = PageWithoutMarker::Rewrite,
                              std::wstring* reason = nullptr);

}  // namespace nx
