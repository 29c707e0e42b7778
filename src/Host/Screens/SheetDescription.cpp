#include "Host/Screens/NodeDescription.h"
#include "Platform/MessageUI/MFMailComposeView.h"
#include "Platform/Social/SLComposeView.h"
#include "Platform/UIKit/UIImagePickerView.h"

namespace quaverly::screens {
namespace {

/// The longest text that the service takes, in UTF-16 units.
constexpr int longestShareText = 140;

std::string joined(const std::vector<std::string>& addresses) {
  std::string text;
  for (const auto& address : addresses) text += (text.empty() ? "" : ", ") + address;
  return text;
}

void describe(const UIImagePickerView& view, Json& node) {
  node["kind"] = "picker";
  node["editing"] = view.controller() && view.controller()->allowsEditing();
}

void describe(const MFMailComposeView& view, Json& node) {
  node["kind"] = "mail";
  const auto* const mail = view.controller();
  if (!mail) return;
  node["to"] = joined(mail->toRecipients());
  node["subject"] = mail->subject();
  node["attachments"] = Json::array();
  for (const auto& attachment : mail->attachments())
    node["attachments"].push_back({{"name", attachment.fileName}, {"bytes", attachment.data.length()}});
  node["sends"] = MFMailComposeViewController::canSendAtOnce();
}

void describe(const SLComposeView& view, Json& node) {
  node["kind"] = "share";
  node["text"] = view.controller() ? view.controller()->initialText() : "";
  node["limit"] = longestShareText;
  node["compose"] = SLComposeViewController::composeAddress();
}

}  // namespace

void describeSheet(const UIView& view, Json& node) {
  if (const auto* picker = dynamic_cast<const UIImagePickerView*>(&view)) return describe(*picker, node);
  if (const auto* mail = dynamic_cast<const MFMailComposeView*>(&view)) return describe(*mail, node);
  if (const auto* sheet = dynamic_cast<const SLComposeView*>(&view)) return describe(*sheet, node);
}

}  // namespace quaverly::screens
