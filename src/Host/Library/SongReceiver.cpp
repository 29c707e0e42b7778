#include "Host/Library/SongReceiver.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace quaverly::library {
namespace {

using std::chrono::steady_clock;

/// Often enough for a bar that moves, seldom enough to cost nothing.
constexpr std::chrono::milliseconds progressInterval{100};

std::span<const std::byte> bytesOf(const std::string& text) {
  return std::as_bytes(std::span(text));
}

}  // namespace

SongReceiver::SongReceiver(const SongOffer& offer, PartFile& part, OnProgress onProgress,
                           std::stop_token stop)
    : _offer(offer), _part(part), _onProgress(std::move(onProgress)), _stop(std::move(stop)) {}

MaybeFailure SongReceiver::begin() {
  _began = _told = steady_clock::now();
  uint64_t length = _offer.file.audioLength;
  if (_offer.rewritten) length += _offer.rewritten->head.size() + _offer.rewritten->tail.size();
  if (auto failure = _part.reserve(length)) return failure;
  return _offer.rewritten ? _part.append(bytesOf(_offer.rewritten->head)) : std::nullopt;
}

bool SongReceiver::receive(std::span<const std::byte> bytes) {
  const auto audio = audioIn(bytes);
  _received += bytes.size();
  _failure = _part.append(audio);
  return !_failure;
}

std::span<const std::byte> SongReceiver::audioIn(std::span<const std::byte> bytes) const {
  const uint64_t begin = std::max(_received, _offer.file.audioOffset);
  const uint64_t end = std::min(_received + bytes.size(), _offer.file.audioOffset + _offer.file.audioLength);
  if (begin >= end) return {};
  return bytes.subspan(begin - _received, end - begin);
}

bool SongReceiver::goesOn(uint64_t, uint64_t announced) {
  if (_stop.stop_requested()) return false;
  if (steady_clock::now() - _told >= progressInterval) tellProgress(announced);
  return true;
}

void SongReceiver::tellProgress(uint64_t total) {
  _told = steady_clock::now();
  const std::chrono::duration<double> taken = _told - _began;
  const double seconds = std::max(taken.count(), 1e-6);
  _onProgress({_received, total, static_cast<double>(_received) / seconds});
}

MaybeFailure SongReceiver::end() {
  tellProgress(_offer.file.length);
  if (_received == 0) return Failure{"The import server sent nothing. Is the file still there?"};
  if (_received != _offer.file.length) return sourceChanged();
  if (_offer.rewritten) {
    if (auto failure = _part.append(bytesOf(_offer.rewritten->tail))) return failure;
  }
  return _part.finish();
}

}  // namespace quaverly::library
