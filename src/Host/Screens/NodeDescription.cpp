#include "Host/Screens/NodeDescription.h"

#include "Platform/UIKit/UIActivityIndicatorView.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UIImageView.h"
#include "Platform/UIKit/UILabel.h"
#include "Platform/UIKit/UINavigationBar.h"
#include "Platform/UIKit/UITableView.h"
#include "Platform/UIKit/UITextField.h"

namespace quaverly::screens {
namespace {

constexpr auto barColor = UIColor::colorWithWhiteAlpha(0.972549, 1);
constexpr auto hairline = UIColor::colorWithWhiteAlpha(0.7, 1);

const char* alignName(NSTextAlignment alignment) {
  switch (alignment) {
    case NSTextAlignment::Left:
      return "left";
    case NSTextAlignment::Center:
      return "center";
    case NSTextAlignment::Right:
      break;
  }
  return "right";
}

const char* modeName(UIViewContentMode mode) {
  switch (mode) {
    case UIViewContentMode::ScaleToFill:
      return "fill";
    case UIViewContentMode::ScaleAspectFit:
      return "fit";
    case UIViewContentMode::ScaleAspectFill:
      return "cover";
    case UIViewContentMode::Center:
      break;
  }
  return "center";
}

void describeFont(const UIFont& font, Json& node) {
  node["font"] = font.fontName();
  node["size"] = font.pointSize();
}

/// An image and its size in points; nothing for one without pixels.
void describeImage(const Ref<UIImage>& image, bool asStencil, const UIView& view, ShownImages& images,
                   Json& node) {
  if (!image || image->size().width <= 0) return;
  node["image"] = images.pathOf(image);
  node["imageSize"] = {image->size().width, image->size().height};
  const bool stencil = image->renderingMode() == UIImageRenderingMode::alwaysTemplate ||
                       (asStencil && image->renderingMode() == UIImageRenderingMode::automatic);
  if (stencil) node["tint"] = cssColor(view.tintColor());
}

void describe(const UILabel& label, Json& node) {
  node["kind"] = "label";
  node["text"] = label.text().value_or("");
  describeFont(label.font(), node);
  node["color"] = cssColor(label.textColor());
  if (label.highlightedTextColor()) node["pressed"] = cssColor(*label.highlightedTextColor());
  node["align"] = alignName(label.textAlignment());
  node["lines"] = label.numberOfLines();
}

void describe(const UIImageView& view, ShownImages& images, Json& node) {
  node["kind"] = "image";
  node["mode"] = modeName(view.contentMode());
  describeImage(view.image(), false, view, images, node);
}

void describe(const UIButton& button, ShownImages& images, Json& node) {
  node["kind"] = "button";
  if (button.title()) node["text"] = *button.title();
  describeFont(button.font(), node);
  const bool isSystem = button.buttonType() == UIButtonType::System;
  node["color"] = cssColor(button.tintColor());
  describeImage(button.image(), isSystem, button, images, node);
  if (!button.isEnabled()) node["disabled"] = true;
  const auto* const bar = dynamic_cast<const UINavigationBar*>(button.superview());
  if (bar && bar->backButton().get() == &button) node["back"] = true;
}

void describe(const UITextField& field, Json& node) {
  node["kind"] = "field";
  node["text"] = field.text();
  describeFont(field.font(), node);
  node["color"] = cssColor(field.textColor());
  node["align"] = alignName(field.textAlignment());
  node["keyboard"] = field.keyboardType() == UIKeyboardType::NumberPad ? "number" : "text";
  if (field.placeholder()) node["placeholder"] = *field.placeholder();
}

void describe(const UITableView& table, Json& node) {
  node["kind"] = "table";
  node["content"] = {table.contentSize().width, table.contentSize().height};
  const auto& inset = table.contentInset();
  node["inset"] = {inset.top, inset.left, inset.bottom, inset.right};
  node["offset"] = {table.contentOffset().x, table.contentOffset().y};
  node["moved"] = table.offsetChanges();
  if (!table.showsVerticalScrollIndicator()) node["indicator"] = false;
}

void describe(const UITableViewCell& cell, Json& node) {
  node["kind"] = "cell";
  if (cell.selectionStyle() != UITableViewCellSelectionStyle::None) node["selectable"] = true;
  if (cell.isSelected()) node["selected"] = true;
  if (cell.accessoryType() == UITableViewCellAccessoryType::DisclosureIndicator)
    node["accessory"] = "disclosure";
}

/// A background image takes the place of the bar's own colour and line.
void describe(const UINavigationBar& bar, ShownImages& images, Json& node) {
  node["kind"] = "bar";
  if (const auto& background = bar.backgroundImageForBarMetrics(UIBarMetrics::Default)) {
    describeImage(background, false, bar, images, node);
    if (!bar.shadowImage()) node["line"] = cssColor(hairline);
    return;
  }
  node["background"] = cssColor(bar.barTintColor().value_or(barColor));
  node["line"] = cssColor(hairline);
}

void describe(const UIActivityIndicatorView& wheel, Json& node) {
  node["kind"] = "wheel";
  const bool gray = wheel.activityIndicatorViewStyle() == UIActivityIndicatorViewStyle::Gray;
  node["color"] = cssColor(gray ? UIColor::grayColor() : UIColor::whiteColor());
  node["turning"] = wheel.isAnimating();
}

void describe(const UISwitch& control, Json& node) {
  node["kind"] = "switch";
  node["on"] = control.isOn();
  if (!control.isEnabled()) node["disabled"] = true;
}

void describeKind(const UIView& view, ShownImages& images, Json& node) {
  node["kind"] = "view";
  if (const auto* label = dynamic_cast<const UILabel*>(&view)) return describe(*label, node);
  if (const auto* image = dynamic_cast<const UIImageView*>(&view)) return describe(*image, images, node);
  if (const auto* cell = dynamic_cast<const UITableViewCell*>(&view)) return describe(*cell, node);
  if (const auto* field = dynamic_cast<const UITextField*>(&view)) return describe(*field, node);
  if (const auto* button = dynamic_cast<const UIButton*>(&view)) return describe(*button, images, node);
  if (const auto* control = dynamic_cast<const UISwitch*>(&view)) return describe(*control, node);
  if (const auto* table = dynamic_cast<const UITableView*>(&view)) return describe(*table, node);
  if (const auto* bar = dynamic_cast<const UINavigationBar*>(&view)) return describe(*bar, images, node);
  if (const auto* wheel = dynamic_cast<const UIActivityIndicatorView*>(&view)) return describe(*wheel, node);
  describeSheet(view, node);
}

}  // namespace

Json describeNode(const UIView& view, ShownImages& images) {
  Json node = Json::object();
  describeLooks(view, node);
  describeKind(view, images, node);
  describeAnimations(view, node);
  return node;
}

}  // namespace quaverly::screens
