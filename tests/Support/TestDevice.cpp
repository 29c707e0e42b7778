#include "Support/TestDevice.h"

#include "Host/Environment/DeviceFacts.h"

namespace quaverly::test {

TestDevice::TestDevice() {
  Device device;
  device.mounts.mount(mediaPath, _media.path(), MountTable::Access::readOnly);
  device.mounts.mount(temporaryPath, _temporary / "tmp", MountTable::Access::readWrite);
  device.mounts.mount(bundlePath, _bundle.path(), MountTable::Access::readOnly);
  device.fontFiles = host::fontFiles();
  device.clock = _clock;
  Device::current() = device;
}

TestDevice::~TestDevice() {
  Device::current() = Device{};
}

}  // namespace quaverly::test
