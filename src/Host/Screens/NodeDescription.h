#pragma once

#include <nlohmann/json.hpp>

#include "Host/Screens/ShownImages.h"
#include "Platform/UIKit/UIView.h"

namespace quaverly::screens {

using Json = nlohmann::json;

/// A colour as CSS writes it.
std::string cssColor(const CGColor& color);

/// All that a page needs to show one view, but its children; docs/page-protocol.md has the fields. Main
/// thread.
Json describeNode(const UIView& view, ShownImages& images);

/// What a view's kind adds, for `describeNode`.
void describeLooks(const UIView& view, Json& node);
void describeSheet(const UIView& view, Json& node);
void describeAnimations(const UIView& view, Json& node);

}  // namespace quaverly::screens
