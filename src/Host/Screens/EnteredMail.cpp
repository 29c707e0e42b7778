#include "Host/Screens/EnteredMail.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "Host/Mail/HtmlCleaning.h"

namespace quaverly::screens {
namespace {

using Json = nlohmann::json;

constexpr size_t longestSubject = 1000;
constexpr size_t longestAddress = 254;
constexpr size_t mostRecipients = 50;

/// What could end an address or mean something else in a header.
constexpr std::string_view notInAddresses = " \t()<>[]:;,\\\"";

bool isAddress(std::string_view text) {
  const size_t at = text.find('@');
  const bool hasParts = at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
                        text.find('@', at + 1) == std::string_view::npos;
  return hasParts && text.size() <= longestAddress && text.front() != '-' &&
         std::ranges::none_of(text, [](char c) {
           const auto code = static_cast<unsigned char>(c);
           return code < ' ' || code == 127 || notInAddresses.find(c) != std::string_view::npos;
         });
}

std::string trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

std::vector<std::string> addressesIn(std::string_view text) {
  std::vector<std::string> addresses;
  while (!text.empty()) {
    const size_t end = std::min(text.find_first_of(",;"), text.size());
    if (auto address = trimmed(text.substr(0, end)); !address.empty())
      addresses.push_back(std::move(address));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return addresses;
}

std::string problemWith(const std::vector<std::string>& addresses, MailUse use) {
  if (addresses.empty() && use == MailUse::send) return "Say to whom the mail goes.";
  if (addresses.size() > mostRecipients) return "These are too many recipients.";
  const auto wrong = std::ranges::find_if_not(addresses, isAddress);
  return wrong == addresses.end() ? "" : "“" + wrong->substr(0, longestAddress) + "” is no mail address.";
}

std::string escaped(std::string_view text) {
  std::string html;
  for (const char c : text) {
    if (c == '&')
      html += "&amp;";
    else if (c == '<')
      html += "&lt;";
    else
      html += c;
  }
  return html;
}

}  // namespace

EnteredMail enteredMail(std::string_view json, const MFMailComposeViewController& mail, MailUse use) {
  const Json entered = Json::parse(json, nullptr, false);
  const auto text = [&](const char* key) {
    const auto found = entered.is_object() ? entered.find(key) : entered.end();
    return found != entered.end() && found->is_string() ? found->get<std::string>() : std::string();
  };
  host::MailMessage message{addressesIn(text("to")), text("subject"), text("html"), {}};
  if (auto problem = problemWith(message.to, use); !problem.empty()) return {{}, std::move(problem)};
  if (message.subject.size() > longestSubject) return {{}, "The subject is too long."};
  std::ranges::transform(
      mail.attachments(), std::back_inserter(message.attachments), [](const auto& attachment) {
        return host::MailMessage::Attachment{attachment.data, attachment.mimeType, attachment.fileName};
      });
  return {std::move(message), ""};
}

std::string bodyOf(const MFMailComposeViewController& mail) {
  if (!mail.messageBodyIsHTML())
    return "<div style=\"white-space:pre-wrap;\">" + escaped(mail.messageBody()) + "</div>";
  return host::cleanedHtml(mail.messageBody()).value_or("");
}

}  // namespace quaverly::screens
