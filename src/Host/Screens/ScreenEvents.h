#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "Host/Screens/NodeDescription.h"
#include "Platform/UIKit/UIImagePickerView.h"

namespace quaverly::screens {

/// A whole number that an event has under `key`; nothing when it has none there.
std::optional<uint64_t> numberIn(const Json& event, const char* key);

/// Does on the device what a person did on a page. What names a view that is gone, covered or of another kind
/// does nothing. Main thread.
class ScreenEvents {
 public:
  /// The sizes of a screen, in points, that the device takes.
  static constexpr double leastSide = 200;
  static constexpr double mostSide = 4000;

  void tap(const Json& event) const;
  void scroll(const Json& event) const;
  /// The person closed a picker or a share sheet, or is done with what the sheet was for.
  void cancel(uint64_t node) const;
  void finish(uint64_t node) const;
  void changeScreen(const Json& event) const;
  /// The sequence number to acknowledge; nothing for what is no edit. An edit that is not newer than the last
  /// one from this client for this field is acknowledged, too, and changes nothing.
  std::optional<uint64_t> edit(const std::string& client, const Json& event);
  /// The client's pages are all gone for good, or it must be forgotten.
  void forgetClient(const std::string& client);

  /// The picker of that number when it can be used now, or null.
  static Ref<UIImagePickerController> pickerOfNode(uint64_t node);

 private:
  std::map<std::string, std::map<uint64_t, uint64_t>> _sequences;  // by client and field
};

}  // namespace quaverly::screens
