#pragma once

#include <string>
#include <string_view>

#include "Host/Mail/MailMessage.h"
#include "Platform/MessageUI/MFMailComposeViewController.h"

namespace quaverly::screens {

enum class MailUse { send, keep };

/// A mail as a person finished it, or what is wrong with it, in a sentence.
struct EnteredMail {
  host::MailMessage message{};
  std::string problem{};
};

/// What a page says of a mail (JSON: `to`, `subject`, `html`, texts), with the mail's own attachments. The
/// body is not cleaned yet. A mail to send needs somebody to go to.
EnteredMail enteredMail(std::string_view json, const MFMailComposeViewController& mail, MailUse use);

/// The mail's body for the frame that it is edited in: cleaned.
std::string bodyOf(const MFMailComposeViewController& mail);

}  // namespace quaverly::screens
