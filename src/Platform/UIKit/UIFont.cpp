#include "Platform/UIKit/UIFont.h"

#include "Platform/Device/Device.h"
#include "Platform/UIKit/FontFace.h"

namespace quaverly {
namespace {

double inPoints(const UIFont& font, int64_t FontFace::Metrics::*metric) {
  const auto& face = FontFace::forName(font.fontName());
  return face.points(face.metrics().*metric, font.pointSize());
}

}  // namespace

double UIFont::ascender() const {
  return inPoints(*this, &FontFace::Metrics::ascender);
}

double UIFont::descender() const {
  return inPoints(*this, &FontFace::Metrics::descender);
}

double UIFont::leading() const {
  return inPoints(*this, &FontFace::Metrics::gap);
}

double UIFont::lineHeight() const {
  return inPoints(*this, &FontFace::Metrics::lineHeight);
}

std::optional<std::string> UIFont::fileForName(std::string_view name) {
  const auto& files = Device::current().fontFiles;
  auto found = files.find(name);
  if (found == files.end()) found = files.find("Arial");
  return found == files.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace quaverly
