#include <bit>
#include <cmath>
#include <cstdint>
#include <string>

#include "Platform/Foundation/PropertyLists/PropertyLists.h"
#include "Platform/Foundation/StringTables/UTF16.h"

// By hand, because the library makes a copy of an object for every reference to it: a small file with many
// references to one long text would grow to gigabytes.
namespace quaverly {
namespace {

// More than any file of the largest size holds without repeating itself.
constexpr size_t mostText = 8 << 20;
constexpr size_t mostValues = 100'000;
constexpr size_t deepestNesting = 64;

uint64_t bigEndian(std::string_view bytes) {
  uint64_t number = 0;
  for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

/// One object: what it is, how many elements it has, and all bytes that follow its head.
struct Object {
  enum Kind : unsigned {
    simple = 0x0,
    integer = 0x1,
    real = 0x2,
    ascii = 0x5,
    utf16 = 0x6,
    array = 0xA,
    dictionary = 0xD
  };
  unsigned kind;
  uint64_t count;
  std::string_view rest;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : _bytes(bytes) {}

  /// Nothing when anything points outside the file.
  std::optional<NSPlainValue> read() {
    if (!readTrailer()) return std::nullopt;
    auto value = valueAt(_top, 0);
    return _isDamaged ? std::nullopt : std::optional(std::move(value));
  }

 private:
  bool readTrailer() {
    constexpr size_t trailerSize = 32;
    if (_bytes.size() < trailerSize) return false;
    const auto trailer = _bytes.substr(_bytes.size() - trailerSize);
    _offsetSize = bigEndian(trailer.substr(6, 1));
    _referenceSize = bigEndian(trailer.substr(7, 1));
    _objects = bigEndian(trailer.substr(8, 8));
    _top = bigEndian(trailer.substr(16, 8));
    _table = bigEndian(trailer.substr(24, 8));
    const bool areSizes = _offsetSize >= 1 && _offsetSize <= 8 && _referenceSize >= 1 && _referenceSize <= 8;
    return areSizes && _table <= _bytes.size() && _objects <= (_bytes.size() - _table) / _offsetSize;
  }

  uint64_t reference(const Object& container, uint64_t element) const {
    return bigEndian(container.rest.substr(element * _referenceSize, _referenceSize));
  }

  std::optional<Object> objectAt(uint64_t index) const {
    if (index >= _objects) return std::nullopt;
    const uint64_t offset = bigEndian(_bytes.substr(_table + index * _offsetSize, _offsetSize));
    if (offset >= _bytes.size()) return std::nullopt;
    auto object = objectIn(_bytes.substr(offset));
    if (object.count == 15 && object.kind != Object::integer) return withLongCount(object);
    return object;
  }

  static Object objectIn(std::string_view bytes) {
    const unsigned head = static_cast<unsigned char>(bytes[0]);
    return {head >> 4, head & 15, bytes.substr(1)};
  }

  /// Counts from 15 on follow the head as an integer.
  static std::optional<Object> withLongCount(const Object& object) {
    if (object.rest.empty()) return std::nullopt;
    const auto number = objectIn(object.rest);
    const size_t size = size_t{1} << number.count;
    if (number.kind != Object::integer || size > 8 || size > number.rest.size()) return std::nullopt;
    return Object{object.kind, bigEndian(number.rest.substr(0, size)), number.rest.substr(size)};
  }

  NSPlainValue valueAt(uint64_t index, size_t depth) {
    const auto object = objectAt(index);
    if (!object || depth > deepestNesting || ++_values > mostValues) return damaged();
    switch (object->kind) {
      case Object::simple:
        return object->count == 8 || object->count == 9 ? NSPlainValue(object->count == 9) : NSPlainValue();
      case Object::integer:
        return integerOf(*object);
      case Object::real:
        return realOf(*object);
      case Object::ascii:
      case Object::utf16:
        return counted(textOf(*object));
      case Object::array:
        return arrayOf(*object, depth);
      case Object::dictionary:
        return dictionaryOf(*object, depth);
      default:
        return {};
    }
  }

  NSPlainValue arrayOf(const Object& object, size_t depth) {
    if (object.count > object.rest.size() / _referenceSize) return damaged();
    NSArray array;
    for (uint64_t element = 0; element < object.count && !_isDamaged; ++element)
      array.push_back(valueAt(reference(object, element), depth + 1));
    return array;
  }

  NSPlainValue dictionaryOf(const Object& object, size_t depth) {
    if (object.count > object.rest.size() / (2 * _referenceSize)) return damaged();
    NSDictionary dictionary;
    for (uint64_t entry = 0; entry < object.count && !_isDamaged; ++entry) {
      const auto keyObject = objectAt(reference(object, entry));
      const auto key = counted(keyObject ? textOf(*keyObject) : std::nullopt);
      auto value = valueAt(reference(object, object.count + entry), depth + 1);
      if (key.string()) dictionary.append(*key.string(), std::move(value));
    }
    return dictionary;
  }

  NSPlainValue integerOf(const Object& object) {
    const size_t size = size_t{1} << object.count;
    if (size > 8 || size > object.rest.size()) return damaged();
    // Eight bytes have a sign, fewer have none.
    return NSNumber(std::to_string(static_cast<int64_t>(bigEndian(object.rest.substr(0, size)))));
  }

  NSPlainValue realOf(const Object& object) {
    const size_t size = size_t{1} << object.count;
    if ((size != 4 && size != 8) || size > object.rest.size()) return damaged();
    const uint64_t bits = bigEndian(object.rest.substr(0, size));
    const double value =
        size == 8 ? std::bit_cast<double>(bits) : std::bit_cast<float>(static_cast<uint32_t>(bits));
    return std::isfinite(value) ? NSPlainValue(NSNumber(value)) : NSPlainValue();
  }

  NSPlainValue counted(std::optional<std::string> text) {
    if (text) _text += text->size();
    return text && _text <= mostText ? NSPlainValue(std::move(*text)) : damaged();
  }

  NSPlainValue damaged() {
    _isDamaged = true;
    return {};
  }

  /// Nothing for an object of another kind and for a text that ends behind the file.
  static std::optional<std::string> textOf(const Object& object) {
    if (object.kind == Object::ascii && object.count <= object.rest.size())
      return std::string(object.rest.substr(0, object.count));
    if (object.kind == Object::utf16 && object.count <= object.rest.size() / 2)
      return utf8FromUTF16(object.rest.substr(0, object.count * 2), ByteOrder::bigEndian);
    return std::nullopt;
  }

  std::string_view _bytes;
  uint64_t _offsetSize = 0;
  uint64_t _referenceSize = 0;
  uint64_t _objects = 0;
  uint64_t _top = 0;
  uint64_t _table = 0;
  size_t _values = 0;
  size_t _text = 0;
  bool _isDamaged = false;
};

}  // namespace

std::optional<NSPlainValue> valueInBinaryPropertyList(std::string_view bytes) {
  return Reader(bytes).read();
}

}  // namespace quaverly
