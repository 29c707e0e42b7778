#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

class StringTable;

/// A folder with resources, or a framework of the device. The platform keeps the bundles it has opened. Any
/// thread, but for loading.
class NSBundle : public NSObject {
 public:
  /// The bundle at a device path; nothing when there is neither a folder nor a framework.
  static Ref<NSBundle> bundleWithPath(std::string_view path);

  /// Only for `bundleWithPath`, which knows the bundles that are open already.
  explicit NSBundle(std::string path);
  ~NSBundle() override;

  const std::string& bundlePath() const { return _path; }

  /// Loads the framework at the bundle's path, so that its classes can be looked up. Each load that succeeded
  /// wants an unload; the last one takes the classes away. Main thread only.
  bool load();
  bool unload();
  bool isLoaded() const;

  /// The path of the resource "name.type" in the bundle; nothing when there is none.
  std::optional<std::string> pathForResourceOfType(std::string_view name, std::string_view type) const;

  /// The text of `key` in a string table of the bundle, "Localizable" when none is named. A key that is in no
  /// table yields `value`, or itself when that is absent or empty.
  std::string localizedStringForKeyValueTable(std::string_view key, std::optional<std::string_view> value,
                                              std::optional<std::string_view> table) const;

 private:
  std::shared_ptr<const StringTable> tableNamed(const std::string& name) const;

  std::string _path;
  mutable std::mutex _mutex;
  mutable std::map<std::string, std::shared_ptr<const StringTable>> _tables;  // those that could be read
};

}  // namespace quaverly
