#include "Host/Library/LeadingTagWriter.h"

#include <algorithm>
#include <utility>

#include "Host/Library/ID3v2Writing.h"
#include "Platform/AVFoundation/ID3v2Reading.h"

namespace quaverly::library {

using tags::ID3v2Frame;
using ArtworkKind = ArtworkChange::Kind;

LeadingTagWriter::LeadingTagWriter(SourceFrames& source, const TagChange& change)
    : _source(source), _change(change), _artwork(change.artwork.kind) {
  for (const Field field : decidedFields) {
    if (!source.readTo(valueOf(change.wanted, field), field)) _changed.push_back(field);
  }
  _due = _changed;
  if (_artwork == ArtworkKind::replace && source.shows(change.artwork.image)) _artwork = ArtworkKind::keep;
  _coverDue = _artwork == ArtworkKind::replace;
}

std::optional<std::string> LeadingTagWriter::write() {
  for (const auto& frame : _source.frames()) add(frame);
  while (!_due.empty()) addText(_due.front());
  addFrontCover();
  return _fits && _source.isWhole() ? wholeTag(_source.version(), _frames) : std::nullopt;
}

void LeadingTagWriter::add(const ID3v2Frame& frame) {
  const auto field = tags::fieldOfFrame(frame.id);
  const auto followed = fieldFollowedBy(frame.id);
  if (std::ranges::find(_changed, field) != _changed.end()) {
    addText(field);
  } else if (tags::isPictureFrame(frame.id)) {
    addPicture(frame);
  } else if (!followed || !_change.changes(followed)) {
    appendRawFrame(_frames, frame);
  }
}

void LeadingTagWriter::addText(Field field) {
  if (std::erase(_due, field) == 0) return;
  const auto value = valueOf(_change.wanted, field);
  if (!value.empty()) _fits &= appendTextFrame(_frames, _source.version(), field, value);
}

void LeadingTagWriter::addPicture(const ID3v2Frame& frame) {
  if (_artwork == ArtworkKind::remove) return;
  addFrontCover();
  const bool isReplaced =
      _artwork == ArtworkKind::replace && _source.pictureKind(frame) == tags::Picture::frontCover;
  if (!isReplaced) appendRawFrame(_frames, frame);
}

void LeadingTagWriter::addFrontCover() {
  if (std::exchange(_coverDue, false))
    _fits &= appendFrontCover(_frames, _source.version(), _change.artwork.image.text());
}

}  // namespace quaverly::library
