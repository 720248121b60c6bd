// The braille display as the menu editor and the wizard see it. The real
// display arrives through the maker's component; until then, and when no
// display is present, NoBrailleDisplay answers that there is none.
#pragma once

#include <memory>
#include <string>

namespace nx {

class IBrailleDisplay {
 public:
  virtual ~IBrailleDisplay() = default;
  // Opens the display; false when there is none or it does not answer.
  virtual bool Initialize() = 0;
  virtual bool isValid() const = 0;
  virtual std::wstring BrailleDescription() const = 0;
};

class NoBrailleDisplay final : public IBrailleDisplay {
 public:
  bool Initialize() override { return false; }
  bool isValid() const override { return false; }
  std::wstring BrailleDescription() const override { return {}; }
};

}  // namespace nx
