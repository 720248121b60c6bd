// Helpers of the menu editor's tree commands.
#pragma once

#include "menu/menu_item.h"

namespace nx {

// A new item with the texts, hot key and Discard of `source` and copies of
// all its children; it shares nothing with the source. MenuIds stay 0 until
// the tree is renumbered.
MenuItemPtr DeepCopy(const cMenuItem& source);

// How many levels of items `item` has below it: 0 for a leaf, 1 when its
// children are leaves, and so on.
int MenuLevels(const cMenuItem& item);

}  // namespace nx
