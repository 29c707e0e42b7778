#include <cstdint>
#include <string>

#include "Platform/Foundation/StringTables/PropertyListTexts.h"
#include "Platform/Foundation/StringTables/UTF16.h"

// By hand, because the library makes a copy of a text for every reference to it: a small file with many
// references to one long text would grow to gigabytes.
namespace quaverly {
namespace {

// More than any file of the largest size holds without repeating itself.
constexpr size_t mostText = 8 << 20;

uint64_t bigEndian(std::string_view bytes) {
  uint64_t number = 0;
  for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

/// One object: what it is, how many elements it has, and all bytes that follow its head.
struct Object {
  enum Kind : unsigned { integer = 0x1, ascii = 0x5, utf16 = 0x6, dictionary = 0xD };
  unsigned kind;
  uint64_t count;
  std::string_view rest;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : _bytes(bytes) {}

  /// Nothing when the top is no dictionary or anything points outside the file.
  std::optional<Texts> read() {
    if (!readTrailer()) return std::nullopt;
    const auto top = objectAt(_top);
    if (!top || top->kind != Object::dictionary || top->count > top->rest.size() / (2 * _referenceSize))
      return std::nullopt;
    for (uint64_t entry = 0; entry < top->count; ++entry)
      if (!readEntry(reference(*top, entry), reference(*top, top->count + entry))) return std::nullopt;
    return std::move(_texts);
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

  bool readEntry(uint64_t keyIndex, uint64_t textIndex) {
    const auto keyObject = objectAt(keyIndex);
    const auto textObject = objectAt(textIndex);
    auto key = keyObject ? textOf(*keyObject) : std::nullopt;
    if (!key || !textObject) return false;
    if (auto text = textOf(*textObject)) {
      _size += key->size() + text->size();
      _texts.insert_or_assign(std::move(*key), std::move(*text));
    }
    return _size <= mostText;
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
  Texts _texts;
  size_t _size = 0;
};

}  // namespace

std::optional<Texts> textsInBinaryPropertyList(std::string_view bytes) {
  return Reader(bytes).read();
}

}  // namespace quaverly
