#include "Platform/UIKit/UILabel.h"
#include "Platform/UIKit/TextMeasuring.h"

namespace quaverly {

CGSize UILabel::sizeThatFits(CGSize limit) const {
  if (!_text || _text->empty()) return {};
  if (_numberOfLines == 1) return sizeOfText(*_text, _font);
  return sizeOfTextInWidth(*_text, _font, limit.width, static_cast<size_t>(_numberOfLines));
}

}  // namespace quaverly
