#include "Controllers/ImportAudioController.h"

#include "Other/LocalizedStrings.h"
#include "Platform/Foundation/NSClass.h"

namespace quaverly {
namespace {

const NSClassOf<ImportAudioController> browserClass("ImportAudioController", "");

constexpr auto hostBackground = UIColor::colorWithRedGreenBlueAlpha(0.937255, 0.937255, 0.956863, 1);
constexpr auto barTint = UIColor::colorWithRedGreenBlueAlpha(0.972549, 0.972549, 0.972549, 1);
constexpr auto titleColor = UIColor::colorWithRedGreenBlueAlpha(0.196078, 0.196078, 0.196078, 1);
constexpr double rowHeight = 50;

void prepareLabel(UILabel& label, UIColor color, double fontSize) {
  label.setBackgroundColor(UIColor::clearColor());
  label.setTextColor(color);
  label.setTextAlignment(NSTextAlignment::Center);
  label.setFont(UIFont::fontWithNameSize("Arial", fontSize));
}

void prepareAutoresizing(UIView& view) {
  view.setAutoresizesSubviews(true);
  view.setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
}

}  // namespace

ImportAudioController* ImportAudioController::init() {
  if (!PSViewController::init()) return nullptr;
  _titleLabel = make<UILabel>();
  _subTitleLabel = make<UILabel>();
  _statusLabel = make<UILabel>();
  _importController = make<CustomImportViewController>();
  _importNavController = make<UINavigationController>(_importController);
  _importNavController->navigationBar()->setBarTintColor(barTint);
  _importNavController->setModalTransitionStyle(UIModalTransitionStyle::CoverVertical);
  _importNavController->setModalPresentationStyle(UIModalPresentationStyle::FormSheet);
  return this;
}

void ImportAudioController::loadView() {
  auto* const navigation = navigationController();
  if (navigation && navigation->isViewLoaded()) navigation->view()->setBackgroundColor(hostBackground);
  makeTable();
  _temporaryBarButtonItem =
      make<UIBarButtonItem>(std::nullopt, UITargetAction(this, &ImportAudioController::backBrowser));
  navigationItem()->setRightBarButtonItem(_temporaryBarButtonItem);
  const CGRect bar = navigation ? navigation->navigationBar()->frame() : CGRect();
  navigationItem()->setTitleView(makeTitleView(bar));
  prepareStatusLabel(bar.width);
  _openedFolder = make<NSMutableString>("/var/mobile/Media");
  setItems(ItemsInFolder(_openedFolder->string()));
}

void ImportAudioController::makeTable() {
  auto* const parent = parentViewController();
  const CGRect frame = parent && parent->isViewLoaded() ? parent->view()->frame() : CGRect();
  const auto table = make<UITableView>(frame, UITableViewStyle::Plain);
  table->setDataSource(this);
  table->setDelegate(this);
  table->setBackgroundColor(hostBackground);
  setView(table);
  table->setSeparatorStyle(UITableViewCellSeparatorStyle::SingleLine);
  prepareAutoresizing(*table);
  table->setTableFooterView(make<UIView>());
  table->setRowHeight(rowHeight);
  table->setBackgroundColor(UIColor::whiteColor());
  prepareAutoresizing(*table);
}

/// The product's name above the folder's path, beside the bar until the bar places it.
Ref<UIView> ImportAudioController::makeTitleView(CGRect bar) {
  auto container = make<UIView>(CGRect{bar.width, 0, bar.width, bar.height});
  _titleLabel->setFrame({0, 7, bar.width, 20});
  prepareLabel(*_titleLabel, titleColor, 20);
  _titleLabel->setAutoresizingMask(UIViewAutoresizingFlexibleWidth);
  _titleLabel->setText("Quaverly");
  _subTitleLabel->setFrame({0, 25, bar.width, 14});
  prepareLabel(*_subTitleLabel, UIColor::grayColor(), 12);
  _subTitleLabel->setAutoresizingMask(UIViewAutoresizingFlexibleWidth);
  container->addSubview(_titleLabel);
  container->addSubview(_subTitleLabel);
  return container;
}

void ImportAudioController::prepareStatusLabel(double width) {
  prepareLabel(*_statusLabel, UIColor::grayColor(), 24);
  _statusLabel->setAccessibilityTraits(UIAccessibilityTraitUpdatesFrequently);
  _statusLabel->setText(LocalizedStrings::languageSelectedStringForKey("NO_FILES"));
  _statusLabel->setFrame({0, 0, width, 100});
  _statusLabel->sizeToFit();
  const CGPoint middle = view()->center();
  _statusLabel->setCenter({middle.x, middle.y - 50});
}

Ref<UITableView> ImportAudioController::tableView() {
  return Ref<UITableView>(dynamic_cast<UITableView*>(view().get()));
}

void ImportAudioController::setItems(std::vector<FileItem> items) {
  setFileItems(std::move(items));
  send(tableView(), &UITableView::reloadData);
}

void ImportAudioController::setSubTitle(std::string subTitle) {
  send(_subTitleLabel, &UILabel::setText, std::move(subTitle));
}

}  // namespace quaverly
