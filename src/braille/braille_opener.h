// Opens the braille display when the user wants it: only while "setting.ini"
// switches braille on (read each time) and the component is installed.
// Opening can take a while, so a notice says so meanwhile.
#pragma once

#include <memory>
#include <string>

#include "braille/braille_display.h"
#include "braille/koral_component.h"
#include "platform/profile.h"
#include "startup/narrix_info.h"

namespace nx {

// A notice that stays up, without taking the focus, while the program waits.
class IBusyNotice {
 public:
  virtual ~IBusyNotice() = default;
  virtual void Show(const std::wstring& text) = 0;
  virtual void Hide() = 0;
};

class BrailleOpener final : public IBrailleOpener {
 public:
  // Everything must outlive the opener and the displays it makes; `notice`
  // may be null.
  BrailleOpener(IKoralFactory& factory, const IProfile& profile, const cNarrixInfo& info, IBusyNotice* notice)
      : factory_(factory), profile_(profile), info_(info), notice_(notice) {}
  std::unique_ptr<IBrailleDisplay> OpenNew() override;

 private:
  IKoralFactory& factory_;
  const IProfile& profile_;
  const cNarrixInfo& info_;
  IBusyNotice* notice_;
};

}  // namespace nx
