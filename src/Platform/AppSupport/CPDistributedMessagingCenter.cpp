#include "Platform/AppSupport/CPDistributedMessagingCenter.h"

#include <algorithm>
#include <map>

#include "Platform/AppSupport/MessageSender.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSClass.h"

namespace quaverly {
namespace {

const NSClassOf<CPDistributedMessagingCenter> centerClass("CPDistributedMessagingCenter", "");

MessageSender& sender() {
  static MessageSender shared;
  return shared;
}

std::string objectPath(std::string name) {
  std::ranges::replace(name, '.', '/');
  return "/" + name;
}

}  // namespace

Ref<CPDistributedMessagingCenter> CPDistributedMessagingCenter::centerNamed(const std::string& name) {
  static std::map<std::string, Ref<CPDistributedMessagingCenter>> centers;
  auto& center = centers[name];
  if (!center) center = make<CPDistributedMessagingCenter>(name);
  return center;
}

void CPDistributedMessagingCenter::sendMessageNameUserInfo(std::string_view messageName,
                                                           std::nullopt_t) const {
  const auto& bus = Device::current().messageBusAddress;
  if (!bus.empty()) sender().send({bus, _name, objectPath(_name), _name, std::string(messageName)});
}

void CPDistributedMessagingCenter::finishSending() {
  sender().finish();
}

}  // namespace quaverly
