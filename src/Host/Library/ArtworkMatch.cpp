#include "Host/Library/ArtworkMatch.h"

#include "Platform/UIKit/UIImage.h"

namespace quaverly::library {

bool isSamePicture(const NSData& replacement, tags::Bytes original) {
  if (replacement.text() == tags::asText(original)) return true;
  const auto image = UIImage::imageWithData(NSData(tags::asText(original)));
  const auto staged = image ? UIImageJPEGRepresentation(*image, 1.0) : std::nullopt;
  return staged && staged->text() == replacement.text();
}

}  // namespace quaverly::library
