#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/NSBundle.h"
#include "Platform/Preferences/PSSpecifier.h"
#include "Platform/Preferences/PSTableCell.h"
#include "Platform/Preferences/PSViewController.h"
#include "Platform/UIKit/UITableView.h"

namespace quaverly {

/// A pane: a list of rows in groups, as specifiers describe them. Main thread only.
class PSListController : public PSViewController, public UITableViewDataSource, public UITableViewDelegate {
 public:
  /// Groups, each followed by its rows. Shared, and never changed once it is made.
  using Specifiers = std::shared_ptr<const std::vector<Ref<PSSpecifier>>>;

  /// The bundle that the pane belongs to: where its property lists and their words lie. Set by whoever loads
  /// the pane, before anything is asked of it; null for none.
  void setBundle(Ref<NSBundle> bundle) { _bundle = std::move(bundle); }
  const Ref<NSBundle>& bundle() const { return _bundle; }

  /// What the pane shows. Panes make their own and keep them in `_specifiers`.
  virtual Specifiers specifiers() { return _specifiers; }

  /// What a row of a property list may call: the pane's operation of that name; nothing when it has none.
  virtual std::optional<UITargetAction> actionNamed(std::string_view name);

  /// The rows of the bundle's property list of that name, in the user's language; buttons call the target.
  /// The list's title becomes the pane's when it has none. Rows of unknown kinds, and those that name classes
  /// or operations that are not there, are left out, and the log says so. Without a readable list there are
  /// no rows.
  Specifiers loadSpecifiersFromPlistNameTarget(std::string_view name, PSListController* target);

  void loadView() override;
  size_t numberOfSectionsInTableView(UITableView& table) override;
  size_t tableViewNumberOfRowsInSection(UITableView& table, size_t section) override;
  Ref<UITableViewCell> tableViewCellForRowAtIndexPath(UITableView& table, NSIndexPath path) override;
  std::optional<std::string> tableViewTitleForHeaderInSection(UITableView& table, size_t section) override;
  std::optional<std::string> tableViewTitleForFooterInSection(UITableView& table, size_t section) override;
  std::optional<double> tableViewHeightForRowAtIndexPath(UITableView& table, NSIndexPath path) override;
  void tableViewDidSelectRowAtIndexPath(UITableView& table, NSIndexPath path) override;

 protected:
  Specifiers _specifiers;

 private:
  struct Section {
    Ref<PSSpecifier> group;  // null for rows before the first group
    std::vector<Ref<PSSpecifier>> rows;
  };

  const std::vector<Section>& sections();
  const Ref<PSSpecifier>& specifierAt(NSIndexPath path) { return sections()[path.section].rows[path.row]; }
  const Ref<PSTableCell>& cellOf(const Ref<PSSpecifier>& specifier);
  void openLink(const PSSpecifier& link);

  Ref<NSBundle> _bundle;
  std::optional<std::vector<Section>> _sections;
  // A row keeps its cell, which knows what a person switched; its target may not.
  std::map<const PSSpecifier*, Ref<PSTableCell>> _cells;
};

}  // namespace quaverly
