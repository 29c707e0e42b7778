#include "Platform/AVFoundation/ID3Genre.h"

#include <taglib/id3v1genres.h>

#include <charconv>

namespace quaverly::tags {
namespace {

std::optional<int> numberIn(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 0) return std::nullopt;
  return number;
}

std::optional<std::string> genreReferred(std::string_view reference) {
  if (reference == "RX") return "Remix";
  if (reference == "CR") return "Cover";
  const auto number = numberIn(reference);
  return number ? genreNamed(*number) : std::nullopt;
}

}  // namespace

std::optional<std::string> genreNamed(int number) {
  const auto name = TagLib::ID3v1::genre(number).to8Bit(true);
  return name.empty() ? std::nullopt : std::optional(name);
}

std::optional<std::string> genreOf(std::string_view text) {
  std::optional<std::string> referred;
  while (text.starts_with('(') && !text.starts_with("((")) {
    const size_t end = text.find(')');
    const auto reference = text.substr(1, end - 1);
    const bool isReference =
        end != std::string_view::npos && (genreReferred(reference) || numberIn(reference));
    if (!isReference) return std::string(text);
    if (!referred) referred = genreReferred(reference);
    text.remove_prefix(end + 1);
  }
  if (text.empty()) return referred;
  if (text.starts_with("((")) text.remove_prefix(1);
  return numberIn(text) ? genreReferred(text) : std::optional(std::string(text));
}

}  // namespace quaverly::tags
