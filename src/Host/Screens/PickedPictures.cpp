#include "Host/Screens/PickedPictures.h"

#include "Host/Environment/HostWords.h"
#include "Host/Screens/ReachableViews.h"
#include "Host/Screens/ScreenEvents.h"
#include "Platform/Foundation/NSOperationQueue.h"

namespace quaverly::screens {
namespace {

constexpr const char* path = "/picked";

NSOperationQueue& decoders() {
  static NSOperationQueue queue;
  return queue;
}

page::PageAnswer refusal(int status, std::string_view sentence) {
  page::PageAnswer answer;
  answer.status = status;
  answer.contentType = "text/plain; charset=utf-8";
  answer.body = NSData(host::inUsersLanguage(sentence));
  return answer;
}

/// Null for what is no picture, or one that is damaged or too large.
Ref<UIImage> decoded(const NSData& file) {
  const auto image = UIImage::imageWithData(file);
  return image ? UIImage::imageWithCGImage(image->bitmap()) : nullptr;
}

void give(const Ref<UIImage>& image, uint64_t node, const page::PageReply& reply) {
  const auto picker = ScreenEvents::pickerOfNode(node);
  if (!picker) return reply(refusal(409, "Nobody waits for a picture any more."));
  if (!image) return reply(refusal(415, "This is no picture that can be used. Choose a JPEG or PNG file."));
  picker->pick(image);
  page::PageAnswer taken;
  taken.status = 204;
  reply(std::move(taken));
}

void take(const page::PageRequest& request, const page::PageReply& reply) {
  const auto node = nodeIn(request.query);
  if (!node || !ScreenEvents::pickerOfNode(*node))
    return reply(refusal(409, "Nobody waits for a picture any more."));
  decoders().addOperationWithBlock([file = NSData(request.body), node = *node, reply] {
    NSOperationQueue::mainQueue().addOperationWithBlock(
        [image = decoded(file), node, reply] { give(image, node, reply); });
  });
}

}  // namespace

PickedPictures::PickedPictures(page::PageRoutes& routes) : _routes(routes) {
  decoders().setMaxConcurrentOperationCount(1);
  _routes.add(page::PageMethod::post, path, take);
}

PickedPictures::~PickedPictures() {
  _routes.remove(page::PageMethod::post, path);
}

}  // namespace quaverly::screens
