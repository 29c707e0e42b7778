#include "Host/Environment/HostWords.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>

#include "Host/Environment/DeviceFacts.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/StringTables/StringTableParser.h"

namespace quaverly::host {
namespace {

namespace fs = std::filesystem;

std::optional<Texts> tableIn(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  return textsInPairs(std::string(std::istreambuf_iterator<char>(stream), {}));
}

bool isPlace(std::string_view text, size_t at) {
  return at + 2 < text.size() && text[at] == '{' && std::isdigit(static_cast<unsigned char>(text[at + 1])) &&
         text[at + 2] == '}';
}

size_t lengthOf(const std::vector<std::string>& pieces) {
  return std::transform_reduce(pieces.begin(), pieces.end(), size_t{0}, std::plus<>(),
                               [](const auto& piece) { return piece.size(); });
}

/// What stands between the pieces, when the text is made of them.
std::optional<std::vector<std::string_view>> valuesBetween(const std::vector<std::string>& pieces,
                                                           std::string_view text) {
  const std::string& last = pieces.back();
  if (!text.starts_with(pieces.front())) return std::nullopt;
  text.remove_prefix(pieces.front().size());
  if (!text.ends_with(last)) return std::nullopt;
  text.remove_suffix(last.size());
  std::vector<std::string_view> values;
  for (size_t at = 1; at + 1 < pieces.size(); ++at) {
    const size_t found = text.find(pieces[at]);
    if (found == std::string_view::npos) return std::nullopt;
    values.push_back(text.substr(0, found));
    text.remove_prefix(found + pieces[at].size());
  }
  values.push_back(text);
  return values;
}

}  // namespace

HostWords HostWords::load(const fs::path& folder, const std::vector<std::string>& languages) {
  for (const auto& language : languages) {
    if (language == "en" || language.starts_with("en-")) break;
    const auto table = tableIn(folder / (language + ".lproj") / "Host.strings");
    if (!table) continue;
    HostWords words(language);
    for (const auto& [key, text] : *table) words.add(key, text);
    std::ranges::stable_sort(words._sentences, std::greater(),
                             [](const Sentence& sentence) { return lengthOf(sentence.pieces); });
    return words;
  }
  return {};
}

const HostWords& HostWords::current() {
  static const HostWords words =
      load(bundleFolder().parent_path() / "host", preferredLanguages(processEnvironment, bundleFolder()));
  return words;
}

void HostWords::add(const std::string& key, const std::string& text) {
  Sentence sentence{{""}, {}, text};
  for (size_t at = 0; at < key.size(); ++at) {
    if (!isPlace(key, at)) {
      sentence.pieces.back() += key[at];
      continue;
    }
    sentence.places.push_back(key[at + 1]);
    sentence.pieces.emplace_back();
    at += 2;
  }
  if (sentence.places.empty()) {
    _words.emplace_back(key, text);
  } else {
    _sentences.push_back(std::move(sentence));
  }
}

const std::string* HostWords::find(std::string_view english) const {
  const auto found = std::ranges::lower_bound(_words, english, {},
                                              [](const auto& word) { return std::string_view(word.first); });
  return found != _words.end() && found->first == english ? &found->second : nullptr;
}

std::string HostWords::translated(std::string_view english) const {
  if (const auto* text = find(english)) return *text;
  for (const auto& sentence : _sentences) {
    if (const auto values = valuesBetween(sentence.pieces, english)) return filled(sentence, *values);
  }
  return std::string(english);
}

std::string HostWords::filled(const Sentence& sentence, const std::vector<std::string_view>& values) const {
  std::string text;
  for (size_t at = 0; at < sentence.text.size(); ++at) {
    if (!isPlace(sentence.text, at)) {
      text += sentence.text[at];
      continue;
    }
    const auto place = std::ranges::find(sentence.places, sentence.text[at + 1]);
    at += 2;
    if (place == sentence.places.end()) continue;
    text += valueOf(values[static_cast<size_t>(place - sentence.places.begin())]);
  }
  return text;
}

/// One word alone is more likely a name than anything of the program's.
std::string HostWords::valueOf(std::string_view value) const {
  return value.find(' ') == std::string_view::npos ? std::string(value) : translated(value);
}

std::string systemWord(std::string_view english) {
  return HostWords::current().translated(english);
}

std::string inUsersLanguage(std::string_view english) {
  const auto& words = Device::current().systemWords;
  return words ? words(english) : std::string(english);
}

std::string usersLanguage() {
  return Device::current().systemWords ? HostWords::current().language() : "en";
}

}  // namespace quaverly::host
