#pragma once

#include <functional>

#include "Platform/Foundation/NSURL.h"
#include "Platform/UIKit/UIWindow.h"

namespace quaverly {

/// What opens links for the application; the host has one.
class UILinkOpener {
 public:
  virtual ~UILinkOpener() = default;
  virtual bool canOpenURL(const NSURL& url) = 0;
  virtual void openURL(const NSURL& url) = 0;
};

/// The one application, its window and how the device is held. Main thread only.
class UIApplication {
 public:
  static UIApplication& sharedApplication();

  /// Null before a window was made key.
  UIWindow* keyWindow() const { return _keyWindow.get(); }
  /// Null takes the key window away, and lets it go.
  void setKeyWindow(Ref<UIWindow> window);

  UIInterfaceOrientation statusBarOrientation() const { return _orientation; }
  /// The status bar's height: none in landscape.
  double statusBarHeight() const;

  /// The device was turned, or is shown on a screen of another size: everything is laid out anew.
  void screenChanged(CGSize size, UIInterfaceOrientation orientation);

  /// Lays out what needs it, until nothing does.
  void layoutIfNeeded();

  /// Whether something on the device takes the link; never without an opener.
  bool canOpenURL(const NSURL& url) const { return _opener && _opener->canOpenURL(url); }
  void openURL(const NSURL& url) const {
    if (_opener) _opener->openURL(url);
  }
  /// Not owned; null for none.
  void setLinkOpener(UILinkOpener* opener) { _opener = opener; }

 private:
  Ref<UIWindow> _keyWindow;
  UIInterfaceOrientation _orientation = UIInterfaceOrientation::Portrait;
  UILinkOpener* _opener = nullptr;
};

}  // namespace quaverly
