#include "Platform/Foundation/RemoteData.h"

#include <curl/curl.h>

#include <memory>

namespace quaverly {
namespace {

constexpr long mostRedirects = 5;
constexpr long statusOK = 200;
constexpr const char* protocols = "http,https";

struct Cleanup {
  void operator()(CURL* transfer) const { curl_easy_cleanup(transfer); }
};
using Transfer = std::unique_ptr<CURL, Cleanup>;

struct Body {
  std::string bytes;
  uint64_t mostBytes;
};

/// The library's own state lives as long as the program.
void initializeOnce() {
  static const CURLcode initialized = curl_global_init(CURL_GLOBAL_NOTHING);
  (void)initialized;
}

size_t onBody(const char* bytes, size_t, size_t count, void* receiver) {
  auto& body = *static_cast<Body*>(receiver);
  if (count > body.mostBytes - body.bytes.size()) return 0;  // which gives it up
  body.bytes.append(bytes, count);
  return count;
}

void setManners(CURL* transfer) {
  curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, protocols);
  curl_easy_setopt(transfer, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
  curl_easy_setopt(transfer, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(transfer, CURLOPT_MAXREDIRS, mostRedirects);
  curl_easy_setopt(transfer, CURLOPT_PROXY, "");  // and so none from the environment
  curl_easy_setopt(transfer, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(transfer, CURLOPT_NOSIGNAL, 1L);
}

void setLimits(CURL* transfer, const NSDataLimits& limits) {
  curl_easy_setopt(transfer, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits.remoteBytes));
  curl_easy_setopt(transfer, CURLOPT_TIMEOUT_MS, static_cast<long>(limits.remoteTime.count()));
}

bool succeeded(CURL* transfer) {
  long status = 0;
  return curl_easy_perform(transfer) == CURLE_OK &&
         curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status) == CURLE_OK && status == statusOK;
}

}  // namespace

std::optional<NSData> remoteData(const std::string& url, const NSDataLimits& limits) {
  initializeOnce();
  const Transfer transfer(curl_easy_init());
  if (!transfer) return std::nullopt;
  Body body{{}, limits.remoteBytes};
  setManners(transfer.get());
  setLimits(transfer.get(), limits);
  curl_easy_setopt(transfer.get(), CURLOPT_URL, url.c_str());
  curl_easy_setopt(transfer.get(), CURLOPT_WRITEFUNCTION, onBody);
  curl_easy_setopt(transfer.get(), CURLOPT_WRITEDATA, &body);
  if (!succeeded(transfer.get())) return std::nullopt;
  return NSData(std::move(body.bytes));
}

}  // namespace quaverly
