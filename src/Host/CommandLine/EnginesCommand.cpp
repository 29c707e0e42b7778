#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "Controllers/QuaverlyEnginesSettingsController.h"
#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/HostDevice.h"
#include "Host/Environment/HostWords.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSJSONSerialization.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::commandline {
namespace {

/// An engine as the pane shows it: its group, and the rows behind that.
struct Engine {
  std::string title;
  std::string path;
  NSPlainValue engine;
  NSPlainValue version;
  NSPlainValue developer;
  NSPlainValue enabled;
  Ref<PSSpecifier> row;  ///< its switch

  std::string file() const { return NSStringLastPathComponent(path); }
  std::string name() const { return title.empty() ? file() : title; }
};

std::vector<Engine> enginesOf(QuaverlyEnginesSettingsController& pane) {
  constexpr size_t rowsOfEngine = 5;
  const auto specifiers = pane.specifiers();
  std::vector<Engine> engines;
  for (size_t at = 0; at + rowsOfEngine <= specifiers->size(); at += rowsOfEngine) {
    const auto* rows = &(*specifiers)[at];
    engines.push_back({.title = rows[0]->name(),
                       .path = rows[4]->propertyForKey("engine_path").stringValue(),
                       .engine = rows[1]->performGetter(),
                       .version = rows[2]->performGetter(),
                       .developer = rows[3]->performGetter(),
                       .enabled = rows[4]->performGetter(),
                       .row = rows[4]});
  }
  return engines;
}

JsonObject object(const Engine& engine) {
  const auto json = [](const NSPlainValue& value) {
    return JsonObject::parse(NSJSONSerialization::prettyPrintedTextWithJSONObject(value));
  };
  return {{"file", engine.file()},
          {"title", engine.title},
          {"engine", json(engine.engine)},
          {"version", json(engine.version)},
          {"developer", json(engine.developer)},
          {"enabled", json(engine.enabled)}};
}

std::string line(const Engine& engine) {
  std::string text = host::inUsersLanguage(engine.enabled.boolValue() ? "on   " : "off  ");
  text += engine.name() + " " + engine.version.stringValue();
  if (const auto developer = engine.developer.stringValue(); !developer.empty()) text += ", " + developer;
  return text + "  (" + engine.file() + ")";
}

std::string namesOf(const std::vector<Engine>& engines) {
  std::string names;
  for (const auto& engine : engines) {
    if (!names.empty()) names += ", ";
    names += "\"" + engine.name() + "\" (" + engine.file() + ")";
  }
  return names.empty() ? host::inUsersLanguage("none") : names;
}

/// Those that a name means: the file of that name, or else all whose title or file without its ending it is.
std::vector<Engine> enginesNamed(const std::string& name, const std::vector<Engine>& engines) {
  std::vector<Engine> found;
  std::ranges::copy_if(engines, std::back_inserter(found), [&](const Engine& e) { return e.file() == name; });
  if (!found.empty()) return found;
  std::ranges::copy_if(engines, std::back_inserter(found), [&](const Engine& engine) {
    return engine.title == name || engine.file() == name + ".qvsc";
  });
  return found;
}

bool isSwitchedTo(const NSPlainValue& enabled, bool wanted) {
  return enabled.boolean() && *enabled.boolean() == wanted;
}

/// Why the file of an engine is not what was written into it.
std::string reasonOf(const Engine& engine) {
  if (engine.title.empty() && engine.enabled.isNull())
    return "The file is damaged: it holds no JSON object. Repair or remove it.";
  const auto location = Device::current().mounts.resolve(engine.path);
  const std::string folder = NSStringByDeletingLastPathComponent(location ? location->hostPath : "");
  if (access(folder.c_str(), W_OK) != 0)
    return "Nothing can be written in " + folder + ": " + std::strerror(errno);
  return "The file could not be written. Is the disk full?";
}

/// Asks a new pane, which reads the file again.
std::optional<Engine> engineAgain(const Engine& engine) {
  const auto pane = make<QuaverlyEnginesSettingsController>();
  const auto engines = enginesOf(*pane);
  const auto found = std::ranges::find(engines, engine.path, &Engine::path);
  return found == engines.end() ? std::nullopt : std::optional(*found);
}

ExitStatus turn(const Console& console, const Engine& engine, bool wanted) {
  if (!isSwitchedTo(engine.enabled, wanted)) engine.row->performSetterWithValue(wanted);
  const auto now = engineAgain(engine);
  if (!now || !isSwitchedTo(now->enabled, wanted)) {
    console.problem(engine.name(), reasonOf(engine));
    return ExitStatus::failed;
  }
  console.object(object(*now));
  console.news(line(*now));
  return ExitStatus::done;
}

ExitStatus turnNamed(const Console& console, const EnginesOptions& options,
                     const std::vector<Engine>& engines) {
  const auto found = enginesNamed(options.name, engines);
  if (found.size() == 1)
    return turn(console, found.front(), options.action == EnginesOptions::Action::enable);
  if (found.empty()) {
    console.problem(options.name, "There is no such engine. There are: " + namesOf(engines));
  } else {
    console.problem(options.name, "Several engines are called so. Name the file: " + namesOf(found));
  }
  return ExitStatus::failed;
}

ExitStatus list(const Console& console, const std::vector<Engine>& engines) {
  for (const auto& engine : engines) {
    console.object(object(engine));
    console.result(line(engine));
  }
  return ExitStatus::done;
}

}  // namespace

ExitStatus runEngines(const Console& console, const CommonOptions& common, const EnginesOptions& options) {
  const HostDevice device(common);
  const auto problem = device.provideEngines();
  if (problem) console.problem("", problem->reason);
  const auto pane = make<QuaverlyEnginesSettingsController>();
  const auto engines = enginesOf(*pane);
  const auto status = options.action == EnginesOptions::Action::list ? list(console, engines)
                                                                     : turnNamed(console, options, engines);
  return problem ? ExitStatus::failed : status;
}

}  // namespace quaverly::commandline
