#include <array>
#include <nlohmann/json.hpp>

#include "Controllers/ImportAudioController.h"
#include "Host/CommandLine/Commands.h"
#include "Host/CommandLine/HostDevice.h"

namespace quaverly::commandline {
namespace {

struct Field {
  const char* name;
  const iTunesSongItem::Text& (iTunesSongItem::*value)() const;
};

constexpr std::array fields = {
    Field{"title", &iTunesSongItem::title},
    Field{"artist", &iTunesSongItem::artist},
    Field{"album", &iTunesSongItem::album},
    Field{"genre", &iTunesSongItem::genre},
    Field{"releaseYear", &iTunesSongItem::releaseYear},
    Field{"indexInCollection", &iTunesSongItem::indexInCollection},
    Field{"duration", &iTunesSongItem::duration},
    Field{"ID", &iTunesSongItem::ID},
    Field{"artworkLow", &iTunesSongItem::artworkLow},
    Field{"artworkMedium", &iTunesSongItem::artworkMedium},
    Field{"artworkHigh", &iTunesSongItem::artworkHigh},
};

void print(const Console& console, const iTunesSongItem& song) {
  JsonObject json = JsonObject::object();
  for (const auto& field : fields) {
    const auto& value = (song.*field.value)();
    if (!value) continue;
    json[field.name] = *value;
    console.result(std::string(field.name) + ": " + *value);
  }
  console.object(json);
  if (json.empty() && console.form() == Form::text) console.news("No tags.");
}

}  // namespace

ExitStatus runInfo(const Console& console, const CommonOptions& common, const std::string& file) {
  HostDevice device(common);
  const auto reached = reachFile(file, device.outsideFiles());
  if (!reached) {
    console.problem(file, reached.failure().reason);
    return ExitStatus::failed;
  }
  auto browser = make<ImportAudioController>();
  browser->init();
  print(console, browser->songItemFromPath(reached->devicePath));
  return ExitStatus::done;
}

}  // namespace quaverly::commandline
