#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "Controllers/ImportAudioController.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/KeptDownloads.h"
#include "Support/TestDevice.h"

namespace quaverly::test {

/// A picture of one grey level.
Ref<UIImage> square(uint8_t level);

/// The browser in a host's navigation controller on a phone's screen, in virtual time.
class ScreenTest : public testing::Test {
 protected:
  ScreenTest();
  ~ScreenTest() override;

  /// Lays out, lets animations end, and runs what waits.
  void settle();
  /// Runs the main loop, for what workers do, until that is so; false after ten seconds.
  bool waitFor(const std::function<bool()>& condition);
  /// Taps the row of that name in the browser.
  void tapRow(const std::string& name);
  CustomImportViewController& editor() { return *browser->importController(); }

  TestDevice device;
  KeptDownloads service;
  Ref<UIWindow> window = make<UIWindow>(CGRect{0, 0, 375, 667});
  Ref<ImportAudioController> browser = make<ImportAudioController>();
  Ref<UINavigationController> host;
};

}  // namespace quaverly::test
