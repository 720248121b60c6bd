// The screen reader's braille component through COM automation, by late
// binding only: its members are looked up by name at run time, so nothing
// of the component is needed to build the program. Needs COM initialised
// on the calling thread (single-threaded apartment); the display's events
// then arrive on that thread.
#pragma once

#include "braille/koral_component.h"

namespace nx {

class Win32KoralFactory final : public IKoralFactory {
 public:
  bool ScreenReaderRunning() override;
  std::unique_ptr<IKoralComponent> Attach() override;
  std::unique_ptr<IKoralComponent> Create() override;
  bool Probe() override;
};

}  // namespace nx
