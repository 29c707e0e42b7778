#pragma once

#include <optional>
#include <string>

#include "Controllers/ImportAudioController.h"
#include "Host/CommandLine/Console.h"
#include "Host/CommandLine/HostDevice.h"
#include "Host/CommandLine/Options.h"
#include "Host/Library/Result.h"
#include "Other/QVClasses.h"
#include "Platform/Foundation/NSData.h"

namespace quaverly::commandline {

/// Takes a named file along the road of a song as far as the download manager: reader, record, importer.
/// The device, the options and the console must outlive it. Main thread.
class SongHandOver {
 public:
  SongHandOver(HostDevice& device, const ImportOptions& options, const Console& console);

  /// Reads the picture that the options name. Fails when it is none; without one there is nothing to do.
  library::MaybeFailure prepareArtwork();

  /// Hands the file's song over to the service behind the download manager, which keeps a file from outside
  /// the media folder reachable from then on; or says why not. Remarks on numbers that will not be read as
  /// such.
  library::MaybeFailure handOver(const std::string& file);

 private:
  void edit(iTunesSongItem& song) const;
  void stageArtwork(iTunesSongItem& song) const;
  void remarkOnNumbers(const std::string& file, const iTunesSongItem& song) const;

  HostDevice& _device;
  const ImportOptions& _options;
  const Console& _console;
  Ref<ImportAudioController> _browser;
  std::optional<NSData> _artwork;  // as the editor would stage it
};

}  // namespace quaverly::commandline
