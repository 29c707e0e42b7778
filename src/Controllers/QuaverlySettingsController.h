#pragma once

#include <string>

#include "Platform/Preferences/PSListController.h"

namespace quaverly {

/// The first pane that the Settings application shows for the add-on. Main thread only.
class QuaverlySettingsController : public PSListController {
 public:
  QuaverlySettingsController* init() override;

  /// Those of the property list "QuaverlySettings", loaded once.
  Specifiers specifiers() override;
  std::optional<UITargetAction> actionNamed(std::string_view name) override;

  /// Opens a sheet with `shareText`.
  void shareTwitter();
  /// Opens the maker's page in the application, or on the web for those without it.
  void followTwitter();
  void donate();
  void visitQir();
  /// Opens a support mail; nothing happens where no mail can be sent.
  void showMailDialog();

  /// What is shared: praise, and the address of the repository's packages; at most 140 characters.
  static std::string shareText(const std::string& packageSource);
};

}  // namespace quaverly
