#include "Platform/UIKit/UINavigationBar.h"

#include <algorithm>

#include "Platform/Device/Device.h"

namespace quaverly {
namespace {

constexpr double margin = 8;
constexpr double gap = 8;
constexpr double backArrowWidth = 20;

std::string systemWord(const char* word) {
  const auto& words = Device::current().systemWords;
  return words ? words(word) : word;
}

/// What the item says, on a button of the bar; hidden when it says nothing.
void show(UIButton& button, const Ref<UIBarButtonItem>& item, UIView& bar) {
  if (item) item->setBar(&bar);
  const bool saysSomething = item && (item->image() || !item->title().value_or("").empty());
  button.setHidden(!saysSomething);
  button.setTitle(item ? item->title() : std::nullopt);
  button.setImage(item ? item->image() : nullptr);
  button.setAccessibilityLabel(item ? item->accessibilityLabel() : std::nullopt);
}

}  // namespace

UIBarButtonItem::UIBarButtonItem(UIBarButtonSystemItem item, UITargetAction action)
    : _title(systemWord(item == UIBarButtonSystemItem::Done ? "Done" : "Cancel")),
      _systemItem(item),
      _action(std::move(action)) {}

UINavigationBar::UINavigationBar(CGRect frame)
    : UIView(frame),
      _left(UIButton::buttonWithType(UIButtonType::System)),
      _right(UIButton::buttonWithType(UIButtonType::System)),
      _back(UIButton::buttonWithType(UIButtonType::System)),
      _titleLabel(make<UILabel>()) {
  const auto event = UIControlEvents::TouchUpInside;
  _left->addTargetActionForControlEvents({this, &UINavigationBar::tapLeft}, event);
  _right->addTargetActionForControlEvents({this, &UINavigationBar::tapRight}, event);
  _back->addTargetActionForControlEvents({this, &UINavigationBar::tapBack}, event);
  _titleLabel->setFont(UIFont::fontWithNameSize("HelveticaNeue-Medium", 17));
  _titleLabel->setTextAlignment(NSTextAlignment::Center);
  for (const Ref<UIView>& view :
       {Ref<UIView>(_back), Ref<UIView>(_left), Ref<UIView>(_titleLabel), Ref<UIView>(_right)})
    addSubview(view);
}

void UINavigationBar::showItem(Ref<UINavigationItem> item, std::optional<std::string> backTitle,
                               std::function<void()> back) {
  if (_item) _item->setBar(nullptr);
  _item = std::move(item);
  if (_item) _item->setBar(this);
  _backTitle = std::move(backTitle);
  _goBack = std::move(back);
  setNeedsLayout();
}

void UINavigationBar::layoutSubviews() {
  if (!_item) return;
  showButtons();
  showTitle();
  placeButtons();
  placeTitle();
}

void UINavigationBar::showButtons() {
  show(*_left, _item->leftBarButtonItem(), *this);
  show(*_right, _item->rightBarButtonItem(), *this);
  _back->setHidden(!_backTitle || _item->leftBarButtonItem());
  _back->setTitle(_backTitle);
}

void UINavigationBar::showTitle() {
  _titleLabel->setText(_item->title());
  _titleLabel->setHidden(_item->titleView().get() != nullptr);
  if (_titleView == _item->titleView()) return;
  if (_titleView && _titleView->superview() == this) _titleView->removeFromSuperview();
  _titleView = _item->titleView();
  _titleWidth = _titleView ? _titleView->bounds().width : 0;
  if (_titleView) addSubview(_titleView);
}

void UINavigationBar::placeButtons() {
  const CGSize bar = bounds().size();
  const double most = bar.width / 3;
  const double back = backArrowWidth + _back->sizeThatFits({}).width;
  _back->setFrame({margin, 0, std::min(back, most), bar.height});
  const double left = _left->sizeThatFits({}).width;
  _left->setFrame({2 * margin, 0, std::min(left, most), bar.height});
  const double right = std::min(_right->sizeThatFits({}).width, most);
  _right->setFrame({bar.width - 2 * margin - right, 0, right, bar.height});
}

/// In the middle of the bar, or as near to it as the buttons leave room; no wider than that room.
void UINavigationBar::placeTitle() {
  const Ref<UIView> title = _titleView ? _titleView : Ref<UIView>(_titleLabel);
  if (!_titleView) _titleLabel->sizeToFit();
  const double leftEnd = !_back->isHidden()   ? _back->frame().maxX()
                         : !_left->isHidden() ? _left->frame().maxX()
                                              : 0;
  const double begin = leftEnd + gap;
  const double end = (_right->isHidden() ? bounds().width : _right->frame().x) - gap;
  const CGSize size = title->bounds().size();
  const double width = std::min(_titleView ? _titleWidth : size.width, end - begin);
  const double x = std::clamp((bounds().width - width) / 2, begin, std::max(begin, end - width));
  title->setFrame({x, (bounds().height - size.height) / 2, std::max(0.0, width), size.height});
}

void UINavigationBar::tapLeft() {
  if (_item && _item->leftBarButtonItem()) _item->leftBarButtonItem()->sendAction();
}

void UINavigationBar::tapRight() {
  if (_item && _item->rightBarButtonItem()) _item->rightBarButtonItem()->sendAction();
}

void UINavigationBar::tapBack() {
  if (const auto back = _goBack) back();
}

}  // namespace quaverly
