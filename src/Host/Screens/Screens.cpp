#include "Host/Screens/Screens.h"

#include <algorithm>
#include <chrono>

#include "Other/ConfiguredAddresses.h"
#include "Platform/Device/Device.h"
#include "Platform/Social/SLComposeViewController.h"
#include "Platform/UIKit/UIApplication.h"
#include "Platform/UIKit/UIScreen.h"
#include "Platform/UIKit/UIViewController.h"

namespace quaverly::screens {
namespace {

constexpr size_t longestClientName = 64;

std::string textIn(const Json& event, const char* key) {
  const auto found = event.find(key);
  return found != event.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// The host's clock in milliseconds, as animations are told by it.
std::string nowField() {
  const auto now = Device::current().clock->now().time_since_epoch();
  return "\"now\":" + Json(std::chrono::duration<double, std::milli>(now).count()).dump();
}

std::string screenFields() {
  const CGRect screen = UIScreen::mainScreen().bounds();
  const auto orientation = static_cast<int>(UIApplication::sharedApplication().statusBarOrientation());
  return "\"screen\":" + Json({screen.width, screen.height}).dump() +
         ",\"orientation\":" + std::to_string(orientation);
}

void appendNode(std::string& nodes, uint64_t identity, const std::string& text) {
  if (!nodes.empty()) nodes += ',';
  nodes += '"' + std::to_string(identity) + "\":" + text;
}

}  // namespace

Screens::Screens(page::PageRoutes& routes, Ref<UIViewController> root)
    : _fonts(routes),
      _images(routes),
      _pictures(routes),
      _mails(routes, host::Sendmail::find(host::processEnvironment("PATH").value_or(""))),
      _links([this](const std::string& address) { showPage(address); }),
      _window(make<UIWindow>(UIScreen::mainScreen().bounds())) {
  SLComposeViewController::setComposeAddress(ConfiguredAddresses::composePage());
  _window->makeKeyAndVisible();
  _window->setRootViewController(std::move(root));
  CATransaction::setCommit([this] { update(); });
  UIApplication::sharedApplication().layoutIfNeeded();
}

Screens::~Screens() {
  CATransaction::setCommit(nullptr);
  UIApplication::sharedApplication().setKeyWindow(nullptr);
}

void Screens::received(page::PageConnection& page, std::string_view text) {
  const Json event = Json::parse(text, nullptr, false);
  if (!event.is_object()) return;
  const std::string type = textIn(event, "type");
  if (type == "hello") {
    greet(page, event);
  } else if (_pages.contains(&page)) {
    act(page, type, event);
  }
}

void Screens::disconnected(page::PageConnection& page) {
  _pages.erase(&page);
  if (_actor == &page) _actor = nullptr;
}

void Screens::greet(page::PageConnection& page, const Json& hello) {
  const std::string client = textIn(hello, "client").substr(0, longestClientName);
  if (std::ranges::find(_clients, client) == _clients.end()) _clients.push_back(client);
  if (_clients.size() > mostClients) {
    _events.forgetClient(_clients.front());
    _clients.erase(_clients.begin());
  }
  _events.changeScreen(hello);
  update();
  if (_pages.empty()) describe();
  _pages[&page] = client;
  page.send(wholeTree());
}

void Screens::act(page::PageConnection& page, const std::string& type, const Json& event) {
  _actor = &page;
  if (type == "tap") return _events.tap(event);
  if (type == "edit") return acknowledge(page, event);
  if (type == "scroll") return _events.scroll(event);
  if (type == "screen") return _events.changeScreen(event);
  if (type == "cancel" || type == "finish") return endSheet(type, event);
}

void Screens::endSheet(const std::string& type, const Json& event) {
  const uint64_t node = numberIn(event, "node").value_or(0);
  if (type == "cancel") {
    _events.cancel(node);
    _mails.cancel(node);
  } else {
    _events.finish(node);
    _mails.finish(node);
  }
}

/// Only the browser of the person who followed a link opens it.
void Screens::showPage(const std::string& address) const {
  if (_actor) _actor->send(Json{{"type", "open"}, {"url", address}}.dump());
}

/// After what the edit changed, so that a page which has no newer edit may take the field's text as it is.
void Screens::acknowledge(page::PageConnection& page, const Json& event) {
  const auto sequence = _events.edit(_pages[&page], event);
  if (!sequence) return;
  update();
  page.send(Json{{"type", "ack"}, {"node", event["node"]}, {"sequence", *sequence}}.dump());
}

void Screens::update() {
  UIApplication::sharedApplication().layoutIfNeeded();
  if (_pages.empty()) return;
  const NodeTexts before = std::move(_nodes);
  const std::string screenBefore = std::move(_screen);
  describe();
  if (_nodes == before && _screen == screenBefore) return;
  tellEverybody(changeFrom(before, screenBefore));
}

void Screens::describe() {
  _nodes = TreeDescription(_images).describe(*_window);
  _images.forgetUnshown();
  _screen = screenFields();
}

void Screens::tellEverybody(const std::string& message) const {
  // A page that is told something may go.
  const auto pages = _pages;
  for (const auto& [page, client] : pages) page->send(message);
}

std::string Screens::wholeTree() const {
  std::string nodes;
  for (const auto& [identity, text] : _nodes) appendNode(nodes, identity, text);
  return "{\"type\":\"tree\"," + nowField() + "," + _screen +
         ",\"root\":" + std::to_string(_window->identity()) + ",\"nodes\":{" + nodes + "}}";
}

std::string Screens::changeFrom(const NodeTexts& before, const std::string& screenBefore) const {
  std::string set;
  for (const auto& [identity, text] : _nodes) {
    const auto known = before.find(identity);
    if (known == before.end() || known->second != text) appendNode(set, identity, text);
  }
  Json gone = Json::array();
  for (const auto& [identity, text] : before) {
    if (!_nodes.contains(identity)) gone.push_back(identity);
  }
  const std::string screen = _screen == screenBefore ? "" : _screen + ",";
  return "{\"type\":\"change\"," + nowField() + "," + screen + "\"set\":{" + set +
         "},\"gone\":" + gone.dump() + "}";
}

}  // namespace quaverly::screens
