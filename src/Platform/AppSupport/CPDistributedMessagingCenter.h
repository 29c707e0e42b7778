#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// Where another process takes messages. Found by its name at run time. Main thread only.
class CPDistributedMessagingCenter : public NSObject {
 public:
  /// The centre of that name; the same object at each call.
  static Ref<CPDistributedMessagingCenter> centerNamed(const std::string& name);

  /// Only for `centerNamed`.
  explicit CPDistributedMessagingCenter(std::string name = {}) : _name(std::move(name)) {}

  const std::string& name() const { return _name; }

  /// Sends a message one way, in the background and after those sent before. It is dropped when it is not out
  /// within two seconds. No message of ours carries information, so there is only nothing to give.
  void sendMessageNameUserInfo(std::string_view messageName, std::nullopt_t userInfo) const;

  /// Waits until each message is out or dropped: what a program does before it ends.
  static void finishSending();

 private:
  std::string _name;
};

}  // namespace quaverly
