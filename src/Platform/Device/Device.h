#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Device/Clock.h"
#include "Platform/Device/MountTable.h"

namespace quaverly {

/// All that a host or a test may choose about the device. Nothing else under Platform/ reads the environment.
///
/// Filled once, before the bundle runs, and then only read, on any thread; the mounts may change at any time.
struct Device {
  MountTable mounts;

  /// Never null once the device runs.
  std::shared_ptr<Clock> clock;

  /// The locale as an ICU identifier, for example "de_DE".
  std::string localeIdentifier = "en_US";
  /// The time zone as a name of the system's zone database, for example "Europe/Berlin".
  std::string timeZoneName = "UTC";
  /// Language identifiers as the names of string table folders, the most wanted first.
  std::vector<std::string> preferredLanguages = {"en"};
  /// The platform's own words, such as "Cancel", in the user's language; they stay English without it.
  std::function<std::string(std::string_view)> systemWords;
  std::string systemVersion = "8.4";
  /// What `uname` says of the machine, for example "x86_64".
  std::string machine;
  /// What tells this device from others, made for this application; empty when there is nothing to tell.
  std::string uniqueIdentifier;
  /// Where programs of the user's session send messages to each other, as a D-Bus address; empty for nowhere.
  std::string messageBusAddress;
  /// Uniformly random 32-bit numbers.
  std::function<uint32_t()> random = [] { return 0U; };

  /// The host's files for the fonts by their names, to measure text with; "Arial" serves for all others.
  std::map<std::string, std::string, std::less<>> fontFiles;

  /// Classes and framework paths that this device lacks.
  std::set<std::string, std::less<>> absentClasses;
  std::set<std::string, std::less<>> absentFrameworks;

  /// The device that the platform runs on.
  static Device& current();
};

}  // namespace quaverly
