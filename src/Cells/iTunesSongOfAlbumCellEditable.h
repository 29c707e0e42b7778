#pragma once

#include "Platform/UIKit/UITableViewCell.h"
#include "Platform/UIKit/UITextField.h"

namespace quaverly {

/// A song as a row of its album, to be edited: its number and its title. Main thread only.
class iTunesSongOfAlbumCellEditable : public UITableViewCell {
 public:
  iTunesSongOfAlbumCellEditable* initWithStyleReuseIdentifier(
      UITableViewCellStyle style, std::optional<std::string> reuseIdentifier) override;
  void prepareForReuse() override;

  const Ref<UITextField>& titleLabel() const { return _titleLabel; }
  void setTitleLabel(Ref<UITextField> label) { _titleLabel = std::move(label); }
  const Ref<UITextField>& indexLabel() const { return _indexLabel; }
  void setIndexLabel(Ref<UITextField> label) { _indexLabel = std::move(label); }

 private:
  void makeTitleLabel();
  void makeIndexLabel();

  Ref<UITextField> _titleLabel;
  Ref<UITextField> _indexLabel;
};

}  // namespace quaverly
