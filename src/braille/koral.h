// cKoral: the first display of the screen reader's braille component. It
// attaches to the component (the running screen reader's when there is one),
// opens the display, describes it, and passes on the display's button
// presses for its own unit only. Nothing here reports errors: a failure
// leaves the object without a display.
#pragma once

#include <memory>

#include "braille/braille_display.h"
#include "braille/koral_component.h"

namespace nx {

class cKoral final : public IBrailleDisplay, private IKoralDisplayEvents {
 public:
  // `factory` must outlive the object.
  explicit cKoral(IKoralFactory& factory) : factory_(factory) {}
  // Closes the display and shuts the component down.
  ~cKoral() override;
  cKoral(const cKoral&) = delete;
  cKoral& operator=(const cKoral&) = delete;

  bool Initialize() override;
  bool isValid() const override { return display_ != nullptr; }
  std::wstring BrailleDescription() const override;
  std::wstring GetInfo() const override;
  void SetEvents(IBrailleEvents* events) override { events_ = events; }

 private:
  void koral_BrailleBtnAuxStatus(int32_t unitId, int32_t button) override;
  void koral_BrailleBtnCusorStatus(int32_t unitId, int32_t button) override;
  void koral_BrailleBtnNormal(int32_t unitId, int32_t buttons, int32_t pressed) override;
  void OpenDisplay();
  // Whether an event of `unitId` is for this object's listener.
  bool Heard(int32_t unitId) const;

  IKoralFactory& factory_;
  std::unique_ptr<IKoralComponent> component_;
  std::unique_ptr<IKoralDisplay> display_;
  IBrailleEvents* events_ = nullptr;
};

}  // namespace nx
