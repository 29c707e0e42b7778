#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "Controllers/ImportAudioController.h"
#include "Platform/StoreServices/SSDownloadManager.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/TestDevice.h"

namespace quaverly::test {

/// Keeps the downloads that are handed over, and completes them at the end.
class KeptDownloads : public SSDownloadService {
 public:
  KeptDownloads();
  ~KeptDownloads() override;
  void addDownloads(const std::vector<Ref<SSDownload>>& downloads) override;

  const std::vector<Ref<SSDownload>>& downloads() const { return _downloads; }
  /// A value of the last download as text; "nothing" for none of that name.
  std::string last(std::string_view name) const;
  /// All of one, a line each.
  std::vector<std::string> lines(size_t index) const;

 private:
  std::vector<Ref<SSDownload>> _downloads;
};

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
