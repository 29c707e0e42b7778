#pragma once

#include <array>
#include <string>
#include <string_view>

namespace quaverly {

/// How a locale writes numbers and times of day.
struct LocaleWords {
  std::array<std::string, 10> digits;
  std::string decimalSign;
  std::string beforeNoon;
  std::string afterNoon;
  /// Whether dates count in the Gregorian calendar, with one digit for each of ten.
  bool hasGregorianDates;
};

/// The words of a locale by its identifier; an unknown one has those of its language, or of none in
/// particular. Prepared once and kept. Any thread.
const LocaleWords& localeWords(std::string_view identifier);

}  // namespace quaverly
