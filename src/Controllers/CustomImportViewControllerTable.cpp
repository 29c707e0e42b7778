#include "Controllers/CustomImportViewController.h"
#include "Cores/CachesCore.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIButton.h"

namespace quaverly {
namespace {

constexpr double headerHeight = 199;
constexpr double contentBottom = 64;
/// Hides the header's top under the bar, which takes less room in landscape.
constexpr double landscapeContentTop = -35;
constexpr int backdropBlur = 12;
constexpr auto borderColor = UIColor::colorWithRedGreenBlueAlpha(0.9098, 0.9098, 0.9098, 0.5);
constexpr double borderWidth = 0.8;
constexpr auto lightGray = UIColor::colorWithRedGreenBlueAlpha(0.7843, 0.7843, 0.7843, 1.0);
constexpr unsigned flexibleSize = UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight;

struct FieldLook {
  CGRect frame;
  double fontSize;
  UIColor color;
  const char* name;
};

Ref<UITextField> makeField(const FieldLook& look) {
  auto field = make<UITextField>(look.frame);
  field->setFont(UIFont::fontWithNameSize("Arial", look.fontSize));
  field->setTextColor(look.color);
  field->setTextAlignment(NSTextAlignment::Left);
  field->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleBottomMargin);
  field->layer()->setBorderColor(borderColor);
  field->layer()->setBorderWidth(borderWidth);
  field->setAccessibilityLabel(look.name);
  return field;
}

Ref<UIView> makeDimming(double width, double height) {
  auto dimming = make<UIView>(CGRect{0, 0, width, height});
  dimming->setBackgroundColor(UIColor::colorWithRedGreenBlueAlpha(0, 0, 0, 0.2));
  dimming->setAutoresizingMask(flexibleSize);
  return dimming;
}

}  // namespace

size_t CustomImportViewController::numberOfSectionsInTableView(UITableView&) {
  return 1;
}

size_t CustomImportViewController::tableViewNumberOfRowsInSection(UITableView&, size_t) {
  return 1;
}

std::optional<double> CustomImportViewController::tableViewHeightForHeaderInSection(UITableView&, size_t) {
  return headerHeight;
}

Ref<UITableViewCell> CustomImportViewController::tableViewCellForRowAtIndexPath(UITableView& table,
                                                                                NSIndexPath path) {
  if (_currentCell) return _currentCell;
  const auto cell = table.dequeueReusableCellWithIdentifierForIndexPath(cellIdentifier, path);
  _currentCell = Ref<iTunesSongOfAlbumCellEditable>(dynamic_cast<iTunesSongOfAlbumCellEditable*>(cell.get()));
  if (!_currentCell) return nullptr;
  _currentCell->titleLabel()->setText(_currentSongItem.title());
  _currentCell->indexLabel()->setText(_currentSongItem.indexInCollection());
  return _currentCell;
}

void CustomImportViewController::scrollViewDidScroll(UIScrollView& table) {
  if (table.contentOffset().y <= 0) table.setContentOffset({table.contentOffset().x, 0});
}

Ref<UIView> CustomImportViewController::tableViewViewForHeaderInSection(UITableView& table, size_t section) {
  table.setContentOffsetAnimated({0, 0}, UIAnimated::No);
  makeRoomAroundContent(table);
  const double width = table.frame().width;
  const double height = tableViewHeightForHeaderInSection(table, section).value_or(0);
  makeHeaderView(width, height);
  makeArtworkView();
  makeHeaderFields(width);
  const auto dimming = makeDimming(width, height);
  for (const Ref<UIView>& view :
       {dimming, Ref<UIView>(_imgView), Ref<UIView>(_albumLabelHeader), Ref<UIView>(_artistLabelHeader),
        Ref<UIView>(_genreLabelHeader), Ref<UIView>(_yearLabelHeader)})
    _headerView->addSubview(view);
  loadArtwork();
  fillHeaderFields();
  return _headerView;
}

void CustomImportViewController::makeRoomAroundContent(UITableView& table) const {
  const bool upright =
      UIInterfaceOrientationIsPortrait(UIApplication::sharedApplication().statusBarOrientation());
  table.setContentInset({upright ? 0 : landscapeContentTop, 0, contentBottom, 0});
}

void CustomImportViewController::makeHeaderView(double width, double height) {
  _headerView = make<UIImageView>(CGRect{0, 0, width, height});
  _headerView->setAutoresizingMask(flexibleSize);
  _headerView->setBackgroundColor(UIColor::colorWithRedGreenBlueAlpha(0.2667, 0.2667, 0.2667, 1.0));
  _headerView->setClipsToBounds(true);
  _headerView->setContentMode(UIViewContentMode::ScaleAspectFill);
  // The camera button inside it is to be touched.
  _headerView->setUserInteractionEnabled(true);
}

void CustomImportViewController::makeArtworkView() {
  _imgView = make<UIImageView>(CGRect{12, 79, 100, 100});
  _imgView->setBackgroundColor(UIColor::colorWithRedGreenBlueAlpha(0.3451, 0.3451, 0.3451, 1.0));
  _imgView->setAutoresizingMask(UIViewAutoresizingFlexibleBottomMargin);
  _imgView->setUserInteractionEnabled(true);

  const auto camera = UIButton::buttonWithType(UIButtonType::Custom);
  camera->setImage(CachesCore::cachedImageWithContentsOfFileName("camera_icon"));
  camera->addTargetActionForControlEvents({this, &CustomImportViewController::selectPhoto},
                                          UIControlEvents::TouchUpInside);
  camera->setFrame({_imgView->frame().width * 0.5 - 20, _imgView->frame().height - 50, 40, 40});
  camera->setClipsToBounds(true);
  camera->layer()->setCornerRadius(20);
  camera->layer()->setBackgroundColor(lightGray);
  camera->setAccessibilityLabel("Choose cover");
  _imgView->addSubview(camera);
}

void CustomImportViewController::makeHeaderFields(double width) {
  const double fieldWidth = width - 135;
  _albumLabelHeader = makeField({{125, 84, fieldWidth, 30}, 20, UIColor::whiteColor(), "Album"});
  _artistLabelHeader = makeField({{125, 115, fieldWidth, 20}, 13, UIColor::whiteColor(), "Artist"});
  _genreLabelHeader = makeField({{125, 136, fieldWidth, 20}, 12, lightGray, "Genre"});
  _yearLabelHeader = makeField({{125, 157, fieldWidth, 20}, 12, lightGray, "Year"});
  _yearLabelHeader->setKeyboardType(UIKeyboardType::NumberPad);
}

void CustomImportViewController::fillHeaderFields() {
  _artistLabelHeader->setText(_currentSongItem.artist());
  _albumLabelHeader->setText(_currentSongItem.album());
  _genreLabelHeader->setText(_currentSongItem.genre());
  _yearLabelHeader->setText(_currentSongItem.releaseYear());
}

/// Shows the cover twice: sharp in its square, and blurred behind the header.
void CustomImportViewController::loadArtwork() {
  const auto artwork = shownArtwork();
  if (!artwork) return;
  CachesCore::setImageViewWithContentOfUrl(_imgView, *artwork);
  CachesCore::setImageViewWithContentOfUrlWithBlur(_headerView, *artwork, backdropBlur);
}

/// A single character is no URL.
std::optional<std::string> CustomImportViewController::shownArtwork() const {
  const auto& artwork = _currentSongItem.artworkMedium();
  return artwork && NSStringLength(*artwork) >= 2 ? artwork : std::nullopt;
}

}  // namespace quaverly
