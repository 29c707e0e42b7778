#pragma once

#include "Platform/Preferences/PSTableCell.h"
#include "Platform/UIKit/UIImageView.h"

namespace quaverly {

/// The first row of the root pane: the product's name, its maker and its icon. Main thread only.
class QVTitleCell : public PSTableCell {
 public:
  /// Lays the cell out, once, from its own centre and frame as they are now.
  QVTitleCell* initWithSpecifier(Ref<PSSpecifier> specifier) override;
  std::optional<double> preferredHeightForWidth(double) override { return 120; }

  const Ref<UILabel>& quaverlyLabel() const { return _quaverlyLabel; }
  void setQuaverlyLabel(Ref<UILabel> label) { _quaverlyLabel = std::move(label); }
  const Ref<UILabel>& tolmarinLabel() const { return _tolmarinLabel; }
  void setTolmarinLabel(Ref<UILabel> label) { _tolmarinLabel = std::move(label); }
  const Ref<UIImageView>& quaverlyIconView() const { return _quaverlyIconView; }
  void setQuaverlyIconView(Ref<UIImageView> view) { _quaverlyIconView = std::move(view); }

 private:
  Ref<UILabel> addLabel(double y);
  void addIcon();

  Ref<UILabel> _quaverlyLabel;
  Ref<UILabel> _tolmarinLabel;
  Ref<UIImageView> _quaverlyIconView;
};

}  // namespace quaverly
