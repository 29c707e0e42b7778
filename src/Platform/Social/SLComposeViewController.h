#pragma once

#include <string>

#include "Platform/UIKit/UIViewController.h"

namespace quaverly {

inline constexpr const char* SLServiceTypeTwitter = "twitter";

/// A text to share, for a person to finish. Main thread only.
class SLComposeViewController : public UIViewController {
 public:
  static Ref<SLComposeViewController> composeViewControllerForServiceType(std::string serviceType);

  explicit SLComposeViewController(std::string serviceType) : _serviceType(std::move(serviceType)) {}

  const std::string& serviceType() const { return _serviceType; }
  const std::string& initialText() const { return _initialText; }
  void setInitialText(std::string text) { _initialText = std::move(text); }

 private:
  std::string _serviceType;
  std::string _initialText;
};

}  // namespace quaverly
