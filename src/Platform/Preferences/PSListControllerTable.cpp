#include "Platform/Foundation/NSClass.h"
#include "Platform/Preferences/PSListController.h"
#include "Platform/UIKit/UINavigationController.h"
#include "Platform/UIKit/UIScreen.h"

// A pane as a table.
namespace quaverly {
namespace {

Ref<PSTableCell> makeCell(const Ref<PSSpecifier>& specifier) {
  const auto* name = specifier->propertyForKey("cellClass").string();
  const auto cell = name ? allocKindFromString<PSTableCell>(*name) : make<PSTableCell>();
  return Ref<PSTableCell>(cell ? cell->initWithSpecifier(specifier) : nullptr);
}

/// The bundle's icon of a name, in its largest form.
Ref<UIImage> iconNamed(const NSBundle& bundle, const std::string& name) {
  for (const char* form : {"@3x", "@2x", ""}) {
    const auto path = bundle.pathForResourceOfType("images/" + name + form, "png");
    if (path) return UIImage::imageWithContentsOfFile(*path);
  }
  return nullptr;
}

std::optional<std::string> presence(std::string text) {
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

}  // namespace

void PSListController::loadView() {
  const auto table = make<UITableView>(UIScreen::mainScreen().bounds(), UITableViewStyle::Grouped);
  table->setDataSource(this);
  table->setDelegate(this);
  setView(table);
}

const std::vector<PSListController::Section>& PSListController::sections() {
  if (_sections) return *_sections;
  _sections.emplace();
  const auto all = specifiers();
  if (!all) return *_sections;
  for (const auto& specifier : *all) {
    const bool isGroup = specifier->cellType() == PSCellType::group;
    if (isGroup || _sections->empty()) _sections->push_back({isGroup ? specifier : nullptr, {}});
    if (!isGroup && cellOf(specifier)) _sections->back().rows.push_back(specifier);
  }
  return *_sections;
}

const Ref<PSTableCell>& PSListController::cellOf(const Ref<PSSpecifier>& specifier) {
  const auto [found, isNew] = _cells.try_emplace(specifier.get());
  if (!isNew) return found->second;
  auto& cell = found->second = makeCell(specifier);
  const auto* icon = specifier->propertyForKey("icon").string();
  if (cell && icon && _bundle) cell->imageView()->setImage(iconNamed(*_bundle, *icon));
  return cell;
}

size_t PSListController::numberOfSectionsInTableView(UITableView&) {
  return sections().size();
}

size_t PSListController::tableViewNumberOfRowsInSection(UITableView&, size_t section) {
  return sections()[section].rows.size();
}

Ref<UITableViewCell> PSListController::tableViewCellForRowAtIndexPath(UITableView&, NSIndexPath path) {
  return cellOf(specifierAt(path));
}

std::optional<std::string> PSListController::tableViewTitleForHeaderInSection(UITableView&, size_t section) {
  const auto& group = sections()[section].group;
  return group ? presence(group->name()) : std::nullopt;
}

std::optional<std::string> PSListController::tableViewTitleForFooterInSection(UITableView&, size_t section) {
  const auto& group = sections()[section].group;
  return group ? presence(group->propertyForKey("footerText").stringValue()) : std::nullopt;
}

std::optional<double> PSListController::tableViewHeightForRowAtIndexPath(UITableView& table,
                                                                         NSIndexPath path) {
  const auto height = cellOf(specifierAt(path))->preferredHeightForWidth(table.bounds().width);
  // Something for each row, or the table would not ask for the others.
  return height.value_or(table.rowHeight());
}

void PSListController::tableViewDidSelectRowAtIndexPath(UITableView& table, NSIndexPath path) {
  const Ref<PSSpecifier> specifier = specifierAt(path);
  table.deselectRowAtIndexPathAnimated(path, UIAnimated::Yes);
  if (specifier->buttonAction()) return specifier->buttonAction()->send();
  if (specifier->cellType() == PSCellType::link) openLink(*specifier);
}

void PSListController::openLink(const PSSpecifier& link) {
  const auto made = allocKindFromString<UIViewController>(link.propertyForKey("detail").stringValue());
  if (auto* pane = dynamic_cast<PSListController*>(made.get())) pane->setBundle(_bundle);
  const Ref<UIViewController> detail(made ? made->init() : nullptr);
  if (!detail || !navigationController()) return;
  if (!detail->title()) detail->setTitle(link.name());
  navigationController()->pushViewControllerAnimated(detail, UIAnimated::Yes);
}

}  // namespace quaverly
