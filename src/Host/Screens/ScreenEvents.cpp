#include "Host/Screens/ScreenEvents.h"

#include <algorithm>
#include <cmath>

#include "Host/Screens/ReachableViews.h"
#include "Host/Screens/TreeDescription.h"
#include "Platform/Social/SLComposeView.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UITextField.h"

namespace quaverly::screens {
namespace {

/// Far beyond any content; what a page invents must not become an endless number.
constexpr double mostOffset = 1e8;

std::optional<double> lengthIn(const Json& event, const char* key) {
  const auto found = event.find(key);
  if (found == event.end() || !found->is_number()) return std::nullopt;
  const double value = found->get<double>();
  return std::isfinite(value) ? std::optional(std::clamp(value, -mostOffset, mostOffset)) : std::nullopt;
}

template <class View>
Ref<View> viewOf(const Json& event) {
  const auto node = numberIn(event, "node");
  return node ? reachable<View>(*node) : nullptr;
}

}  // namespace

std::optional<uint64_t> numberIn(const Json& event, const char* key) {
  const auto found = event.find(key);
  if (found == event.end() || !found->is_number_unsigned()) return std::nullopt;
  return found->get<uint64_t>();
}

void ScreenEvents::tap(const Json& event) const {
  const auto view = viewOf<UIView>(event);
  if (auto* const button = dynamic_cast<UIButton*>(view.get())) {
    button->sendActionsForControlEvents(UIControlEvents::TouchUpInside);
  } else if (auto* const control = dynamic_cast<UISwitch*>(view.get())) {
    control->toggle();
  } else if (auto* const cell = dynamic_cast<UITableViewCell*>(view.get())) {
    if (const auto row = rowOfCell(*cell)) row->table->tapRow(row->path);
  }
}

void ScreenEvents::scroll(const Json& event) const {
  const auto table = viewOf<UITableView>(event);
  const auto x = lengthIn(event, "x");
  const auto y = lengthIn(event, "y");
  const auto moved = numberIn(event, "moved");
  if (table && x && y && moved && *moved >= table->offsetChanges()) table->scrollTo({*x, *y});
}

std::optional<uint64_t> ScreenEvents::edit(const std::string& client, const Json& event) {
  const auto sequence = numberIn(event, "sequence");
  const auto node = numberIn(event, "node");
  const auto text = event.find("text");
  if (!sequence || !node || text == event.end() || !text->is_string()) return std::nullopt;
  const auto field = viewOf<UITextField>(event);
  if (!field) return sequence;
  uint64_t& last = _sequences[client][*node];
  if (*sequence <= last) return sequence;
  last = *sequence;
  field->type(text->get<std::string>());
  return sequence;
}

void ScreenEvents::forgetClient(const std::string& client) {
  _sequences.erase(client);
}

void ScreenEvents::changeScreen(const Json& event) const {
  const auto width = lengthIn(event, "width");
  const auto height = lengthIn(event, "height");
  const auto orientation = numberIn(event, "orientation");
  if (!width || !height || !orientation || *orientation < 1 || *orientation > 4) return;
  const auto fits = [](double side) { return side >= leastSide && side <= mostSide; };
  if (!fits(*width) || !fits(*height)) return;
  UIApplication::sharedApplication().screenChanged({std::round(*width), std::round(*height)},
                                                   UIInterfaceOrientation{static_cast<int>(*orientation)});
}

void ScreenEvents::cancel(uint64_t node) const {
  if (const auto picker = reachableController<UIImagePickerView>(node)) picker->cancel();
  if (const auto sheet = reachableController<SLComposeView>(node))
    sheet->finishWithResult(SLComposeViewControllerResult::Cancelled);
}

void ScreenEvents::finish(uint64_t node) const {
  if (const auto sheet = reachableController<SLComposeView>(node))
    sheet->finishWithResult(SLComposeViewControllerResult::Done);
}

Ref<UIImagePickerController> ScreenEvents::pickerOfNode(uint64_t node) {
  return reachableController<UIImagePickerView>(node);
}

}  // namespace quaverly::screens
