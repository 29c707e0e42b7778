#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quaverly {

class NSPlainValue;
using NSArray = std::vector<NSPlainValue>;

/// A number of a property list or of JSON text. It keeps the digits that it was written with, so that what is
/// read and written again is the same number, however long it is.
class NSNumber {
 public:
  /// `digits` must be a JSON number.
  explicit NSNumber(std::string digits) : _digits(std::move(digits)) {}
  explicit NSNumber(double value);

  const std::string& stringValue() const { return _digits; }
  /// Infinite when it is too large for a double.
  double doubleValue() const;
  bool boolValue() const { return doubleValue() != 0; }
  bool operator==(const NSNumber&) const = default;

 private:
  std::string _digits;
};

/// Values by key, in the order in which they were added.
class NSDictionary {
 public:
  using Entry = std::pair<std::string, NSPlainValue>;

  NSDictionary() = default;
  NSDictionary(std::initializer_list<Entry> entries);

  /// The value of a key, the last one when a text has the key twice; a null value when it is not there.
  const NSPlainValue& objectForKey(std::string_view key) const;
  /// Replaces the value where it stands, or adds it behind the others.
  void setObjectForKey(NSPlainValue value, std::string_view key);
  /// Adds a value behind the others, whether or not the key is there already.
  void append(std::string key, NSPlainValue value);

  const std::vector<Entry>& entries() const { return _entries; }
  bool operator==(const NSDictionary& other) const;

 private:
  std::vector<Entry> _entries;
};

/// Whatever a property list or JSON text may hold: nothing, a truth value, a number, a text, an array or a
/// dictionary.
class NSPlainValue {
 public:
  NSPlainValue();
  NSPlainValue(const NSPlainValue&);
  NSPlainValue(NSPlainValue&&) noexcept;
  NSPlainValue& operator=(const NSPlainValue&);
  NSPlainValue& operator=(NSPlainValue&&) noexcept;
  ~NSPlainValue();
  NSPlainValue(bool value) : _content(value) {}
  NSPlainValue(NSNumber number) : _content(std::move(number)) {}
  NSPlainValue(std::string text) : _content(std::move(text)) {}
  NSPlainValue(const char* text) : _content(std::string(text)) {}
  NSPlainValue(NSArray array) : _content(std::move(array)) {}
  NSPlainValue(NSDictionary dictionary) : _content(std::move(dictionary)) {}

  bool isNull() const { return std::holds_alternative<std::monostate>(_content); }
  /// The content as one kind; null when it is another.
  const bool* boolean() const { return std::get_if<bool>(&_content); }
  const NSNumber* number() const { return std::get_if<NSNumber>(&_content); }
  const std::string* string() const { return std::get_if<std::string>(&_content); }
  const NSArray* array() const { return std::get_if<NSArray>(&_content); }
  NSArray* array() { return std::get_if<NSArray>(&_content); }
  const NSDictionary* dictionary() const { return std::get_if<NSDictionary>(&_content); }
  NSDictionary* dictionary() { return std::get_if<NSDictionary>(&_content); }

  /// A truth value, a number other than 0, or a text that begins as the platform's true ones do ("YES",
  /// "true", "1").
  bool boolValue() const;
  /// As a row shows it: a text, a number's digits, 1 or 0; empty for anything else.
  std::string stringValue() const;
  bool operator==(const NSPlainValue& other) const;

 private:
  std::variant<std::monostate, bool, NSNumber, std::string, NSArray, NSDictionary> _content;
};

}  // namespace quaverly
