#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quaverly::host {

/// The host's own words in the user's language. The program says everything in English; where a person reads
/// it, it is translated, so that what is stored and what other programs read (`--json`) is the same for all.
class HostWords {
 public:
  /// Without a table: everything stays English.
  HostWords() = default;

  /// The table "Host.strings" of the first of the languages, up to English, that has one in `folder`.
  static HostWords load(const std::filesystem::path& folder, const std::vector<std::string>& languages);

  /// For this process, from its environment and the program's resources.
  static const HostWords& current();

  /// The translation of a word or a sentence, or itself. A key of the table may have places, {1} to {9}, for
  /// what differs from time to time; a phrase that stands there is translated, too.
  std::string translated(std::string_view english) const;

  /// The language of the words: a table's name, "en" without one.
  const std::string& language() const { return _language; }

 private:
  struct Sentence {
    std::vector<std::string> pieces;  // what stands around the places
    std::vector<char> places;         // their digits, in their order
    std::string text;
  };

  explicit HostWords(std::string language) : _language(std::move(language)) {}
  void add(const std::string& key, const std::string& text);
  const std::string* find(std::string_view english) const;
  std::string filled(const Sentence& sentence, const std::vector<std::string_view>& values) const;
  std::string valueOf(std::string_view value) const;

  std::string _language = "en";
  std::vector<std::pair<std::string, std::string>> _words;  // sorted
  std::vector<Sentence> _sentences;                         // those with the most words of their own first
};

/// For `Device::systemWords`: the words of this process.
std::string systemWord(std::string_view english);

/// What the device says in the user's language, for all that people read.
std::string inUsersLanguage(std::string_view english);
/// The language that this is, as a web page names it.
std::string usersLanguage();

}  // namespace quaverly::host
