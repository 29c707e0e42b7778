#include "Support/KeptDownloads.h"

#include <utility>

namespace quaverly::test {
namespace {

std::string shown(const SSDownloadMetadata::Value& value) {
  struct Show {
    std::string operator()(std::monostate) const { return "nothing"; }
    std::string operator()(bool flag) const { return flag ? "YES" : "NO"; }
    std::string operator()(int32_t number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return '"' + text + '"'; }
    std::string operator()(const NSURL& url) const { return "<" + url.absoluteString() + ">"; }
    std::string operator()(Clock::Date date) const {
      return "@" + std::to_string(date.time_since_epoch() / std::chrono::seconds(1));
    }
  };
  return std::visit(Show{}, value);
}

}  // namespace

KeptDownloads::KeptDownloads() {
  SSDownloadManager::registerService(this);
}

KeptDownloads::~KeptDownloads() {
  completeAll();
  SSDownloadManager::registerService(nullptr);
}

void KeptDownloads::addDownloads(const std::vector<Ref<SSDownload>>& downloads) {
  batches.push_back(downloads.size());
  kept.insert(kept.end(), downloads.begin(), downloads.end());
}

void KeptDownloads::completeAll() {
  for (const auto& download : std::exchange(kept, {})) download->complete();
}

std::vector<std::string> KeptDownloads::lines(size_t index) const {
  std::vector<std::string> lines;
  for (const auto& [name, value] : kept.at(index)->metadata()->assignments())
    lines.push_back(std::string(name) + " " + shown(value));
  return lines;
}

}  // namespace quaverly::test
