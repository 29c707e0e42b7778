#include "Platform/Foundation/Formatting/LocaleWords.h"

#include <unicode/calendar.h>
#include <unicode/dcfmtsym.h>
#include <unicode/dtfmtsym.h>
#include <unicode/numsys.h>

#include <memory>
#include <string_view>

#include "Platform/Foundation/Formatting/PreparedOnce.h"

namespace quaverly {
namespace {

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  text.toUTF8String(bytes);
  return bytes;
}

bool countsInGregorianDates(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
  const std::unique_ptr<icu::NumberingSystem> numbers(icu::NumberingSystem::createInstance(locale, status));
  return U_SUCCESS(status) && std::string_view(calendar->getType()) == "gregorian" &&
         !numbers->isAlgorithmic();
}

void readNumbers(const icu::Locale& locale, LocaleWords& words) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DecimalFormatSymbols symbols(locale, status);
  for (int digit = 0; digit < 10; ++digit)
    words.digits[static_cast<size_t>(digit)] = utf8(symbols.getConstDigitSymbol(digit));
  words.decimalSign = utf8(symbols.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol));
}

void readTimesOfDay(const icu::Locale& locale, LocaleWords& words) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DateFormatSymbols symbols(locale, status);
  int32_t count = 0;
  const auto* names = symbols.getAmPmStrings(count);
  if (count != 2) return;
  words.beforeNoon = utf8(names[0]);
  words.afterNoon = utf8(names[1]);
}

struct PreparedWords {
  explicit PreparedWords(std::string_view name) : identifier(name) {
    const icu::Locale locale(identifier.c_str());
    readNumbers(locale, words);
    readTimesOfDay(locale, words);
    words.hasGregorianDates = countsInGregorianDates(locale);
  }
  std::string_view key() const { return identifier; }

  std::string identifier;
  LocaleWords words;
};

}  // namespace

const LocaleWords& localeWords(std::string_view identifier) {
  static PreparedOnce<PreparedWords, std::string_view> known;
  return known.get(identifier).words;
}

}  // namespace quaverly
