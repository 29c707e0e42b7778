#include "Platform/Foundation/NSByteCountFormatter.h"

#include "Platform/Device/Device.h"
#include "Platform/Foundation/Formatting/LocaleWords.h"

namespace quaverly {
namespace {

struct Unit {
  const char* name;
  uint64_t bytes;
  unsigned decimals;
};

constexpr Unit units[] = {
    {"KB", 1'000, 0},
    {"MB", 1'000'000, 1},
    {"GB", 1'000'000'000, 2},
    {"TB", 1'000'000'000'000, 2},
    {"PB", 1'000'000'000'000'000, 2},
    {"EB", 1'000'000'000'000'000'000, 2},
};

constexpr uint64_t powerOfTen(unsigned exponent) {
  return exponent == 0 ? 1 : 10 * powerOfTen(exponent - 1);
}

uint64_t dividedHalfToEven(uint64_t number, uint64_t divisor) {
  const uint64_t quotient = number / divisor;
  const uint64_t remainder = number % divisor;
  const uint64_t rest = divisor - remainder;
  const bool up = remainder > rest || (remainder == rest && quotient % 2 == 1);
  return quotient + (up ? 1 : 0);
}

/// How many of the unit's smallest shown part `byteCount` is: tenths of megabytes, for example.
uint64_t inParts(uint64_t byteCount, const Unit& unit) {
  return dividedHalfToEven(byteCount, unit.bytes / powerOfTen(unit.decimals));
}

/// The first unit of which there are less than a thousand.
const Unit& unitFor(uint64_t byteCount) {
  for (const auto& unit : units)
    if (inParts(byteCount, unit) < 1000 * powerOfTen(unit.decimals)) return unit;
  return *std::rbegin(units);
}

std::string inWords(uint64_t parts, unsigned decimals, const LocaleWords& words) {
  while (decimals > 0 && parts % 10 == 0) {
    parts /= 10;
    --decimals;
  }
  std::string text;
  const std::string digits = std::to_string(parts);
  for (size_t at = 0; at < digits.size(); ++at) {
    if (at > 0 && digits.size() - at == decimals) text += words.decimalSign;
    text += words.digits[static_cast<size_t>(digits[at] - '0')];
  }
  return text;
}

}  // namespace

std::string NSByteCountFormatter::stringFromByteCountCountStyle(uint64_t byteCount,
                                                                NSByteCountFormatterCountStyle) {
  const auto& words = localeWords(Device::current().localeIdentifier);
  if (byteCount == 0) return "Zero KB";
  if (byteCount < 1000) return inWords(byteCount, 0, words) + (byteCount == 1 ? " byte" : " bytes");
  const Unit& unit = unitFor(byteCount);
  return inWords(inParts(byteCount, unit), unit.decimals, words) + " " + unit.name;
}

}  // namespace quaverly
