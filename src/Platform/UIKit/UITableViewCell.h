#pragma once

#include <optional>
#include <string>

#include "Platform/UIKit/UIImageView.h"
#include "Platform/UIKit/UILabel.h"

namespace quaverly {

enum class UITableViewCellStyle { Default = 0, Value1 = 1, Value2 = 2, Subtitle = 3 };
enum class UITableViewCellSelectionStyle { None = 0, Blue = 1, Gray = 2, Default = 3 };
enum class UITableViewCellAccessoryType { None = 0, DisclosureIndicator = 1 };

/// A row of a table. Made with a size of 320 × 44 and set up by its `init…`; the table gives it its place.
/// Main thread only.
class UITableViewCell : public UIView {
 public:
  UITableViewCell();

  /// Sets the cell up, once, before anything else is asked of it. Null when it cannot be.
  virtual UITableViewCell* initWithStyleReuseIdentifier(UITableViewCellStyle style,
                                                        std::optional<std::string> reuseIdentifier);
  /// Called before a cell that was seen as another row is used again.
  virtual void prepareForReuse() {}

  UITableViewCellStyle style() const { return _style; }
  const std::optional<std::string>& reuseIdentifier() const { return _reuseIdentifier; }

  /// What the row shows lies in here.
  const Ref<UIView>& contentView() const { return _contentView; }
  const Ref<UILabel>& textLabel() const { return _textLabel; }
  /// Null in the default style, which has none.
  const Ref<UILabel>& detailTextLabel() const { return _detailTextLabel; }
  const Ref<UIImageView>& imageView() const { return _imageView; }

  UITableViewCellSelectionStyle selectionStyle() const { return _selectionStyle; }
  void setSelectionStyle(UITableViewCellSelectionStyle style) { set(_selectionStyle, style); }
  bool isSelected() const { return _selected; }
  void setSelected(bool selected) { set(_selected, selected); }

  UITableViewCellAccessoryType accessoryType() const { return _accessoryType; }
  void setAccessoryType(UITableViewCellAccessoryType type);
  /// A view at the row's end, in place of the accessory's sign.
  const Ref<UIView>& accessoryView() const { return _accessoryView; }
  void setAccessoryView(Ref<UIView> view);

 protected:
  void layoutSubviews() override;

 private:
  double placeAccessory();
  void placeTexts(double left, double right);

  UITableViewCellStyle _style = UITableViewCellStyle::Default;
  std::optional<std::string> _reuseIdentifier;
  Ref<UIView> _contentView;
  Ref<UIImageView> _imageView;
  Ref<UILabel> _textLabel;
  Ref<UILabel> _detailTextLabel;
  Ref<UIView> _accessoryView;
  UITableViewCellSelectionStyle _selectionStyle = UITableViewCellSelectionStyle::Default;
  UITableViewCellAccessoryType _accessoryType = UITableViewCellAccessoryType::None;
  bool _selected = false;
};

}  // namespace quaverly
