#include "Platform/AVFoundation/TagContents.h"

#include <algorithm>
#include <ranges>

namespace quaverly::tags {
namespace {

constexpr std::string_view digits = "0123456789";

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view space = " \t\r\n";
  const size_t first = std::min(text.find_first_not_of(space), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(space) + 1);
}

}  // namespace

bool TagContents::isEmpty() const {
  return pictures.empty() &&
         std::ranges::none_of(texts, [this](Field field) { return (this->*field).has_value(); });
}

void TagContents::set(Field field, std::string text) {
  std::optional<std::string> value;
  if (field == &TagContents::track) {
    value = trackNumberOf(text);
  } else if (field == &TagContents::year) {
    value = yearOf(text);
  } else if (!text.empty()) {
    value = std::move(text);
  }
  if (value) this->*field = std::move(value);
}

const Picture* shownPicture(const std::vector<Picture>& pictures) {
  const auto isFront = [](const Picture& picture) { return picture.kind == Picture::frontCover; };
  const auto backwards = std::views::reverse(pictures);
  const auto front = std::ranges::find_if(backwards, isFront);
  if (front != backwards.end()) return &*front;
  return pictures.empty() ? nullptr : &pictures.back();
}

std::string trackNumberOf(std::string_view text) {
  return std::string(trimmed(text.substr(0, text.find('/'))));
}

std::optional<std::string> yearOf(std::string_view text) {
  while (true) {
    const size_t first = text.find_first_of(digits);
    if (first == std::string_view::npos) return std::nullopt;
    text.remove_prefix(first);
    const size_t length = std::min(text.find_first_not_of(digits), text.size());
    if (length >= 4) return std::string(text.substr(0, 4));
    text.remove_prefix(length);
  }
}

}  // namespace quaverly::tags
