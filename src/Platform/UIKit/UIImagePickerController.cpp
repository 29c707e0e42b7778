#include "Platform/UIKit/UIImagePickerController.h"

#include "Platform/UIKit/UIImagePickerView.h"
#include "Platform/UIKit/UIScreen.h"

namespace quaverly {

void UIImagePickerController::loadView() {
  setView(make<UIImagePickerView>(UIScreen::mainScreen().bounds(), *this));
}

void UIImagePickerController::pick(Ref<UIImage> image) {
  if (!image || std::exchange(_done, true)) return;
  const Ref<UIImagePickerController> kept(this);
  const auto* const name =
      _allowsEditing ? UIImagePickerControllerEditedImage : UIImagePickerControllerOriginalImage;
  if (auto* const delegate = _pickerDelegate.get())
    delegate->imagePickerControllerDidFinishPickingMediaWithInfo(*this, {{name, std::move(image)}});
}

void UIImagePickerController::cancel() {
  if (std::exchange(_done, true)) return;
  const Ref<UIImagePickerController> kept(this);
  if (auto* const delegate = _pickerDelegate.get()) delegate->imagePickerControllerDidCancel(*this);
}

}  // namespace quaverly
