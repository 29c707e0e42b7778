#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>

#include "Host/Library/DownloadObserver.h"
#include "Host/Library/Fetch.h"
#include "Host/Library/PartFile.h"
#include "Host/Library/SongOffer.h"

namespace quaverly::library {

/// Writes a song as it comes: of MPEG audio the new tag first, then the audio alone; other kinds whole.
class SongReceiver : public BodyReceiver {
 public:
  using OnProgress = std::function<void(const DownloadProgress&)>;

  /// Offer and part must outlive the receiver.
  SongReceiver(const SongOffer& offer, PartFile& part, OnProgress onProgress, std::stop_token stop);

  /// Makes room and writes what stands before the audio.
  MaybeFailure begin();
  bool receive(std::span<const std::byte> bytes) override;
  bool goesOn(uint64_t received, uint64_t announced) override;
  /// Once all has come: checks that it is as long as what was offered, and writes what stands behind the
  /// audio.
  MaybeFailure end();

  /// Why the receiver gave the fetch up, when the disk was the reason.
  const MaybeFailure& failure() const { return _failure; }

 private:
  std::span<const std::byte> audioIn(std::span<const std::byte> bytes) const;
  void tellProgress(uint64_t total);

  const SongOffer& _offer;
  PartFile& _part;
  OnProgress _onProgress;
  std::stop_token _stop;
  uint64_t _received = 0;
  std::chrono::steady_clock::time_point _began;
  std::chrono::steady_clock::time_point _told;
  MaybeFailure _failure;
};

}  // namespace quaverly::library
