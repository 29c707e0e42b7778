#include "Platform/Foundation/Formatting/DateFormat.h"

#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <array>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "Platform/Foundation/Formatting/LocaleWords.h"

namespace quaverly {
namespace {

using std::chrono::local_seconds;

/// Every pattern in every calendar.
class ICUDateFormat : public DateFormat {
 public:
  ICUDateFormat(const std::string& pattern, const std::string& locale)
      : _format(icu::UnicodeString::fromUTF8(pattern), icu::Locale(locale.c_str()), _status) {
    _format.adoptTimeZone(icu::TimeZone::getGMT()->clone());  // dates come as local time already
  }

  std::string string(local_seconds date) const override {
    icu::UnicodeString text;
    {
      const std::lock_guard lock(_mutex);
      _format.format(static_cast<UDate>(date.time_since_epoch().count()) * U_MILLIS_PER_SECOND, text);
    }
    std::string bytes;
    return text.toUTF8String(bytes);
  }

 private:
  UErrorCode _status = U_ZERO_ERROR;
  icu::SimpleDateFormat _format;
  mutable std::mutex _mutex;
};

enum class Field { literal, day, month, year, hour, minute, timeOfDay };

struct Piece {
  Field field;
  std::string literal;
};

/// The field that a run of equal letters stands for; nothing for the many that listings do not use.
std::optional<Field> fieldOf(std::string_view letters) {
  if (letters == "dd") return Field::day;
  if (letters == "MM") return Field::month;
  if (letters == "yyyy") return Field::year;
  if (letters == "h") return Field::hour;
  if (letters == "mm") return Field::minute;
  if (letters == "a") return Field::timeOfDay;
  return std::nullopt;
}

bool isPatternSyntax(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '\'';
}

std::optional<std::vector<Piece>> piecesOf(std::string_view pattern) {
  std::vector<Piece> pieces;
  while (!pattern.empty()) {
    const auto run = pattern.substr(0, pattern.find_first_not_of(pattern[0]));
    pattern.remove_prefix(run.size());
    if (!isPatternSyntax(run[0])) {
      pieces.push_back({Field::literal, std::string(run)});
    } else if (const auto field = fieldOf(run)) {
      pieces.push_back({*field, {}});
    } else {
      return std::nullopt;
    }
  }
  return pieces;
}

/// The common fields in the Gregorian calendar.
class GregorianDateFormat : public DateFormat {
 public:
  GregorianDateFormat(std::vector<Piece> pieces, const LocaleWords& words,
                      std::unique_ptr<const DateFormat> otherwise)
      : _pieces(std::move(pieces)),
        _words(words),
        _twoDigits(numbersOfTwo(words.digits)),
        _otherwise(std::move(otherwise)) {}

  std::string string(local_seconds date) const override {
    const auto day = std::chrono::floor<std::chrono::days>(date);
    if (day < firstDay || day > lastDay) return _otherwise->string(date);
    const std::chrono::year_month_day calendar(day);
    const std::chrono::hh_mm_ss time(date - day);
    thread_local std::string text;  // grows once; what is returned is no larger than it must be
    text.clear();
    for (const auto& piece : _pieces) append(text, piece, calendar, time);
    return text;
  }

 private:
  using Time = std::chrono::hh_mm_ss<std::chrono::seconds>;

  // Before them the calendar was another one, after them years have more than four digits.
  static constexpr std::chrono::local_days firstDay{std::chrono::year(1583) / 1 / 1};
  static constexpr std::chrono::local_days lastDay{std::chrono::year(9999) / 12 / 31};

  void append(std::string& text, const Piece& piece, const std::chrono::year_month_day& calendar,
              const Time& time) const {
    switch (piece.field) {
      case Field::literal:
        text += piece.literal;
        break;
      case Field::day:
        appendTwoDigits(text, static_cast<unsigned>(calendar.day()));
        break;
      case Field::month:
        appendTwoDigits(text, static_cast<unsigned>(calendar.month()));
        break;
      case Field::year:
        appendYear(text, static_cast<unsigned>(static_cast<int>(calendar.year())));
        break;
      case Field::hour:
        appendHour(text, std::chrono::make12(time.hours()));
        break;
      case Field::minute:
        appendTwoDigits(text, static_cast<unsigned>(time.minutes().count()));
        break;
      case Field::timeOfDay:
        text += std::chrono::is_am(time.hours()) ? _words.beforeNoon : _words.afterNoon;
        break;
    }
  }

  void appendTwoDigits(std::string& text, size_t number) const { text += _twoDigits[number]; }

  void appendYear(std::string& text, size_t year) const {
    appendTwoDigits(text, year / 100);
    appendTwoDigits(text, year % 100);
  }

  void appendHour(std::string& text, std::chrono::hours hour) const {
    const auto number = static_cast<size_t>(hour.count());
    text += number < 10 ? _words.digits[number] : _twoDigits[number];
  }

  static std::array<std::string, 100> numbersOfTwo(const std::array<std::string, 10>& digits) {
    std::array<std::string, 100> numbers;
    for (size_t number = 0; number < numbers.size(); ++number)
      numbers[number] = digits[number / 10] + digits[number % 10];
    return numbers;
  }

  std::vector<Piece> _pieces;
  const LocaleWords& _words;
  std::array<std::string, 100> _twoDigits;
  std::unique_ptr<const DateFormat> _otherwise;
};

}  // namespace

std::unique_ptr<const DateFormat> DateFormat::prepare(const std::string& pattern, const std::string& locale) {
  auto everything = std::make_unique<const ICUDateFormat>(pattern, locale);
  const auto& words = localeWords(locale);
  auto pieces = piecesOf(pattern);
  if (!pieces || !words.hasGregorianDates) return everything;
  return std::make_unique<GregorianDateFormat>(std::move(*pieces), words, std::move(everything));
}

}  // namespace quaverly
