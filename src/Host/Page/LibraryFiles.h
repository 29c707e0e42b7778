#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Host/Library/Catalogue.h"
#include "Host/Page/PageRoutes.h"

namespace quaverly::page {

/// Serves filed songs to the library panel: `/library/audio/ID` is the file, `/library/cover/ID` the picture
/// in it. Only what the catalogue knows as a song can be named. Main thread; tags are read on a thread of its
/// own.
class LibraryFiles {
 public:
  /// Both must outlive it; it takes its routes away when it goes.
  LibraryFiles(library::Catalogue& catalogue, PageRoutes& routes);
  ~LibraryFiles();
  LibraryFiles(const LibraryFiles&) = delete;
  LibraryFiles& operator=(const LibraryFiles&) = delete;

 private:
  class Worker;

  void answerAudio(const PageRequest& request, const PageReply& reply);
  void answerCover(const PageRequest& request, const PageReply& reply);
  std::optional<library::SongRecord> songNamed(const std::string& number);

  library::Catalogue& _catalogue;
  PageRoutes& _routes;
  std::unique_ptr<Worker> _worker;  // made when first needed
};

}  // namespace quaverly::page
