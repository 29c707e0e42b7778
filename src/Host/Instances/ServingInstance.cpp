#include "Host/Instances/ServingInstance.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Host/Instances/InstanceSocket.h"
#include "Host/Instances/JsonLines.h"
#include "Host/Library/DownloadTaking.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::instances {
namespace {

using library::DownloadID;
using library::DownloadObserver;
using library::DownloadRecord;
using library::DownloadState;
using library::Failure;
using library::MaybeFailure;

/// How long another instance may take to answer.
constexpr std::chrono::seconds patience{5};

constexpr const char* instanceEnded =
    "The quaverly that serves has ended. The next import goes on with this one.";

/// Runs the main loop until `condition` holds or patience ends.
void awaitThat(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (!condition() && std::chrono::steady_clock::now() < end) {
    NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(20));
  }
}

}  // namespace

std::optional<ServingPage> askForPage(const std::string& dataFolder) {
  std::shared_ptr<Descriptor> connection;
  awaitThat([&] { return (connection = connectIn(dataFolder)) != nullptr; });
  if (!connection) return std::nullopt;
  std::string answer;
  bool isOver = false;
  LineChannel channel(
      std::move(connection), [&](const std::string& line) { answer = line; }, [&] { isOver = true; });
  channel.send(lineOf({{"ask", "address"}}));
  awaitThat([&] { return isOver || !answer.empty(); });
  const auto json = objectIn(answer);
  if (text(json, "address").empty()) return std::nullopt;
  return ServingPage{text(json, "address"), number<int>(json, "process")};
}

library::Result<std::unique_ptr<ServingInstance>> ServingInstance::find(
    const library::LibrarySettings& settings) {
  auto connection = connectIn(settings.dataFolder);
  if (!connection) return std::unique_ptr<ServingInstance>();
  auto catalogue = library::Catalogue::open(settings.dataFolder);
  if (!catalogue) return catalogue.failure();
  std::unique_ptr<ServingInstance> instance(new ServingInstance(settings, *std::move(catalogue)));
  if (auto failure = instance->begin(std::move(connection), settings.libraryFolder)) return *failure;
  if (instance->_isOver) instance.reset();
  return instance;
}

ServingInstance::ServingInstance(const library::LibrarySettings& settings, library::Catalogue catalogue)
    : _catalogue(std::move(catalogue)), _artwork(settings.dataFolder) {}

MaybeFailure ServingInstance::begin(std::shared_ptr<Descriptor> connection, const std::string& library) {
  _channel = std::make_unique<LineChannel>(
      std::move(connection), [this](const std::string& line) { hear(line); }, [this] { lose(); });
  _channel->send(lineOf({{"ask", "import"}, {"library", library}}));
  awaitThat([this] { return _isOver || !_greeting.empty(); });
  if (_isOver && _greeting.empty()) return std::nullopt;
  const auto greeting = objectIn(_greeting);
  const std::string process = std::to_string(number<int>(greeting, "process"));
  const std::string answer = text(greeting, "answer");
  if (answer == "ready") return std::nullopt;
  if (answer == "other library") {
    return Failure{"Another quaverly (process " + process + ") serves this data folder with the library " +
                   text(greeting, "library") + ". End it, or name that library, or another --data."};
  }
  return Failure{"Another quaverly serves this data folder and does not answer. End it, then try again."};
}

void ServingInstance::addDownloads(const std::vector<Ref<SSDownload>>& downloads) {
  for (const auto& download : downloads) {
    if (download) handOver(download);
  }
}

void ServingInstance::handOver(const Ref<SSDownload>& download) {
  const auto record = takeOver(library::recordOf(*download), _catalogue, _artwork);
  if (!record) return refuse(download, record.failure());
  _latest = record->id;
  _pending.emplace(record->id, download);
  _channel->send(lineOf({{"take", record->id}}));
}

void ServingInstance::refuse(const Ref<SSDownload>& download, const Failure& failure) {
  ++_refused;
  auto record = library::recordOf(*download);
  record.state = DownloadState::failed;
  record.reason = failure.reason;
  later([this, record, download] {
    --_refused;
    tell([&](DownloadObserver& observer) { observer.downloadEnded(record); });
    download->complete();
  });
}

void ServingInstance::stop() {
  if (std::exchange(_isOver, true)) return;
  later([this] {
    const auto records = recordsPending();
    for (const auto& [id, download] : std::exchange(_pending, {})) download->complete();
    tell([&](DownloadObserver& observer) { observer.serviceStopped(records); });
  });
}

void ServingInstance::hear(const std::string& line) {
  if (_greeting.empty()) {
    _greeting = line;
    return;
  }
  const auto json = objectIn(line);
  const std::string event = text(json, "event");
  const auto id = number<DownloadID>(json, "download");
  if (event == "waits") {
    tell([&](DownloadObserver& observer) { observer.serviceWaits(text(json, "why")); });
  } else if (event == "stopped") {
    stop();
  } else if (!_pending.contains(id)) {
    return;
  } else if (event == "started") {
    tell([&](DownloadObserver& observer) { observer.downloadStarted(recordNow(id)); });
  } else if (event == "progressed") {
    const library::DownloadProgress progress{number<uint64_t>(json, "bytes"), number<uint64_t>(json, "total"),
                                             number<double>(json, "bytesPerSecond")};
    tell([&](DownloadObserver& observer) { observer.downloadProgressed(id, progress); });
  } else if (event == "ended") {
    auto record = recordNow(id);
    // A catalogue that could not be written any more says less than the line does.
    if (!isFinal(record.state)) {
      record.state = library::downloadStateNamed(text(json, "state")).value_or(DownloadState::failed);
      record.reason = text(json, "reason");
    }
    end(record);
  }
}

DownloadRecord ServingInstance::recordNow(DownloadID id) {
  auto found = _catalogue.download(id);
  DownloadRecord record = found && *found ? **std::move(found) : DownloadRecord{};
  record.id = id;
  return record;
}

void ServingInstance::end(const DownloadRecord& record) {
  const auto ended = _pending.extract(record.id);
  tell([&](DownloadObserver& observer) { observer.downloadEnded(record); });
  if (ended) ended.mapped()->complete();
}

// The other program was killed: what it had is queued, and resumes when somebody takes its turn.
void ServingInstance::lose() {
  if (std::exchange(_isOver, true)) return;
  for (auto record : recordsPending()) {
    if (!isFinal(record.state)) {
      record.state = DownloadState::failed;
      record.reason = instanceEnded;
    }
    end(record);
  }
  tell([](DownloadObserver& observer) { observer.serviceStopped({}); });
}

std::vector<DownloadRecord> ServingInstance::recordsPending() {
  std::vector<DownloadRecord> records;
  records.reserve(_pending.size());
  for (const auto& [id, download] : _pending) records.push_back(recordNow(id));
  return records;
}

void ServingInstance::later(std::function<void()> block) {
  NSRunLoop::mainRunLoop().performBlock([alive = std::weak_ptr(_alive), block = std::move(block)] {
    if (alive.lock()) block();
  });
}

void ServingInstance::tell(const std::function<void(DownloadObserver&)>& event) {
  const auto observers = _observers;
  for (auto* observer : observers) {
    if (std::ranges::find(_observers, observer) != _observers.end()) event(*observer);
  }
}

}  // namespace quaverly::instances
