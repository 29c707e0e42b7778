#pragma once

#include <functional>
#include <string>

#include "Platform/UIKit/UIViewController.h"

namespace quaverly {

inline constexpr const char* SLServiceTypeTwitter = "twitter";

/// What became of a text. The numbers are the framework's own.
enum class SLComposeViewControllerResult { Cancelled = 0, Done = 1 };

/// A text to share, for a person to finish. Main thread only.
class SLComposeViewController : public UIViewController {
 public:
  static Ref<SLComposeViewController> composeViewControllerForServiceType(std::string serviceType);

  explicit SLComposeViewController(std::string serviceType) : _serviceType(std::move(serviceType)) {}

  const std::string& serviceType() const { return _serviceType; }
  const std::string& initialText() const { return _initialText; }
  void setInitialText(std::string text) { _initialText = std::move(text); }

  /// Told what became of the text, before the sheet goes.
  using CompletionHandler = std::function<void(SLComposeViewControllerResult result)>;
  void setCompletionHandler(CompletionHandler handler) { _completionHandler = std::move(handler); }

  /// Where a person goes on with the text on the web: an address that the escaped text completes. Whoever
  /// hosts the application names it; "" for none.
  static void setComposeAddress(std::string address);
  static const std::string& composeAddress();

  void loadView() override;

  /// For the host: the person is done. Takes the sheet away; once, what comes after does nothing.
  void finishWithResult(SLComposeViewControllerResult result);

 private:
  std::string _serviceType;
  std::string _initialText;
  CompletionHandler _completionHandler;
  bool _done = false;
};

}  // namespace quaverly
