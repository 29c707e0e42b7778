#include "Controllers/QuaverlySettingsController.h"

#include <array>
#include <utility>

#include "Controllers/ContactMeViewController.h"
#include "Cores/CachesCore.h"
#include "Other/ConfiguredAddresses.h"
#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/Social/SLComposeViewController.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIImageView.h"

namespace quaverly {
namespace {

const NSClassOf<QuaverlySettingsController> settingsClass("QuaverlySettingsController", "");

constexpr size_t longestShareText = 140;

void present(const Ref<UIViewController>& controller) {
  const auto* window = UIApplication::sharedApplication().keyWindow();
  const Ref<UIViewController> root = window ? window->rootViewController() : nullptr;
  if (root) root->presentViewControllerAnimatedCompletion(controller, UIAnimated::Yes);
}

void openPage(const std::string& address) {
  if (const auto url = NSURL::URLWithString(address)) UIApplication::sharedApplication().openURL(*url);
}

}  // namespace

QuaverlySettingsController* QuaverlySettingsController::init() {
  if (!PSListController::init()) return nullptr;
  const auto heart = make<UIBarButtonItem>(CachesCore::cachedImageWithContentsOfFileName("heart_icon"),
                                           UIBarButtonItemStyle::Plain,
                                           UITargetAction(this, &QuaverlySettingsController::shareTwitter));
  heart->setAccessibilityLabel("Share");
  navigationItem()->setRightBarButtonItem(heart);
  navigationItem()->setTitleView(
      make<UIImageView>(CachesCore::cachedImageWithContentsOfFileName("tolmarin_icon")));
  return this;
}

QuaverlySettingsController::Specifiers QuaverlySettingsController::specifiers() {
  if (!_specifiers) _specifiers = loadSpecifiersFromPlistNameTarget("QuaverlySettings", this);
  return _specifiers;
}

std::optional<UITargetAction> QuaverlySettingsController::actionNamed(std::string_view name) {
  using Action = void (QuaverlySettingsController::*)();
  constexpr std::array<std::pair<std::string_view, Action>, 5> actions = {{
      {"shareTwitter", &QuaverlySettingsController::shareTwitter},
      {"followTwitter", &QuaverlySettingsController::followTwitter},
      {"donate", &QuaverlySettingsController::donate},
      {"visitQir", &QuaverlySettingsController::visitQir},
      {"showMailDialog", &QuaverlySettingsController::showMailDialog},
  }};
  for (const auto& [known, action] : actions) {
    if (known == name) return UITargetAction(this, action);
  }
  return std::nullopt;
}

void QuaverlySettingsController::shareTwitter() {
  const auto composer = SLComposeViewController::composeViewControllerForServiceType(SLServiceTypeTwitter);
  composer->setInitialText(shareText(ConfiguredAddresses::packageSource()));
  present(composer);
}

std::string QuaverlySettingsController::shareText(const std::string& packageSource) {
  const std::string text =
      "#Quaverly by @Tolmarin is the best way to download music directly from your iDevice!\n" +
      packageSource;
  return NSStringLength(text) > longestShareText ? NSStringSubstringToIndex(text, longestShareText) : text;
}

void QuaverlySettingsController::followTwitter() {
  const auto application = NSURL::URLWithString("twitter:///user?screen_name=Tolmarin");
  if (application && UIApplication::sharedApplication().canOpenURL(*application)) {
    return UIApplication::sharedApplication().openURL(*application);
  }
  openPage(ConfiguredAddresses::profilePage());
}

void QuaverlySettingsController::donate() {
  openPage(ConfiguredAddresses::donationPage());
}

void QuaverlySettingsController::visitQir() {
  openPage(ConfiguredAddresses::repositoryPage());
}

void QuaverlySettingsController::showMailDialog() {
  if (!ContactMeViewController::canSendMail()) return;
  const auto made = make<ContactMeViewController>();
  const Ref<UIViewController> mail(made->init());
  if (mail) present(mail);
}

}  // namespace quaverly
