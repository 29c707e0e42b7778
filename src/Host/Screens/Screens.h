#pragma once

#include <map>
#include <memory>
#include <string>

#include "Host/Page/PageDelegate.h"
#include "Host/Page/PageRoutes.h"
#include "Host/Screens/MailSheets.h"
#include "Host/Screens/PickedPictures.h"
#include "Host/Screens/ScreenEvents.h"
#include "Host/Screens/ScreenLinks.h"
#include "Host/Screens/ShownFonts.h"
#include "Host/Screens/ShownImages.h"
#include "Host/Screens/TreeDescription.h"
#include "Platform/UIKit/UIWindow.h"

namespace quaverly::screens {

/// Shows the device's screens to the pages and does on them what people do there; docs/page-protocol.md has
/// the messages. At the end of each turn of the main loop that changed something, the tree is laid out and
/// every page is told what is different; without a page nothing is described. Main thread; one at a time.
class Screens : public page::PageDelegate {
 public:
  /// Clients whose edits are told apart; beyond that the first ones are forgotten.
  static constexpr size_t mostClients = 64;

  /// Makes the window, with `root` as its first screen. The routes must outlive it.
  Screens(page::PageRoutes& routes, Ref<UIViewController> root);
  ~Screens() override;
  Screens(const Screens&) = delete;
  Screens& operator=(const Screens&) = delete;

  void received(page::PageConnection& page, std::string_view text) override;
  void disconnected(page::PageConnection& page) override;

 private:
  void greet(page::PageConnection& page, const Json& hello);
  void act(page::PageConnection& page, const std::string& type, const Json& event);
  void acknowledge(page::PageConnection& page, const Json& event);
  void endSheet(const std::string& type, const Json& event);
  void showPage(const std::string& address) const;
  void update();
  void describe();
  void tellEverybody(const std::string& message) const;
  std::string wholeTree() const;
  std::string changeFrom(const NodeTexts& before, const std::string& screenBefore) const;

  ShownFonts _fonts;
  ShownImages _images;
  PickedPictures _pictures;
  MailSheets _mails;
  ScreenLinks _links;
  ScreenEvents _events;
  Ref<UIWindow> _window;
  NodeTexts _nodes;                                     // as they were last described
  std::string _screen;                                  // and the screen's fields
  std::map<page::PageConnection*, std::string> _pages;  // and the clients that they are
  std::vector<std::string> _clients;                    // in the order in which they came
  page::PageConnection* _actor = nullptr;               // the page that did something last
};

}  // namespace quaverly::screens
