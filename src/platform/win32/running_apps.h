// IRunningApps from a process snapshot and the executable's version
// resource.
#pragma once

#include "platform/running_apps.h"

namespace nx {

class Win32RunningApps final : public IRunningApps {
 public:
  std::wstring GetRunningAppVersion(const std::wstring& name) override;
};

}  // namespace nx
