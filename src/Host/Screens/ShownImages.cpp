#include "Host/Screens/ShownImages.h"

#include <algorithm>
#include <vector>

#include "Platform/Foundation/NSOperationQueue.h"

namespace quaverly::screens {
namespace {

constexpr const char* prefix = "/image/";

page::PageAnswer answerWith(const UIImage& image) {
  const auto file = image.encodedForDisplay();
  if (!file) return page::PageAnswer::notFound();
  page::PageAnswer answer;
  answer.contentType = file->format == UIImage::Format::jpeg ? "image/jpeg" : "image/png";
  answer.body = file->data;
  // A number is never used for another picture.
  answer.cacheControl = "private, max-age=86400, immutable";
  return answer;
}

NSOperationQueue& encoders() {
  static NSOperationQueue queue;
  return queue;
}

}  // namespace

ShownImages::ShownImages(page::PageRoutes& routes) : _routes(routes) {
  encoders().setMaxConcurrentOperationCount(2);
  _routes.add(
      page::PageMethod::get, prefix,
      [this](const page::PageRequest& request, const page::PageReply& reply) { answer(request, reply); });
}

ShownImages::~ShownImages() {
  _routes.remove(page::PageMethod::get, prefix);
}

std::string ShownImages::pathOf(const Ref<UIImage>& image) {
  auto& entry = _entries[image.get()];
  if (!entry.image) {
    entry.image = image;
    entry.number = ++_lastNumber;
  }
  entry.round = _round;
  return prefix + std::to_string(entry.number);
}

void ShownImages::forgetUnshown() {
  std::vector<Entry> unshown;
  for (const auto& [image, entry] : _entries) {
    if (entry.round != _round) unshown.push_back(entry);
  }
  ++_round;
  if (unshown.size() <= mostForgotten) return;
  std::ranges::sort(unshown, std::greater<>(), &Entry::round);
  for (size_t i = mostForgotten; i < unshown.size(); ++i) _entries.erase(unshown[i].image.get());
}

void ShownImages::answer(const page::PageRequest& request, const page::PageReply& reply) const {
  const auto found = std::ranges::find_if(
      _entries, [&](const auto& entry) { return std::to_string(entry.second.number) == request.rest; });
  if (found == _entries.end()) return reply(page::PageAnswer::notFound());
  encoders().addOperationWithBlock([image = found->second.image, reply] { reply(answerWith(*image)); });
}

}  // namespace quaverly::screens
