// The braille display as the menu editor and the wizard see it: opened once,
// described by the display itself, and reporting its buttons to whoever
// listens.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace nx {

// The display's buttons: a set of pressed display keys (key i = bit i), or
// the number of a cursor-status or auxiliary-status button.
class IBrailleEvents {
 public:
  virtual ~IBrailleEvents() = default;
  virtual void BrailleBtnAuxStatus(int32_t button) = 0;
  virtual void BrailleBtnCusorStatus(int32_t button) = 0;
  virtual void BrailleBtnNormal(int32_t buttons) = 0;
};

class IBrailleDisplay {
 public:
  virtual ~IBrailleDisplay() = default;
  // Attaches to the display; false when there is none or it does not answer.
  virtual bool Initialize() = 0;
  virtual bool isValid() const = 0;
  // Empty when no display is held.
  virtual std::wstring BrailleDescription() const = 0;
  // What the display can do, one fact per line; empty when none is held.
  virtual std::wstring GetInfo() const = 0;
  // Who hears the buttons from now on; null: nobody. Not owned.
  virtual void SetEvents(IBrailleEvents* events) = 0;
};

// Makes a new display object and opens it when the settings allow. The
// caller owns the result, which is never null: an object that was not
// opened reports no display and no buttons.
class IBrailleOpener {
 public:
  virtual ~IBrailleOpener() = default;
  virtual std::unique_ptr<IBrailleDisplay> OpenNew() = 0;
};

}  // namespace nx
