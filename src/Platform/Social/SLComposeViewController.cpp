#include "Platform/Social/SLComposeViewController.h"

#include <utility>

#include "Platform/Social/SLComposeView.h"
#include "Platform/UIKit/UIScreen.h"

namespace quaverly {
namespace {

std::string& addressOfPage() {
  static std::string address;
  return address;
}

}  // namespace

Ref<SLComposeViewController> SLComposeViewController::composeViewControllerForServiceType(
    std::string serviceType) {
  return make<SLComposeViewController>(std::move(serviceType));
}

void SLComposeViewController::setComposeAddress(std::string address) {
  addressOfPage() = std::move(address);
}

const std::string& SLComposeViewController::composeAddress() {
  return addressOfPage();
}

void SLComposeViewController::loadView() {
  setView(make<SLComposeView>(UIScreen::mainScreen().bounds(), *this));
}

void SLComposeViewController::finishWithResult(SLComposeViewControllerResult result) {
  if (std::exchange(_done, true)) return;
  const Ref<SLComposeViewController> self(this);  // whoever presents it lets go of it
  if (_completionHandler) _completionHandler(result);
  dismissViewControllerAnimatedCompletion(UIAnimated::Yes);
}

}  // namespace quaverly
