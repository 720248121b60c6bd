// cNarrixActions: the screen reader's commands as (action, comment) pairs,
// in the order of gActions.def.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace nx {

class cNarrixActions {
 public:
  void Clear() { items_.clear(); }
  void AddItem(const std::wstring& action, const std::wstring& comment) { items_.emplace_back(action, comment); }
  int Count() const { return static_cast<int>(items_.size()); }
  // Indexes from 0; "" outside 0..Count-1.
  std::wstring Action(int index) const { return InRange(index) ? items_[static_cast<size_t>(index)].first : L""; }
  std::wstring Comment(int index) const { return InRange(index) ? items_[static_cast<size_t>(index)].second : L""; }

 private:
  bool InRange(int index) const { return index >= 0 && index < Count(); }
  std::vector<std::pair<std::wstring, std::wstring>> items_;
};

}  // namespace nx
