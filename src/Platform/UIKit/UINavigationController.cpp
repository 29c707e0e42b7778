#include "Platform/UIKit/UINavigationController.h"

#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIScreen.h"

namespace quaverly {
namespace {

constexpr double transitionSeconds = 0.35;
constexpr double uprightBarHeight = 44;
constexpr double landscapeBarHeight = 32;
constexpr unsigned fills = UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight;

CGRect barFrame(double width) {
  const double top = UIApplication::sharedApplication().statusBarHeight();
  return {0, top, width, top > 0 ? uprightBarHeight : landscapeBarHeight};
}

}  // namespace

/// Lays the bar and the screens out with every layout of its own.
class UINavigationController::LayoutView : public UIView {
 public:
  LayoutView(CGRect frame, UINavigationController& owner) : UIView(frame), _owner(&owner) {}

 protected:
  void layoutSubviews() override {
    if (auto* const owner = _owner.get()) owner->layout();
  }

 private:
  Unowned<UINavigationController> _owner;
};

UINavigationController::UINavigationController()
    : _bar(make<UINavigationBar>(barFrame(UIScreen::mainScreen().bounds().width))) {}

UINavigationController::UINavigationController(Ref<UIViewController> root) : UINavigationController() {
  pushViewControllerAnimated(std::move(root), UIAnimated::No);
}

UINavigationController::~UINavigationController() {
  for (const auto& controller : _controllers) controller->setParent(nullptr);
}

void UINavigationController::loadView() {
  const auto view = make<LayoutView>(UIScreen::mainScreen().bounds(), *this);
  view->setBackgroundColor(UIColor::whiteColor());
  _content = make<UIView>(view->bounds());
  _content->setAutoresizingMask(fills);
  view->addSubview(_content);
  view->addSubview(_bar);
  setView(view);
  showTop();
}

void UINavigationController::viewWillAppear(UIAnimated animated) {
  if (auto* const top = topViewController()) top->viewWillAppear(animated);
}

void UINavigationController::pushViewControllerAnimated(Ref<UIViewController> controller,
                                                        UIAnimated animated) {
  if (!controller || controller->parentViewController()) return;
  const Ref<UIViewController> from(topViewController());
  controller->setParent(this);
  _controllers.push_back(controller);
  if (isViewLoaded()) exchangeViews(from, controller, 1, animated);
}

void UINavigationController::popViewControllerAnimated(UIAnimated animated) {
  if (_controllers.size() < 2) return;
  const auto from = _controllers.back();
  _controllers.pop_back();
  from->setParent(nullptr);
  if (isViewLoaded()) exchangeViews(from, _controllers.back(), -1, animated);
}

/// The one on top takes the place of the other: from the right when it is new, from the left when it is old.
void UINavigationController::exchangeViews(const Ref<UIViewController>& from, const Ref<UIViewController>& to,
                                           double direction, UIAnimated animated) {
  if (from) to->viewWillAppear(animated);
  showTop();
  const Ref<UIView> leaving = from ? from->view() : nullptr;
  const auto gone = [leaving, kept = Ref<UIViewController>(from),
                     controllers = Ref<UINavigationController>(this)] {
    const auto* const top = controllers->topViewController();
    if (leaving && (!top || top != kept.get())) leaving->removeFromSuperview();
  };
  if (animated == UIAnimated::No || !_content->window()) return gone();
  const CGSize size = _content->bounds().size();
  const auto entering = to->view();
  _content->bringSubviewToFront(direction > 0 || !leaving ? *entering : *leaving);
  entering->setFrame({direction * size.width * (direction > 0 ? 1 : 0.3), 0, size.width, size.height});
  UIView::animateWithDurationDelayOptionsAnimationsCompletion(
      transitionSeconds, 0, UIViewAnimationOptionCurveEaseOut,
      [&] {
        entering->setFrame({0, 0, size.width, size.height});
        if (leaving)
          leaving->setFrame(
              {-direction * size.width * (direction > 0 ? 0.3 : 1), 0, size.width, size.height});
      },
      [gone](bool) { gone(); });
}

void UINavigationController::showTop() {
  auto* const top = topViewController();
  if (!top) return;
  const auto& view = top->view();
  view->setFrame(_content->bounds());
  view->setAutoresizingMask(fills);
  if (view->superview() != _content.get()) _content->insertSubviewAtIndex(view, _content->subviews().size());
  const size_t count = _controllers.size();
  std::optional<std::string> backTitle;
  if (count > 1) backTitle = _controllers[count - 2]->title().value_or("");
  const Unowned<UINavigationController> self(this);
  _bar->showItem(top->navigationItem(), std::move(backTitle), [self] {
    if (auto* const controller = self.get()) controller->popViewControllerAnimated(UIAnimated::Yes);
  });
  makeRoomForBar();
  view->setNeedsLayout();
}

void UINavigationController::layout() {
  _bar->setFrame(barFrame(view()->bounds().width));
  makeRoomForBar();
}

/// A table or another scrolling view begins below the bar, unless the screen chose its own insets.
void UINavigationController::makeRoomForBar() {
  auto* const top = topViewController();
  auto* const scrolling = top ? dynamic_cast<UIScrollView*>(top->view().get()) : nullptr;
  if (!scrolling) return;
  const double room = _bar->frame().maxY();
  UIEdgeInsets inset = scrolling->contentInset();
  double& given = top->_roomForBar;
  if (inset.top != given || room == given) return;
  const bool atTop = scrolling->contentOffset().y == -inset.top;
  inset.top = room;
  given = room;
  scrolling->setContentInset(inset);
  if (atTop) scrolling->setContentOffset({scrolling->contentOffset().x, -room});
}

}  // namespace quaverly
