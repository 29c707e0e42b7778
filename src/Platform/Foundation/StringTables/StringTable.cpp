#include "Platform/Foundation/StringTables/StringTable.h"

#include <algorithm>

#include "Platform/Foundation/NSPropertyListSerialization.h"
#include "Platform/Foundation/NSString.h"
#include "Platform/Foundation/StringTables/StringTableParser.h"
#include "Platform/Foundation/StringTables/UTF16.h"

namespace quaverly {
namespace {

/// A table's text as UTF-8 without its byte order mark; nothing when the bytes are no text.
std::optional<std::string> decoded(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return utf8FromUTF16(bytes.substr(2), ByteOrder::littleEndian);
  if (bytes.starts_with("\xFE\xFF")) return utf8FromUTF16(bytes.substr(2), ByteOrder::bigEndian);
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  if (!NSStringIsUTF8(bytes)) return std::nullopt;
  return std::string(bytes);
}

bool isXML(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  return text.starts_with("<?xml") || text.starts_with("<!DOCTYPE") || text.starts_with("<plist");
}

/// The entries of a property list that are texts; nothing when its top is no dictionary.
std::optional<Texts> textsInPropertyList(std::string_view bytes) {
  const auto list = NSPropertyListSerialization::propertyListWithData(bytes);
  const auto* dictionary = list ? list->dictionary() : nullptr;
  if (!dictionary) return std::nullopt;
  Texts texts;
  for (const auto& [key, value] : dictionary->entries())
    if (value.string()) texts.insert_or_assign(key, *value.string());
  return texts;
}

std::optional<Texts> textsIn(std::string_view bytes) {
  if (bytes.starts_with("bplist")) return textsInPropertyList(bytes);
  const auto text = decoded(bytes);
  if (!text) return std::nullopt;
  return isXML(*text) ? textsInPropertyList(*text) : textsInPairs(*text);
}

}  // namespace

std::optional<StringTable> StringTable::parse(std::string_view bytes) {
  if (bytes.size() > largestFile) return std::nullopt;
  auto texts = textsIn(bytes);
  if (!texts) return std::nullopt;
  return StringTable(std::move(*texts));
}

const std::string* StringTable::find(std::string_view key) const {
  const auto found = _texts.find(key);
  return found == _texts.end() ? nullptr : &found->second;
}

}  // namespace quaverly
