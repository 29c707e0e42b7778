#pragma once

#include <functional>
#include <string>

#include "Host/Environment/DesktopLinks.h"
#include "Platform/UIKit/UIApplication.h"

namespace quaverly::screens {

/// Opens the links of the device's screens: a web address in the browser of whoever tapped it, an
/// application's where the desktop has an application for it. Main thread; one at a time.
class ScreenLinks : public UILinkOpener {
 public:
  /// `showPage` has the person's page open a web address.
  explicit ScreenLinks(std::function<void(const std::string& address)> showPage,
                       host::Environment environment = host::processEnvironment);
  ~ScreenLinks() override;
  ScreenLinks(const ScreenLinks&) = delete;
  ScreenLinks& operator=(const ScreenLinks&) = delete;

  bool canOpenURL(const NSURL& url) override;
  /// What cannot be opened is passed over.
  void openURL(const NSURL& url) override;

 private:
  std::function<void(const std::string&)> _showPage;
  host::DesktopLinks _desktop;
};

}  // namespace quaverly::screens
