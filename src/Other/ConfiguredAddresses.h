#pragma once

#include <string>

namespace quaverly {

/// The maker's addresses, which whoever ships the bundle writes into its property list "Addresses". One that
/// is not there is empty. Main thread.
class ConfiguredAddresses {
 public:
  ConfiguredAddresses() = delete;

  /// Where support mails go.
  static std::string supportMailbox();
  static std::string donationPage();
  /// The distribution repository's page, and the source that a package manager wants.
  static std::string repositoryPage();
  static std::string packageSource();
  /// The maker's page on the web for those without the application.
  static std::string profilePage();
  /// Where a text is posted on the web; the escaped text follows it.
  static std::string composePage();
};

}  // namespace quaverly
