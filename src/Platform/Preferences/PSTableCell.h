#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Platform/Device/Clock.h"
#include "Platform/Preferences/PSSpecifier.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UITableViewCell.h"
#include "Platform/UIKit/UITextField.h"

namespace quaverly {

/// A row of a pane, as its specifier describes it. What a person types into a text row reaches the specifier
/// within half a second, and before the row goes. Main thread only.
class PSTableCell : public UITableViewCell {
 public:
  /// Sets the cell up, once, before anything else is asked of it: the one that a pane calls. Null when it
  /// cannot be.
  virtual PSTableCell* initWithSpecifier(Ref<PSSpecifier> specifier);
  PSTableCell* initWithStyleReuseIdentifierSpecifier(UITableViewCellStyle style,
                                                     std::optional<std::string> reuseIdentifier,
                                                     Ref<PSSpecifier> specifier);

  /// Nothing for a row that is as high as any.
  virtual std::optional<double> preferredHeightForWidth(double) { return std::nullopt; }

  const Ref<PSSpecifier>& specifier() const { return _specifier; }
  /// The switch of a switch row, else null.
  const Ref<UISwitch>& control() const { return _control; }
  /// The field of a text row, else null.
  const Ref<UITextField>& textField() const { return _textField; }

 protected:
  ~PSTableCell() override { keepText(); }
  void layoutSubviews() override;

 private:
  void showValue();
  void addSwitch();
  void switchChanged();
  void addTextField();
  void textChanged();
  void keepText();

  Ref<PSSpecifier> _specifier;
  Ref<UISwitch> _control;
  Ref<UITextField> _textField;
  std::unique_ptr<Clock::Alarm> _typing;  // while the specifier does not have the field's text
};

}  // namespace quaverly
