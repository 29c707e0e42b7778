#include "Host/Screens/ScreenLinks.h"

#include <utility>

namespace quaverly::screens {
namespace {

bool isWebAddress(const NSURL& url) {
  const auto scheme = url.scheme();
  return (scheme == "http" || scheme == "https") && !url.host().value_or("").empty();
}

}  // namespace

ScreenLinks::ScreenLinks(std::function<void(const std::string& address)> showPage,
                         host::Environment environment)
    : _showPage(std::move(showPage)), _desktop(std::move(environment)) {
  UIApplication::sharedApplication().setLinkOpener(this);
}

ScreenLinks::~ScreenLinks() {
  UIApplication::sharedApplication().setLinkOpener(nullptr);
}

bool ScreenLinks::canOpenURL(const NSURL& url) {
  return isWebAddress(url) || _desktop.handles(url.scheme().value_or(""));
}

void ScreenLinks::openURL(const NSURL& url) {
  if (isWebAddress(url)) return _showPage(url.absoluteString());
  if (_desktop.handles(url.scheme().value_or(""))) static_cast<void>(_desktop.open(url.absoluteString()));
}

}  // namespace quaverly::screens
