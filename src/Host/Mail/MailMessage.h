#pragma once

#include <string>
#include <vector>

#include "Platform/Foundation/NSData.h"

namespace quaverly::host {

/// A mail: who it goes to, and what is in it. Texts are UTF-8.
struct MailMessage {
  struct Attachment {
    NSData data;
    std::string mimeType;  ///< for example "text/plain"
    std::string fileName;
  };
  std::vector<std::string> to;
  std::string subject;
  std::string htmlBody;
  std::vector<Attachment> attachments;
};

/// How a mail is written down: for the system's mailer, or as a file that mail programs open as a draft.
enum class MailForm { forMailer, draft };

/// The mail as MIME. Any bytes may stand in the body and in attachments; what is not UTF-8 in the headers
/// becomes U+FFFD, and line breaks in them spaces.
std::string mimeTextOf(const MailMessage& message, MailForm form);

}  // namespace quaverly::host
