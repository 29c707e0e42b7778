#include "Platform/MessageUI/MFMailComposeViewController.h"

#include <utility>

#include "Platform/MessageUI/MFMailComposeView.h"
#include "Platform/UIKit/UIScreen.h"

namespace quaverly {
namespace {

const MFMailService* service = nullptr;

}  // namespace

bool MFMailComposeViewController::canSendMail() {
  return service && service->canSendMail();
}

bool MFMailComposeViewController::canSendAtOnce() {
  return service && service->canSendAtOnce();
}

void MFMailComposeViewController::registerService(const MFMailService* newService) {
  service = newService;
}

MFMailComposeViewController* MFMailComposeViewController::initWithNibNameBundle(
    const std::optional<std::string>&, const Ref<NSBundle>&) {
  return this;
}

void MFMailComposeViewController::setMessageBodyIsHTML(std::string body, bool isHTML) {
  _messageBody = std::move(body);
  _messageBodyIsHTML = isHTML;
}

void MFMailComposeViewController::addAttachmentDataMimeTypeFileName(std::optional<NSData> data,
                                                                    std::string mimeType,
                                                                    std::string fileName) {
  if (data) _attachments.push_back({std::move(*data), std::move(mimeType), std::move(fileName)});
}

void MFMailComposeViewController::loadView() {
  setView(make<MFMailComposeView>(UIScreen::mainScreen().bounds(), *this));
}

void MFMailComposeViewController::finishWithResultError(MFMailComposeResult result,
                                                        const Ref<NSError>& error) {
  if (std::exchange(_done, true)) return;
  const Ref<MFMailComposeViewController> self(this);  // the delegate may let go of it
  if (auto* delegate = _delegate.get())
    delegate->mailComposeControllerDidFinishWithResultError(*this, result, error);
}

}  // namespace quaverly
