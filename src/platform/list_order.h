// The order in which a Windows list box with sorting keeps its entries, for
// code that has to list the same names in the same order without a list box.
#pragma once

#include <string_view>

namespace nx {

// True when `a` comes before `b` in a sorted list box: letters compared
// without regard to case, punctuation before digits before letters, hyphens
// and apostrophes ignored unless the names differ in nothing else. On Windows
// this is the system's own comparison for the user's language.
bool ListOrderLess(std::wstring_view a, std::wstring_view b);

// The same order worked out without the system (English rules); what
// ListOrderLess uses where there is no Windows.
bool PortableListOrderLess(std::wstring_view a, std::wstring_view b);

}  // namespace nx
