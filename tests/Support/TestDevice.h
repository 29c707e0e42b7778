#pragma once

#include <memory>
#include <string>

#include "Platform/Device/Device.h"
#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

namespace quaverly::test {

/// A device on temporary folders and virtual time, current while it lives: the media folder, the temporary
/// folder of the bundle and the bundle itself are mounted at their usual paths. Its fonts are the installed
/// ones.
class TestDevice {
 public:
  TestDevice();
  ~TestDevice();

  static constexpr const char* mediaPath = "/var/mobile/Media";
  static constexpr const char* temporaryPath = "/var/mobile/Media/Quaverly/tmp";
  static constexpr const char* bundlePath = "/Library/PreferenceBundles/QuaverlySettings.bundle";

  Device* operator->() { return &Device::current(); }
  VirtualClock& clock() { return *_clock; }
  TemporaryFolder& media() { return _media; }
  TemporaryFolder& temporary() { return _temporary; }
  TemporaryFolder& bundle() { return _bundle; }

 private:
  TemporaryFolder _media;
  TemporaryFolder _temporary;
  TemporaryFolder _bundle;
  std::shared_ptr<VirtualClock> _clock = std::make_shared<VirtualClock>();
};

}  // namespace quaverly::test
