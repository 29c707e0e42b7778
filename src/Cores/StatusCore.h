#pragma once

#include <optional>
#include <string>

#include "Platform/UIKit/UIImageView.h"
#include "Platform/UIKit/UILabel.h"

namespace quaverly {

/// What the screens tell a person in passing: that work is under way, with two swinging rings, or a message
/// on a card that stays for two seconds. One for the whole process; it owns its views, and lays them over
/// everything in the key window.
class StatusCore : public NSObject {
 public:
  /// Made on first use, on any thread; lives for the rest of the process.
  static StatusCore& sharedInstance();

  /// Sets the views up, as wide as the screen is now. Called by `sharedInstance`.
  StatusCore* init();

  /// Shows the rings over everything. Any thread; what is seen changes in a later turn of the main thread, in
  /// the order of the calls.
  void showLoading();
  /// Fades the rings out, and takes them away. Any thread, like `showLoading`.
  void hideLoading();
  /// Lets the rings swing back and forth, for as long as they are seen. Main thread only.
  void rotateLoading();

  /// Shows a message for two seconds. There is one card: a new message takes it over, while the steps of the
  /// one before still run and may cut the new one short. Main thread only.
  void showTempMessage(std::optional<std::string> message);

  const Ref<UIView>& messageView() const { return _messageView; }
  const Ref<UILabel>& messageLabel() const { return _messageLabel; }
  const Ref<UIView>& loadingView() const { return _loadingView; }
  const Ref<UIImageView>& firstCircleView() const { return _firstCircleView; }
  const Ref<UIImageView>& secondCircleView() const { return _secondCircleView; }

 private:
  void makeMessageCard();
  void makeLoadingView();
  Ref<UILabel> makeLoadingLabel() const;
  void makeRings(UIView& container);
  void fadeOutMessage();

  Ref<UIView> _messageView;
  Ref<UILabel> _messageLabel;
  Ref<UIView> _loadingView;
  Ref<UIImageView> _firstCircleView;
  Ref<UIImageView> _secondCircleView;
};

}  // namespace quaverly
