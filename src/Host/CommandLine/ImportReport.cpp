#include "Host/CommandLine/ImportReport.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Host/Environment/HostWords.h"
#include "Platform/Foundation/NSByteCountFormatter.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::commandline {
namespace {

using library::DownloadRecord;
using library::DownloadState;
using library::FilingPlan;

std::string bytesText(uint64_t bytes) {
  return NSByteCountFormatter::stringFromByteCountCountStyle(bytes, NSByteCountFormatterCountStyle::File);
}

std::string bar(const library::DownloadProgress& progress) {
  constexpr uint64_t width = 24;
  const uint64_t total = std::max<uint64_t>(progress.total, 1);
  const auto done = static_cast<size_t>(std::min(progress.bytes, total) * width / total);
  return "[" + std::string(done, '#') + std::string(width - done, '.') + "]";
}

JsonObject object(const std::string& file, const char* state) {
  JsonObject json;
  json["file"] = file;
  json["state"] = state;
  return json;
}

JsonObject tagsObject(const library::SongTags& tags) {
  JsonObject json = JsonObject::object();
  if (tags.title) json["title"] = *tags.title;
  if (tags.artist) json["artist"] = *tags.artist;
  if (tags.album) json["album"] = *tags.album;
  if (tags.trackNumber) json["trackNumber"] = tags.trackNumber;
  if (tags.year) json["year"] = tags.year;
  return json;
}

std::string tagsText(const library::SongTags& tags) {
  std::string text;
  const auto add = [&](const char* name, const std::string& value) {
    text += (text.empty() ? "" : ", ") + host::inUsersLanguage(name) + " " + value;
  };
  const auto quoted = [](const std::string& value) { return "\"" + value + "\""; };
  if (tags.title) add("title", quoted(*tags.title));
  if (tags.artist) add("artist", quoted(*tags.artist));
  if (tags.album) add("album", quoted(*tags.album));
  if (tags.trackNumber) add("track", std::to_string(tags.trackNumber));
  if (tags.year) add("year", std::to_string(tags.year));
  return text.empty() ? host::inUsersLanguage("none") : text;
}

const char* sentenceFor(ImportReport::Rest rest) {
  switch (rest) {
    case ImportReport::Rest::untouched:
      return "Not done. Import it again.";
    case ImportReport::Rest::resumes:
      return "Not done. The next import goes on with it.";
    case ImportReport::Rest::goesOn:
      return "Not waited for. The quaverly that serves goes on with it.";
  }
  return "";
}

std::string count(int number, const char* one, const char* many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

}  // namespace

void ImportReport::started(const std::string& file) {
  _console.detail("Importing " + file);
}

void ImportReport::progressed(const std::string& file, const library::DownloadProgress& progress) {
  const std::string name = NSStringLastPathComponent(file);
  _console.status(bar(progress) + " " + bytesText(progress.bytes) + " / " + bytesText(progress.total) + ", " +
                  bytesText(static_cast<uint64_t>(progress.bytesPerSecond)) + "/s  " + name);
}

void ImportReport::ended(const std::string& file, const DownloadRecord& record) {
  _console.status("");
  if (record.state == DownloadState::failed) {
    ++_failed;
    _console.problem(file, record.reason);
  } else {
    filed(file, record);
  }
  JsonObject json = object(file, nameOf(record.state));
  if (!record.libraryPath.empty()) json["path"] = record.libraryPath;
  json["bytes"] = record.bytes;
  if (record.state == DownloadState::failed) json["error"] = record.reason;
  _console.object(json);
}

void ImportReport::filed(const std::string& file, const DownloadRecord& record) {
  const bool isNew = record.state == DownloadState::filed;
  ++(isNew ? _filed : _duplicates);
  const char* what = isNew ? " -> " : " is in the library already: ";
  _console.news(file + what + record.libraryPath);
  if (isNew && !record.reason.empty()) _console.remark(file, record.reason);
}

void ImportReport::planned(const std::string& file, const library::DryRun::Outcome& outcome) {
  if (!outcome.plan) return ended(file, outcome.record);
  const FilingPlan& plan = *outcome.plan;
  const std::string path = plan.duplicateOf.value_or(plan.path);
  _console.news(file + (plan.duplicateOf ? " is in the library already: " : " would become ") + path);
  if (!plan.duplicateOf) {
    _console.news("  tags now:   " + tagsText(plan.before));
    _console.news("  tags then:  " + tagsText(plan.after));
    if (plan.namesake) _console.news("  another song has the name already: " + *plan.namesake);
  }
  JsonObject json = object(file, plan.duplicateOf ? "duplicate" : "planned");
  json["path"] = path;
  json["bytes"] = outcome.record.bytes;
  json["before"] = tagsObject(plan.before);
  json["after"] = tagsObject(plan.after);
  if (plan.namesake) json["namesake"] = *plan.namesake;
  _console.object(json);
}

void ImportReport::refused(const std::string& file, const std::string& reason) {
  DownloadRecord record;
  record.state = DownloadState::failed;
  record.reason = reason;
  ended(file, record);
}

void ImportReport::leftOver(const std::string& file, Rest rest) {
  ++_failed;
  _console.status("");
  _console.problem(file, sentenceFor(rest));
}

void ImportReport::waits(const std::string& why) {
  _console.status("");
  _console.remark("", why);
}

void ImportReport::summarise(const std::string& libraryFolder) const {
  if (_filed + _duplicates + _failed < 2) return;
  std::string line = count(_filed, "song", "songs") + " filed in " + libraryFolder;
  if (_duplicates > 0) line += ", " + std::to_string(_duplicates) + " there already";
  if (_failed > 0) line += ", " + std::to_string(_failed) + " failed";
  _console.news(line + ".");
}

}  // namespace quaverly::commandline
