#include "Host/Library/Fetch.h"

#include <curl/curl.h>

#include <memory>

namespace quaverly::library {
namespace {

constexpr long receiveBuffer = 256 * 1024;
constexpr long statusOK = 200;

struct Cleanup {
  void operator()(CURL* transfer) const { curl_easy_cleanup(transfer); }
};
using Transfer = std::unique_ptr<CURL, Cleanup>;

struct FreeList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using List = std::unique_ptr<curl_slist, FreeList>;

/// The import server's name without asking anybody, which would take a thread and some waiting for each song.
constexpr const char* localAddress = "localhost:8080:127.0.0.1";

/// The library's own state lives as long as the program.
void initializeOnce() {
  static const CURLcode initialized = curl_global_init(CURL_GLOBAL_NOTHING);
  (void)initialized;
}

size_t onBody(const char* bytes, size_t, size_t count, void* receiver) {
  const auto body = std::as_bytes(std::span(bytes, count));
  return static_cast<BodyReceiver*>(receiver)->receive(body) ? count : 0;
}

int onProgress(void* receiver, curl_off_t announced, curl_off_t received, curl_off_t, curl_off_t) {
  const bool goesOn = static_cast<BodyReceiver*>(receiver)->goesOn(static_cast<uint64_t>(received),
                                                                   static_cast<uint64_t>(announced));
  return goesOn ? 0 : 1;
}

void keepToThisMachine(CURL* transfer) {
  curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, "http");
  curl_easy_setopt(transfer, CURLOPT_IPRESOLVE, CURL_IPRESOLVE_V4);
  curl_easy_setopt(transfer, CURLOPT_PROXY, "");  // and so none from the environment
  curl_easy_setopt(transfer, CURLOPT_FOLLOWLOCATION, 0L);
}

void setLimits(CURL* transfer, const FetchLimits& limits) {
  curl_easy_setopt(transfer, CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.connecting.count()));
  curl_easy_setopt(transfer, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(transfer, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.stalling.count()));
  curl_easy_setopt(transfer, CURLOPT_NOSIGNAL, 1L);
}

void setReceiver(CURL* transfer, BodyReceiver& receiver) {
  curl_easy_setopt(transfer, CURLOPT_BUFFERSIZE, receiveBuffer);
  curl_easy_setopt(transfer, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(transfer, CURLOPT_WRITEFUNCTION, onBody);
  curl_easy_setopt(transfer, CURLOPT_WRITEDATA, &receiver);
  curl_easy_setopt(transfer, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(transfer, CURLOPT_XFERINFOFUNCTION, onProgress);
  curl_easy_setopt(transfer, CURLOPT_XFERINFODATA, &receiver);
}

long statusOf(CURL* transfer) {
  long status = 0;
  curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

uint64_t received(CURL* transfer) {
  curl_off_t bytes = 0;
  curl_easy_getinfo(transfer, CURLINFO_SIZE_DOWNLOAD_T, &bytes);
  return static_cast<uint64_t>(bytes);
}

uint64_t announced(CURL* transfer) {
  curl_off_t bytes = 0;
  curl_easy_getinfo(transfer, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &bytes);
  return bytes < 0 ? 0 : static_cast<uint64_t>(bytes);
}

Failure failureOf(CURLcode code, CURL* transfer) {
  switch (code) {
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
      return {"The song broke off: only " + std::to_string(received(transfer)) + " of " +
              std::to_string(announced(transfer)) + " bytes came."};
    case CURLE_OPERATION_TIMEDOUT:
      return {"The import server stopped sending. Try again."};
    case CURLE_COULDNT_CONNECT:
      return {"The import server does not answer. Try again."};
    case CURLE_HTTP_RETURNED_ERROR:
      return {"The import server refused with status " + std::to_string(statusOf(transfer)) + "."};
    case CURLE_GOT_NOTHING:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL:
      return {"The import server gave no proper answer. Try again."};
    default:
      return {std::string("The song could not be fetched: ") + curl_easy_strerror(code) + "."};
  }
}

}  // namespace

Result<uint64_t> fetch(const std::string& url, const FetchLimits& limits, BodyReceiver& receiver) {
  initializeOnce();
  const List addresses(curl_slist_append(nullptr, localAddress));  // outlives the transfer, which borrows it
  const Transfer transfer(curl_easy_init());
  if (!transfer) return Failure{"There is not enough memory to fetch the song."};
  curl_easy_setopt(transfer.get(), CURLOPT_URL, url.c_str());
  keepToThisMachine(transfer.get());
  setLimits(transfer.get(), limits);
  setReceiver(transfer.get(), receiver);
  curl_easy_setopt(transfer.get(), CURLOPT_RESOLVE, addresses.get());
  const CURLcode code = curl_easy_perform(transfer.get());
  if (code != CURLE_OK) return failureOf(code, transfer.get());
  if (statusOf(transfer.get()) != statusOK) return failureOf(CURLE_HTTP_RETURNED_ERROR, transfer.get());
  return received(transfer.get());
}

}  // namespace quaverly::library
