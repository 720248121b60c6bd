// The braille component of the screen reader, as cKoral uses it: a root
// object that knows the displays, and display objects that describe
// themselves, open, close and report button events. Every call answers even
// when the component fails: numbers are then 0 and texts empty.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace nx {

// The component's own button events, for every display unit it serves.
class IKoralDisplayEvents {
 public:
  virtual ~IKoralDisplayEvents() = default;
  virtual void koral_BrailleBtnNormal(int32_t unitId, int32_t buttons, int32_t pressed) = 0;
  virtual void koral_BrailleBtnCusorStatus(int32_t unitId, int32_t button) = 0;
  virtual void koral_BrailleBtnAuxStatus(int32_t unitId, int32_t button) = 0;
};

class IKoralDisplay {
 public:
  virtual ~IKoralDisplay() = default;
  virtual std::wstring Description() = 0;
  virtual int32_t Width() = 0;
  virtual int32_t Height() = 0;
  virtual int32_t StatusCells() = 0;
  virtual int32_t Caps() = 0;
  virtual int32_t Languages() = 0;
  virtual int32_t Buttons() = 0;
  virtual int32_t MaxRate() = 0;
  virtual int32_t UnitId() = 0;
  virtual void SetButtonEvents(int32_t on) = 0;
  virtual void Open() = 0;
  virtual void Close() = 0;
};

class IKoralComponent {
 public:
  virtual ~IKoralComponent() = default;
  virtual void Initialize(int32_t mode) = 0;
  virtual int32_t DisplayCount() = 0;
  // Display `index` (from 1) with its events connected to `events`, which
  // must outlive the display; null when the component does not give it.
  virtual std::unique_ptr<IKoralDisplay> Display(int32_t index, IKoralDisplayEvents& events) = 0;
  virtual void Shutdown() = 0;
};

// Where components come from. Null results mean the component could not be
// had (not installed, not registered, failed to start).
class IKoralFactory {
 public:
  virtual ~IKoralFactory() = default;
  // Whether the screen reader itself is running.
  virtual bool ScreenReaderRunning() = 0;
  // The component through the running screen reader (automation's get-object).
  virtual std::unique_ptr<IKoralComponent> Attach() = 0;
  virtual std::unique_ptr<IKoralComponent> Create() = 0;
  // Whether the component is installed and registered, without opening it.
  virtual bool Probe() = 0;
};

}  // namespace nx
