// screens-time FOLDER SONG: how long a page waits after a tap, in process: from the tap on a folder's row to
// the message with its rows, beside the listing alone; and from the tap on a song's row to the message with
// its cover, and with the blurred cover. The media folder is FOLDER; its only folder is the one that is
// tapped. JSON on standard output, milliseconds.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>

#include "Controllers/ImportAudioController.h"
#include "Host/CommandLine/HostDevice.h"
#include "Host/Screens/Screens.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIApplication.h"

namespace {

using namespace quaverly;
using Json = nlohmann::json;
using Time = std::chrono::steady_clock;

double since(Time::time_point begin) {
  return std::chrono::duration<double, std::milli>(Time::now() - begin).count();
}

/// A page that keeps the nodes, and looks for a cell by its text.
class Page : public page::PageConnection {
 public:
  void send(std::string text) override {
    const Json message = Json::parse(text);
    for (const char* field : {"nodes", "set"}) {
      for (const auto& [number, node] : message.value(field, Json::object()).items()) nodes[number] = node;
    }
    for (const auto& gone : message.value("gone", Json::array()))
      nodes.erase(std::to_string(gone.get<uint64_t>()));
  }
  size_t queuedBytes() const override { return 0; }
  void close() override {}

  uint64_t cellWith(const std::string& text) const {
    for (const auto& [number, node] : nodes.items()) {
      if (node["kind"] == "cell" && shows(node, text)) return std::stoull(number);
    }
    return 0;
  }
  size_t imagesOf(const std::string& mode) const {
    size_t count = 0;
    for (const auto& [number, node] : nodes.items())
      count += node["kind"] == "image" && node["mode"] == mode && node.contains("image");
    return count;
  }

  Json nodes = Json::object();

 private:
  bool shows(const Json& node, const std::string& text) const {
    if (node.contains("text") && node["text"] == text) return true;
    for (const auto& child : node.value("children", Json::array())) {
      if (shows(nodes.at(std::to_string(child.get<uint64_t>())), text)) return true;
    }
    return false;
  }
};

class Measurement {
 public:
  explicit Measurement(const std::string& media) : _device(optionsFor(media)) {
    _browser->init();
    _screens.emplace(_routes, make<UINavigationController>(_browser));
    say({{"type", "hello"}, {"client", "a"}, {"width", 375}, {"height", 667}, {"orientation", 1}});
  }

  double listing(const std::string& folder) {
    const auto begin = Time::now();
    const auto items = _browser->ItemsInFolder("/var/mobile/Media/" + folder);
    return since(begin);
  }
  double tapUntil(const std::string& row, const std::function<bool()>& seen) {
    const Json tap{{"type", "tap"}, {"node", _page.cellWith(row)}};
    const auto begin = Time::now();
    say(tap);
    while (!seen()) NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(100));
    return since(begin);
  }
  void back() {
    _browser->backBrowser();
    while (NSRunLoop::mainRunLoop().runOnce()) continue;
  }
  const Page& page() const { return _page; }

 private:
  static commandline::CommonOptions optionsFor(const std::string& media) {
    commandline::CommonOptions options;
    options.media = media;
    return options;
  }
  void say(const Json& event) { _screens->received(_page, event.dump()); }

  commandline::HostDevice _device;
  page::PageRoutes _routes;
  Ref<ImportAudioController> _browser = make<ImportAudioController>();
  std::optional<screens::Screens> _screens;
  Page _page;
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const std::string media = arguments[1];
  const std::string song = arguments[2];
  Measurement measurement(media);
  measurement.listing("many");  // warms the file system
  const double listing = measurement.listing("many");
  measurement.back();
  const double rows = measurement.tapUntil("many", [&] { return measurement.page().cellWith("many") == 0; });
  measurement.back();
  const double sharp = measurement.tapUntil(song, [&] { return measurement.page().imagesOf("fill") > 0; });
  const auto begin = Time::now();
  while (measurement.page().imagesOf("cover") == 0)
    NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(100));
  std::printf("%s\n",
              Json{{"listing", listing}, {"rows", rows}, {"cover", sharp}, {"blurred", sharp + since(begin)}}
                  .dump()
                  .c_str());
  return 0;
}
