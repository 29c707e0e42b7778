#pragma once

#include <vector>

#include "Host/Page/PageDelegate.h"

namespace quaverly::page {

/// Several delegates that share the pages: each hears everything, in the order in which they were added, and
/// passes over what is not meant for it. Unowned.
class PageDelegates : public PageDelegate {
 public:
  void add(PageDelegate& delegate) { _delegates.push_back(&delegate); }
  void remove(PageDelegate& delegate) { std::erase(_delegates, &delegate); }

  void connected(PageConnection& page) override {
    for (auto* delegate : _delegates) delegate->connected(page);
  }
  void received(PageConnection& page, std::string_view text) override {
    for (auto* delegate : _delegates) delegate->received(page, text);
  }
  void receivedBinary(PageConnection& page, std::string_view bytes) override {
    for (auto* delegate : _delegates) delegate->receivedBinary(page, bytes);
  }
  void disconnected(PageConnection& page) override {
    for (auto* delegate : _delegates) delegate->disconnected(page);
  }

 private:
  std::vector<PageDelegate*> _delegates;
};

}  // namespace quaverly::page
