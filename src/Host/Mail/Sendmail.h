#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace quaverly::host {

/// The system's mailer, a program that is called `sendmail` whatever it is.
class Sendmail {
 public:
  /// How long it may take.
  static constexpr std::chrono::seconds limit{60};

  /// Looks for it along `searchPath`, folders separated by colons, and where systems keep it besides. Nothing
  /// when there is none.
  static std::optional<Sendmail> find(const std::string& searchPath);

  /// Hands a mail over, as MIME, to those whom its headers name. Returns why that failed, in a sentence, or
  /// nothing. A mailer that takes too long, or that nobody waits for any more once `stop` is requested, is
  /// ended. Blocks; any thread.
  std::optional<std::string> send(const std::string& mimeText, std::chrono::milliseconds within = limit,
                                  const std::stop_token& stop = {}) const;

  const std::string& path() const { return _path; }

 private:
  explicit Sendmail(std::string path) : _path(std::move(path)) {}

  std::string _path;
};

}  // namespace quaverly::host
