// The list box's order from Windows itself: the same comparison a sorted
// list box makes, in the user's language.
#include <windows.h>

#include "platform/list_order.h"

namespace nx {

bool ListOrderLess(std::wstring_view a, std::wstring_view b) {
  return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a.data(), static_cast<int>(a.size()), b.data(),
                        static_cast<int>(b.size())) == CSTR_LESS_THAN;
}

}  // namespace nx
