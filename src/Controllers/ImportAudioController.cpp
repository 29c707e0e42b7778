#include "Controllers/ImportAudioController.h"

namespace quaverly {

ImportAudioController* ImportAudioController::init() {
  if (!PSViewController::init()) return nullptr;
  _titleLabel = make<UILabel>();
  _subTitleLabel = make<UILabel>();
  _statusLabel = make<UILabel>();
  return this;
}

void ImportAudioController::loadView() {
  const UITargetAction back(this, &ImportAudioController::backBrowser);
  _temporaryBarButtonItem = make<UIBarButtonItem>(std::nullopt, back);
  _openedFolder = make<NSMutableString>("/var/mobile/Media");
  setItems(ItemsInFolder(_openedFolder->string()));
}

void ImportAudioController::setItems(std::vector<FileItem> items) {
  setFileItems(std::move(items));
}

void ImportAudioController::setSubTitle(std::string subTitle) {
  send(_subTitleLabel, &UILabel::setText, std::move(subTitle));
}

}  // namespace quaverly
