#include "applist/help_page.h"

#include "platform/folders.h"
#include "startup/file_helpers.h"

namespace nx {

std::wstring HelpPagePath(const std::wstring& dirVelkor) { return JoinPath(dirVelkor, L"help\\narrix\\hotkey.htm"); }

std::string ReplaceHelpSection(const std::string& page, const std::string& text) {
  std::string out;
  out.reserve(page.size() + text.size() + 4);
  bool skipping = false;
  size_t pos = 0;
  while (pos < page.size()) {
    // A line ends at CR LF, LF or a lone CR.
    size_t end = page.find_first_of("\r\n", pos);
    const size_t next = end == std::string::npos                                              ? page.size()
                        : page[end] == '\r' && end + 1 < page.size() && page[end + 1] == '\n' ? end + 2
                                                                                              : end + 1;
    if (end == std::string::npos) end = page.size();
    const std::string_view line(page.data() + pos, end - pos);
    pos = next;
    if (line.find(kHelpStartMarker) != std::string_view::npos) {
      out.append(line).append("\r\n").append(text).append("\r\n");
      skipping = true;
    }
    if (line.find(kHelpEndMarker) != std::string_view::npos) skipping = false;
    if (!skipping) out.append(line).append("\r\n");
  }
  return out;
}

HelpPageResult UpdateHelpPage(const std::wstring& path, const std::wstring& text, const ICodePage& codePage,
                              PageWithoutMarker withoutMarker, std::wstring* reason) {
  std::string page;
  ReadFailure failure;
  if (!ReadFileBytes(path, page, &failure)) {
    if (reason) *reason = failure.reason;
    return HelpPageResult::Unreadable;
  }
  const bool marked = page.find(kHelpStartMarker) != std::string::npos;
  if (!marked && withoutMarker == PageWithoutMarker::LeaveAlone) return HelpPageResult::NoStartMarker;
  if (!WriteFileBytes(path, ReplaceHelpSection(page, codePage.ToAnsi(text)), reason)) return HelpPageResult::Unwritable;
  return marked ? HelpPageResult::Updated : HelpPageResult::NoStartMarker;
}

}  // namespace nx
