#pragma once

#include <string>
#include <string_view>

namespace quaverly {

/// The words of the bundle's screens, by upper-case key. Holds nothing and never fails. Any thread.
class LocalizedStrings {
 public:
  LocalizedStrings() = delete;

  /// The text in the user's first language, taken exactly as it is named ("de-AT" finds no "de"); else in
  /// English; else the key. A text that equals its key counts as none.
  static std::string languageSelectedStringForKey(std::string_view key);

  /// The English text, else the key.
  static std::string englishStringForKey(std::string_view key);
};

}  // namespace quaverly
