#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Platform/UIKit/UINavigationItem.h"
#include "Platform/UIKit/UIScrollView.h"

namespace quaverly {

class UINavigationController;

enum class UIModalTransitionStyle { CoverVertical = 0, FlipHorizontal = 1, CrossDissolve = 2 };
enum class UIModalPresentationStyle { FullScreen = 0, PageSheet = 1, FormSheet = 2 };

/// A screen: a tree of views and what it does. Its view is loaded when it is first asked for. Owned by what
/// shows it: a window, a navigation controller, or the controller that presented it. Main thread only.
class UIViewController : public NSObject {
 public:
  UIViewController();

  /// Sets the screen up, once, before anything else is asked of it. Null when it cannot be; the caller then
  /// lets it go.
  virtual UIViewController* init() { return this; }

  /// The screen's view, loaded now if it was not before; never null.
  const Ref<UIView>& view();
  void setView(Ref<UIView> view);
  bool isViewLoaded() const { return _view.get() != nullptr; }
  /// Makes the view, of the size of the screen, and gives it to `setView`. Called by `view`.
  virtual void loadView();
  /// After the view was loaded.
  virtual void viewDidLoad() {}
  virtual void viewWillAppear(UIAnimated) {}

  const std::optional<std::string>& title() const { return _navigationItem->title(); }
  void setTitle(std::optional<std::string> title) { _navigationItem->setTitle(std::move(title)); }
  const Ref<UINavigationItem>& navigationItem() const { return _navigationItem; }

  /// The controller that this one lies in, or null; it owns this one.
  UIViewController* parentViewController() const { return _parent.get(); }
  /// The nearest navigation controller around this one, or null.
  UINavigationController* navigationController() const;

  UIModalTransitionStyle modalTransitionStyle() const { return _transitionStyle; }
  void setModalTransitionStyle(UIModalTransitionStyle style) { _transitionStyle = style; }
  /// On a screen as small as a phone's every style fills it.
  UIModalPresentationStyle modalPresentationStyle() const { return _presentationStyle; }
  void setModalPresentationStyle(UIModalPresentationStyle style) { _presentationStyle = style; }

  using Completion = std::function<void()>;
  /// Shows a controller over everything that the outermost controller around this one shows, which owns it
  /// until it is dismissed. While that one already presents another, nothing happens but a line in the log.
  void presentViewControllerAnimatedCompletion(Ref<UIViewController> controller, UIAnimated animated,
                                               Completion completion = nullptr);
  /// Takes away what this controller presents, or itself if it presents nothing.
  void dismissViewControllerAnimatedCompletion(UIAnimated animated, Completion completion = nullptr);

  const Ref<UIViewController>& presentedViewController() const { return _presented; }
  UIViewController* presentingViewController() const { return outermost()->_presenting.get(); }

 protected:
  ~UIViewController() override;
  void setParent(UIViewController* parent) { _parent = parent; }
  friend class UINavigationController;

 private:
  UIViewController* outermost() const;
  void dismissPresented(UIAnimated animated, Completion completion);

  Ref<UIView> _view;
  Ref<UINavigationItem> _navigationItem;
  Unowned<UIViewController> _parent;
  Unowned<UIViewController> _presenting;
  Ref<UIViewController> _presented;
  double _roomForBar = 0;  // what the navigation controller gave its scrolling view at the top
  UIModalTransitionStyle _transitionStyle = UIModalTransitionStyle::CoverVertical;
  UIModalPresentationStyle _presentationStyle = UIModalPresentationStyle::FullScreen;
};

}  // namespace quaverly
