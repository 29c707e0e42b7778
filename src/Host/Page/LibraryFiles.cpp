#include "Host/Page/LibraryFiles.h"

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <charconv>
#include <optional>
#include <utility>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/ImageFormat.h"
#include "Host/Page/StaticFiles.h"
#include "Platform/AVFoundation/TagReading.h"

namespace quaverly::page {
namespace {

using library::FileDescriptor;

constexpr const char* audioPrefix = "/library/audio/";
constexpr const char* coverPrefix = "/library/cover/";

std::optional<NSData> coverIn(const std::string& path) {
  const auto file = FileDescriptor::openForReading(path);
  if (!file || !file.isRegularFile()) return std::nullopt;
  std::optional<NSData> cover;
  for (const auto& contents : tags::readTags(file.get())) {
    if (const auto* picture = tags::shownPicture(contents.pictures)) cover = picture->data;
  }
  return cover;
}

/// A picture of a kind that browsers draw and that can hold no script.
PageAnswer coverAnswer(const library::SongRecord& song) {
  const auto cover = coverIn(song.path);
  const auto& format = library::imageFormatOf(cover ? cover->text() : std::string_view());
  if (!cover || format.magic.empty()) return PageAnswer::notFound();
  PageAnswer answer;
  answer.contentType = format.mediaType;
  answer.entityTag = song.cover;
  answer.body = *cover;
  return answer;
}

}  // namespace

class LibraryFiles::Worker {
 public:
  ~Worker() { _pool.stop(); }
  void run(std::function<void()> work) { boost::asio::post(_pool, std::move(work)); }

 private:
  boost::asio::thread_pool _pool{1};
};

LibraryFiles::LibraryFiles(library::Catalogue& catalogue, PageRoutes& routes)
    : _catalogue(catalogue), _routes(routes) {
  _routes.add(PageMethod::get, audioPrefix,
              [this](const PageRequest& request, const PageReply& reply) { answerAudio(request, reply); });
  _routes.add(PageMethod::get, coverPrefix,
              [this](const PageRequest& request, const PageReply& reply) { answerCover(request, reply); });
}

LibraryFiles::~LibraryFiles() {
  _routes.remove(PageMethod::get, audioPrefix);
  _routes.remove(PageMethod::get, coverPrefix);
}

void LibraryFiles::answerAudio(const PageRequest& request, const PageReply& reply) {
  const auto song = songNamed(request.rest);
  auto file = song ? FileDescriptor::openForReading(song->path) : FileDescriptor();
  auto body = file ? NSData::dataWithDescriptor(file.release()) : std::nullopt;
  if (!body) return reply(PageAnswer::notFound());
  PageAnswer answer;
  answer.contentType = contentTypeOf(song->path);
  answer.body = *std::move(body);
  reply(std::move(answer));
}

void LibraryFiles::answerCover(const PageRequest& request, const PageReply& reply) {
  const auto song = songNamed(request.rest);
  if (!song || song->cover.empty()) return reply(PageAnswer::notFound());
  if (namesEntityTag(request.ifNoneMatch, song->cover)) {
    PageAnswer known;
    known.entityTag = song->cover;
    return reply(std::move(known));  // which the server answers without a body
  }
  if (!_worker) _worker = std::make_unique<Worker>();
  _worker->run([song = *song, reply] { reply(coverAnswer(song)); });
}

std::optional<library::SongRecord> LibraryFiles::songNamed(const std::string& number) {
  int64_t id = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), id);
  if (error != std::errc() || end != number.data() + number.size()) return std::nullopt;
  auto song = _catalogue.song(id);
  return song ? *std::move(song) : std::nullopt;
}

}  // namespace quaverly::page
