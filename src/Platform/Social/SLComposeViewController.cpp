#include "Platform/Social/SLComposeViewController.h"

namespace quaverly {

Ref<SLComposeViewController> SLComposeViewController::composeViewControllerForServiceType(
    std::string serviceType) {
  return make<SLComposeViewController>(std::move(serviceType));
}

}  // namespace quaverly
