#include "braille/braille_opener.h"

#include "braille/koral.h"
#include "startup/settings.h"
#include "platform/string_table.h"

namespace nx {

namespace {
constexpr int kInitializing = 636;
}

std::unique_ptr<IBrailleDisplay> BrailleOpener::OpenNew() {
  auto display = std::make_unique<cKoral>(factory_);
  // The setting first: it is cheap, and a user who switched braille off does
  // not want the component loaded at all.
  if (!IsBrailleActive(profile_, info_.DirSet()) || !factory_.Probe()) return display;
  if (notice_) notice_->Show(LoadResText(kInitializing));
  display->Initialize();
  if (notice_) notice_->Hide();
  return display;
}

}  // namespace nx
