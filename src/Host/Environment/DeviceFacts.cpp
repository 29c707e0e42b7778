#include "Host/Environment/DeviceFacts.h"

#include <unicode/uloc.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

namespace quaverly::host {
namespace {

namespace fs = std::filesystem;

/// "de_AT" of "de_AT.UTF-8@euro"; empty for the plain locales.
std::string withoutEncoding(std::string_view setting) {
  setting = setting.substr(0, setting.find_first_of(".@"));
  return setting == "C" || setting == "POSIX" ? std::string() : std::string(setting);
}

std::string firstSet(const Environment& environment, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (const auto value = environment(name)) return *value;
  }
  return {};
}

/// "zh_CN" gives "zh_Hans_CN": the script that ICU takes for likely.
std::string withLikelyScript(const std::string& locale) {
  std::array<char, ULOC_FULLNAME_CAPACITY> full{};
  UErrorCode status = U_ZERO_ERROR;
  uloc_addLikelySubtags(locale.c_str(), full.data(), ULOC_FULLNAME_CAPACITY, &status);
  return U_SUCCESS(status) ? full.data() : locale;
}

std::string dashed(std::string locale) {
  std::ranges::replace(locale, '_', '-');
  return locale;
}

/// The names that a table for this locale may have, the most exact first.
std::vector<std::string> tableNames(const std::string& locale) {
  const std::string likely = withLikelyScript(locale);
  return {dashed(locale), dashed(likely), dashed(likely.substr(0, likely.rfind('_'))),
          locale.substr(0, locale.find('_'))};
}

bool hasTable(const fs::path& bundle, const std::string& name) {
  std::error_code ignored;
  return fs::is_directory(bundle / (name + ".lproj"), ignored);
}

std::string tableFor(const std::string& locale, const fs::path& bundle) {
  const auto names = tableNames(locale);
  const auto found =
      std::ranges::find_if(names, [&](const std::string& name) { return hasTable(bundle, name); });
  return found == names.end() ? names.front() : *found;
}

std::string firstLine(const fs::path& file) {
  std::string line;
  std::getline(std::ifstream(file) >> std::ws, line);
  return line;
}

}  // namespace

std::string localeIdentifier(const Environment& environment) {
  const std::string locale = withoutEncoding(firstSet(environment, {"LC_ALL", "LC_TIME", "LANG"}));
  return locale.empty() ? "en_US" : locale;
}

std::vector<std::string> preferredLanguages(const Environment& environment, const fs::path& bundle) {
  const std::string messages = withoutEncoding(firstSet(environment, {"LC_ALL", "LC_MESSAGES", "LANG"}));
  // As for other programs: without a language for messages, the list of languages counts for nothing.
  std::string list = messages.empty() ? std::string() : environment("LANGUAGE").value_or("");
  list.append(":").append(messages);
  std::vector<std::string> languages;
  for (size_t at = 0; at < list.size();) {
    const size_t end = std::min(list.find(':', at), list.size());
    const std::string locale = withoutEncoding(std::string_view(list).substr(at, end - at));
    if (!locale.empty()) languages.push_back(tableFor(locale, bundle));
    at = end + 1;
  }
  // The bundle looks at the first one only: let that be the first that it has words in.
  std::ranges::stable_partition(languages, [&](const std::string& name) { return hasTable(bundle, name); });
  if (languages.empty()) languages.emplace_back("en");
  return languages;
}

std::string timeZoneName(const Environment& environment, const fs::path& etc) {
  if (const auto zone = environment("TZ")) return zone->starts_with(':') ? zone->substr(1) : *zone;
  std::error_code ignored;
  const std::string target = fs::read_symlink(etc / "localtime", ignored).string();
  constexpr std::string_view database = "zoneinfo/";
  if (const size_t at = target.find(database); at != std::string::npos) {
    return target.substr(at + database.size());
  }
  const std::string name = firstLine(etc / "timezone");
  return name.empty() ? "UTC" : name;
}

std::string systemVersion(const fs::path& osRelease) {
  std::ifstream lines(osRelease);
  constexpr std::string_view key = "VERSION_ID=";
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(key)) continue;
    std::string version = line.substr(key.size());
    std::erase(version, '"');
    return version;
  }
  return "0";
}

std::map<std::string, std::string, std::less<>> fontFiles(const fs::path& fonts) {
  constexpr std::array<std::pair<const char*, const char*>, 5> places{{
      {"Arial", "truetype/liberation2/LiberationSans-Regular.ttf"},
      {"Arial", "truetype/liberation/LiberationSans-Regular.ttf"},
      {"HelveticaNeue", "opentype/inter/Inter-Regular.otf"},
      {"HelveticaNeue-Medium", "opentype/inter/Inter-Medium.otf"},
      {"HelveticaNeue-UltraLight", "opentype/inter/Inter-Thin.otf"},
  }};
  std::map<std::string, std::string, std::less<>> files;
  for (const auto& [name, place] : places) {
    std::error_code ignored;
    if (fs::is_regular_file(fonts / place, ignored)) files.emplace(name, fonts / place);
  }
  return files;
}

fs::path bundleFolder() {
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  return program.parent_path().parent_path() / "share/quaverly/QuaverlySettings.bundle";
}

}  // namespace quaverly::host
