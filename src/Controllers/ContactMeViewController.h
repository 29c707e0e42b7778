#pragma once

#include "Platform/MessageUI/MFMailComposeViewController.h"

namespace quaverly {

/// A support mail, filled in: what the device is, and the list of what is installed on it. Main thread only.
class ContactMeViewController : public MFMailComposeViewController,
                                public MFMailComposeViewControllerDelegate {
 public:
  ContactMeViewController* initWithNibNameBundle(const std::optional<std::string>& nibName,
                                                 const Ref<NSBundle>& bundle) override;

  /// The device's name as people know it; a machine that is not in the table has its own.
  static std::string platformString();

  /// Closes the screen, whatever the result.
  void mailComposeControllerDidFinishWithResultError(MFMailComposeViewController& controller,
                                                     MFMailComposeResult result,
                                                     const Ref<NSError>& error) override;

 private:
  static std::string body();
};

}  // namespace quaverly
