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
  // Positions from 1; "" outside 1..Count.
  std::wstring Action(int position) const { return InRange(position) ? items_[position - 1].first : L""; }
  std::wstring Comment(int position) const { return InRange(position) ? items_[position - 1].second : L""; }

 private:
  bool InRange(int position) const { return position >= 1 && position <= Count(); }
  std::vector<std::pair<std::wstring, std::wstring>> items_;
};

}  // namespace nx
