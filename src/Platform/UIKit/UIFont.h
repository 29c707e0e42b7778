#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quaverly {

/// A font by name and size. A value.
///
/// Which file a name stands for is the device's to say (`Device::fontFiles`); a name that it does not know is
/// measured and drawn like "Arial". Measures are in points and are not rounded. Main thread, but for the name
/// and the size.
class UIFont {
 public:
  static UIFont fontWithNameSize(std::string_view name, double size) {
    return UIFont(std::string(name), size);
  }

  const std::string& fontName() const { return _fontName; }
  double pointSize() const { return _pointSize; }

  /// From the baseline up to the top of the highest letters.
  double ascender() const;
  /// From the baseline down to the bottom of the lowest letters; negative.
  double descender() const;
  /// The gap between two lines.
  double leading() const;
  /// From one baseline to the next: what the font's file says of ascender, descender and gap together, which
  /// is also what a browser takes for a line's normal height.
  double lineHeight() const;

  /// The host path of the file that a name is measured with, and that whoever draws it should use; nothing on
  /// a device without fonts. There each character is taken for one em, and a line for one em as well.
  static std::optional<std::string> fileForName(std::string_view name);

  bool operator==(const UIFont&) const = default;

 private:
  UIFont(std::string name, double size) : _fontName(std::move(name)), _pointSize(size) {}

  std::string _fontName;
  double _pointSize;
};

}  // namespace quaverly
