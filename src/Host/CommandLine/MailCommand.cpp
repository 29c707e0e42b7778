#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "Controllers/ContactMeViewController.h"
#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/HostDevice.h"
#include "Host/Environment/UserFolders.h"
#include "Host/Mail/MailMessage.h"
#include "Host/Mail/Sendmail.h"

namespace quaverly::commandline {
namespace {

constexpr const char* draftName = "Quaverly Support.eml";

host::MailMessage messageOf(const MFMailComposeViewController& composer) {
  host::MailMessage message{composer.toRecipients(), composer.subject(), composer.messageBody(), {}};
  std::ranges::transform(
      composer.attachments(), std::back_inserter(message.attachments),
      [](const MFMailComposeViewController::Attachment& attachment) {
        return host::MailMessage::Attachment{attachment.data, attachment.mimeType, attachment.fileName};
      });
  return message;
}

JsonObject attachmentsOf(const host::MailMessage& message) {
  JsonObject list = JsonObject::array();
  for (const auto& attachment : message.attachments)
    list.push_back({{"name", attachment.fileName}, {"bytes", attachment.data.length()}});
  return list;
}

/// What leaves the machine, and how.
void tell(const Console& console, const host::MailMessage& message, const char* state,
          const std::string& where) {
  const std::string to = message.to.empty() ? "" : message.to.front();
  console.object({{"state", state},
                  {"to", to},
                  {"subject", message.subject},
                  {"path", where},
                  {"attachments", attachmentsOf(message)}});
  console.news("\"" + message.subject + "\" to " + to + ": " + state + ", " + where);
  for (const auto& attachment : message.attachments)
    console.news("  with " + attachment.fileName + ", " + std::to_string(attachment.data.length()) +
                 " bytes");
}

ExitStatus saveDraft(const Console& console, const host::MailMessage& message, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  file << mimeTextOf(message, host::MailForm::draft);
  file.close();
  if (!file) {
    console.problem(path, "The mail cannot be written there. Name another file with --output.");
    return ExitStatus::failed;
  }
  tell(console, message, "saved", path);
  return ExitStatus::done;
}

ExitStatus sendThrough(const Console& console, const host::MailMessage& message,
                       const host::Sendmail& mailer) {
  if (const auto failure = mailer.send(mimeTextOf(message, host::MailForm::forMailer))) {
    console.problem(mailer.path(), *failure + " Save it with --output instead.");
    return ExitStatus::failed;
  }
  tell(console, message, "sent", mailer.path());
  return ExitStatus::done;
}

}  // namespace

ExitStatus runMail(const Console& console, const CommonOptions& common, const std::string& output) {
  const HostDevice device(common);
  device.providePackageStatus();
  const auto composer = make<ContactMeViewController>();
  composer->init();
  const auto message = messageOf(*composer);
  if (!output.empty()) return saveDraft(console, message, output);
  const auto mailer = host::Sendmail::find(host::processEnvironment("PATH").value_or(""));
  return mailer ? sendThrough(console, message, *mailer) : saveDraft(console, message, draftName);
}

}  // namespace quaverly::commandline
