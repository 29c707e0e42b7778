#include "Platform/Foundation/NSJSONSerialization.h"

#include <nlohmann/json.hpp>

#include "Platform/Foundation/JSONNumbers.h"

namespace quaverly {
namespace {

/// Builds values as the parser tells of them. Answering false stops the parser.
class Builder {
 public:
  /// `numbers` are those that the parser will tell of, as they were written.
  explicit Builder(const std::vector<std::string>& numbers) : _numbers(numbers) {}

  using number_integer_t = nlohmann::json::number_integer_t;
  using number_unsigned_t = nlohmann::json::number_unsigned_t;
  using number_float_t = nlohmann::json::number_float_t;
  using string_t = nlohmann::json::string_t;
  using binary_t = nlohmann::json::binary_t;

  bool null() { return add({}); }
  bool boolean(bool value) { return add(value); }
  bool number_integer(number_integer_t) { return addNumber(); }
  bool number_unsigned(number_unsigned_t) { return addNumber(); }
  bool number_float(number_float_t, const string_t&) { return addNumber(); }
  bool string(string_t& text) { return add(std::move(text)); }
  bool binary(binary_t&) { return false; }

  bool start_object(size_t) { return open(NSDictionary()); }
  bool key(string_t& key) {
    _open.back().key = std::move(key);
    return true;
  }
  bool end_object() { return close(); }
  bool start_array(size_t) { return open(NSArray()); }
  bool end_array() { return close(); }

  bool parse_error(size_t, const std::string&, const nlohmann::json::exception&) { return false; }

  NSPlainValue takeResult() { return std::move(_result); }

 private:
  /// A container that has not ended, and in a dictionary the key of the value that comes next.
  struct Level {
    NSPlainValue container;
    std::string key;
  };

  bool open(NSPlainValue container) {
    if (_open.size() == NSJSONSerialization::deepestNesting) return false;
    _open.push_back({std::move(container), {}});
    return true;
  }

  bool close() {
    NSPlainValue whole = std::move(_open.back().container);
    _open.pop_back();
    return add(std::move(whole));
  }

  bool addNumber() { return add(NSNumber(_numbers[_numbersRead++])); }

  bool add(NSPlainValue value) {
    if (_open.empty()) {
      _result = std::move(value);
    } else if (auto* array = _open.back().container.array()) {
      array->push_back(std::move(value));
    } else {
      _open.back().container.dictionary()->append(std::move(_open.back().key), std::move(value));
    }
    return true;
  }

  const std::vector<std::string>& _numbers;
  size_t _numbersRead = 0;
  std::vector<Level> _open;
  NSPlainValue _result;
};

class Writer {
 public:
  void write(const NSPlainValue& value) {
    if (const auto* dictionary = value.dictionary()) return write(*dictionary);
    if (const auto* array = value.array()) return write(*array);
    if (const auto* text = value.string()) return write(*text);
    if (const auto* number = value.number()) return add(number->stringValue());
    if (const bool* flag = value.boolean()) return add(*flag ? "true" : "false");
    add("null");
  }

  std::string takeText() { return std::move(_text); }

 private:
  void write(const NSDictionary& dictionary) {
    writeAll('{', '}', dictionary.entries(), [this](const NSDictionary::Entry& entry) {
      write(entry.first);
      add(": ");
      write(entry.second);
    });
  }

  void write(const NSArray& array) {
    writeAll('[', ']', array, [this](const NSPlainValue& value) { write(value); });
  }

  void write(const std::string& text) {
    add(nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  }

  template <class Elements, class WriteOne>
  void writeAll(char opening, char closing, const Elements& elements, WriteOne writeOne) {
    _text += opening;
    ++_depth;
    for (const auto& element : elements) {
      if (&element != &elements.front()) _text += ',';
      breakLine();
      writeOne(element);
    }
    --_depth;
    if (!elements.empty()) breakLine();
    _text += closing;
  }

  void breakLine() {
    _text += '\n';
    _text.append(2 * _depth, ' ');
  }
  void add(std::string_view text) { _text += text; }

  std::string _text;
  size_t _depth = 0;
};

}  // namespace

std::optional<NSPlainValue> NSJSONSerialization::JSONObjectWithText(std::string_view text) {
  if (text.size() > largestText) return std::nullopt;
  const JSONNumbers numbers(text);
  Builder builder(numbers.digits);
  if (!nlohmann::json::sax_parse(numbers.text, &builder)) return std::nullopt;
  return builder.takeResult();
}

std::string NSJSONSerialization::prettyPrintedTextWithJSONObject(const NSPlainValue& value) {
  Writer writer;
  writer.write(value);
  return writer.takeText() + '\n';
}

}  // namespace quaverly
