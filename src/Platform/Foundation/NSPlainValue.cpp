#include "Platform/Foundation/NSPlainValue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <ranges>

namespace quaverly {
namespace {

/// Behind white space, a sign and zeros: Y, y, T, t or a digit.
bool readsAsTrue(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\r"), text.size()));
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != std::string_view::npos;
}

}  // namespace

NSNumber::NSNumber(double value) {
  std::array<char, 32> digits{};
  _digits.assign(digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr);
}

double NSNumber::doubleValue() const {
  double value = 0;
  const auto read = std::from_chars(_digits.data(), _digits.data() + _digits.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  // Too large and too small look the same here; only the latter has a negative exponent.
  if (_digits.find("e-") != std::string::npos || _digits.find("E-") != std::string::npos) return 0;
  return std::copysign(std::numeric_limits<double>::infinity(), _digits.starts_with('-') ? -1.0 : 1.0);
}

NSDictionary::NSDictionary(std::initializer_list<Entry> entries) : _entries(entries) {}

const NSPlainValue& NSDictionary::objectForKey(std::string_view key) const {
  static const NSPlainValue nothing;
  for (const auto& [name, value] : std::views::reverse(_entries)) {
    if (name == key) return value;
  }
  return nothing;
}

void NSDictionary::setObjectForKey(NSPlainValue value, std::string_view key) {
  const auto found = std::ranges::find(_entries.rbegin(), _entries.rend(), key, &Entry::first);
  if (found == _entries.rend()) return append(std::string(key), std::move(value));
  found->second = std::move(value);
}

void NSDictionary::append(std::string key, NSPlainValue value) {
  _entries.emplace_back(std::move(key), std::move(value));
}

bool NSDictionary::operator==(const NSDictionary& other) const {
  return _entries == other._entries;
}

// Not in the header: that every place which makes a value knew all of its kinds would cost more than calls.
NSPlainValue::NSPlainValue() = default;
NSPlainValue::NSPlainValue(const NSPlainValue&) = default;
NSPlainValue::NSPlainValue(NSPlainValue&&) noexcept = default;
NSPlainValue& NSPlainValue::operator=(const NSPlainValue&) = default;
NSPlainValue& NSPlainValue::operator=(NSPlainValue&&) noexcept = default;
NSPlainValue::~NSPlainValue() = default;

// Written out: a value may hold values, and clang does not come to the end of a defaulted one.
bool NSPlainValue::operator==(const NSPlainValue& other) const {
  return _content == other._content;
}

bool NSPlainValue::boolValue() const {
  if (const bool* value = boolean()) return *value;
  if (const auto* value = number()) return value->boolValue();
  if (const auto* text = string()) return readsAsTrue(*text);
  return false;
}

std::string NSPlainValue::stringValue() const {
  if (const bool* value = boolean()) return *value ? "1" : "0";
  if (const auto* value = number()) return value->stringValue();
  if (const auto* text = string()) return *text;
  return {};
}

}  // namespace quaverly
