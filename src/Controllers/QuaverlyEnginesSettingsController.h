#pragma once

#include "Platform/Preferences/PSListController.h"

namespace quaverly {

/// The pane that shows the add-on's engines and switches them on and off. Each is described by one file in
/// the bundle's folder of engines. Main thread only.
class QuaverlyEnginesSettingsController : public PSListController {
 public:
  /// Made once. Files that are added, removed or changed afterwards show in another pane.
  Specifiers specifiers() override;

  /// The engines as their files are now: a group and four rows each, in the folder's order.
  Specifiers loadSpecifiers();

  /// What a row shows: what its file said when the rows were made.
  NSPlainValue customForSpec(PSSpecifier& specifier);

  /// Writes the new value into the engine's file, keeps all else in it, and tells the add-on. A file that
  /// cannot be read stays as it is; the add-on is told in any case.
  void setCustomForSpec(const NSPlainValue& value, PSSpecifier& specifier);

 private:
  Ref<PSSpecifier> rowNamed(std::string_view key, NSPlainValue value);
  Ref<PSSpecifier> switchNamed(std::string_view key, NSPlainValue value, const std::string& path);
};

}  // namespace quaverly
