#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace quaverly::commandline {

using JsonObject = nlohmann::ordered_json;

enum class Loudness { quiet, normal, verbose };
enum class Form { text, json };

/// Where a command's words go. Results are on standard output, problems and remarks on standard error, each
/// on a line of its own. Text that comes from file names and tags is made printable first. Main thread.
class Console {
 public:
  Console(Form form, Loudness loudness) : _form(form), _loudness(loudness) {}

  Form form() const { return _form; }

  /// A line of the result; nothing with --json.
  void result(std::string_view line) const;
  /// Many lines at once, for long listings.
  void results(const std::vector<std::string>& lines) const;
  /// The same as an object on a line; nothing without --json. What is not UTF-8 in it becomes U+FFFD.
  void object(const JsonObject& object) const;
  /// A line of the result that --quiet leaves out.
  void news(std::string_view line) const;

  /// One line: the program's name, what it is about (a file, an option; may be empty), what is wrong and what
  /// to do.
  void problem(std::string_view about, std::string_view what) const;
  /// The same for what does not stop anything; --quiet leaves it out.
  void remark(std::string_view about, std::string_view what) const;
  /// Only with --verbose.
  void detail(std::string_view what) const;

  /// Rewrites the terminal's last line; an empty one clears it. Nothing when there is no terminal to draw on.
  void status(std::string_view line);
  /// Whether `status` shows anything: standard error is a terminal, and neither --json nor --quiet was given.
  bool showsStatus() const;

 private:
  Form _form;
  Loudness _loudness;
};

/// `text` with everything that could move a terminal's cursor or break a line replaced, and valid UTF-8.
std::string printable(std::string_view text);

}  // namespace quaverly::commandline
