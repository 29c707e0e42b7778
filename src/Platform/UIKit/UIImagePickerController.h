#pragma once

#include <map>
#include <string>

#include "Platform/UIKit/UIImage.h"
#include "Platform/UIKit/UINavigationController.h"

namespace quaverly {

class UIImagePickerController;

enum class UIImagePickerControllerSourceType { PhotoLibrary = 0 };

/// What was picked, by what it is.
using UIImagePickerInfo = std::map<std::string, Ref<UIImage>, std::less<>>;
inline constexpr const char* UIImagePickerControllerEditedImage = "UIImagePickerControllerEditedImage";
inline constexpr const char* UIImagePickerControllerOriginalImage = "UIImagePickerControllerOriginalImage";

class UIImagePickerControllerDelegate {
 public:
  virtual ~UIImagePickerControllerDelegate() = default;
  virtual void imagePickerControllerDidFinishPickingMediaWithInfo(UIImagePickerController&,
                                                                  const UIImagePickerInfo&) {}
  virtual void imagePickerControllerDidCancel(UIImagePickerController&) {}
};

/// Lets a person pick one of their pictures. The host shows how; it tells the outcome with `pick` or
/// `cancel`. The delegate is not owned, and takes the picker away. Main thread only.
class UIImagePickerController : public UINavigationController {
 public:
  template <class T>
  void setPickerDelegate(T* delegate) {
    _pickerDelegate = delegate;
  }

  bool allowsEditing() const { return _allowsEditing; }
  void setAllowsEditing(bool allows) { _allowsEditing = allows; }
  UIImagePickerControllerSourceType sourceType() const { return _sourceType; }
  void setSourceType(UIImagePickerControllerSourceType type) { _sourceType = type; }

  void loadView() override;

  /// The person picked a picture, cut to a square when editing is allowed. Once; what comes after does
  /// nothing.
  void pick(Ref<UIImage> image);
  void cancel();

 private:
  Unowned<UIImagePickerControllerDelegate> _pickerDelegate;
  UIImagePickerControllerSourceType _sourceType = UIImagePickerControllerSourceType::PhotoLibrary;
  bool _allowsEditing = false;
  bool _done = false;
};

}  // namespace quaverly
