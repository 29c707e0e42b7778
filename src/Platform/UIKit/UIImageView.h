#pragma once

#include "Platform/UIKit/UIImage.h"
#include "Platform/UIKit/UIView.h"

namespace quaverly {

/// Shows a picture, as the content mode says. Main thread only.
class UIImageView : public UIView {
 public:
  explicit UIImageView(CGRect frame = {}) : UIView(frame) { setUserInteractionEnabled(false); }
  /// As large as its picture.
  explicit UIImageView(Ref<UIImage> image) : UIImageView(CGRect{0, 0, 0, 0}) {
    setImage(std::move(image));
    sizeToFit();
  }

  const Ref<UIImage>& image() const { return _image; }
  void setImage(Ref<UIImage> image) { set(_image, std::move(image)); }

  CGSize sizeThatFits(CGSize limit) const override {
    return _image ? _image->size() : UIView::sizeThatFits(limit);
  }

 private:
  Ref<UIImage> _image;
};

}  // namespace quaverly
