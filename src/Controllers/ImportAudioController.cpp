#include "Controllers/ImportAudioController.h"

namespace quaverly {

ImportAudioController* ImportAudioController::init() {
  if (!PSViewController::init()) return nullptr;
  _titleLabel = make<UILabel>();
  _subTitleLabel = make<UILabel>();
  _statusLabel = make<UILabel>();
  return this;
}

void ImportAudioController::setSubTitle(std::string subTitle) {
  send(_subTitleLabel, &UILabel::setText, std::move(subTitle));
}

}  // namespace quaverly
