#include "Host/Screens/ShownFonts.h"

#include <fcntl.h>

#include "Platform/Device/Device.h"

namespace quaverly::screens {
namespace {

constexpr const char* prefix = "/fonts/";

/// The font is one that the device knows; its file may be gone all the same.
page::PageAnswer answerWith(const std::string& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  auto contents = descriptor < 0 ? std::nullopt : NSData::dataWithDescriptor(descriptor);
  if (!contents) return page::PageAnswer::notFound();
  page::PageAnswer answer;
  answer.contentType = file.ends_with(".otf") ? "font/otf" : "font/ttf";
  answer.body = std::move(*contents);
  answer.cacheControl = "private, max-age=86400";
  return answer;
}

void answer(const page::PageRequest& request, const page::PageReply& reply) {
  const auto& files = Device::current().fontFiles;
  const auto found = files.find(request.rest);
  reply(found == files.end() ? page::PageAnswer::notFound() : answerWith(found->second));
}

}  // namespace

ShownFonts::ShownFonts(page::PageRoutes& routes) : _routes(routes) {
  _routes.add(page::PageMethod::get, prefix, answer);
}

ShownFonts::~ShownFonts() {
  _routes.remove(page::PageMethod::get, prefix);
}

}  // namespace quaverly::screens
