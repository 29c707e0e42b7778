#include "Host/Page/StaticFiles.h"

#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <utility>

#include "Host/Library/FileDescriptor.h"

namespace quaverly::page {
namespace {

namespace fs = std::filesystem;

constexpr std::array contentTypes{
    std::pair{".html", "text/html; charset=utf-8"},
    std::pair{".css", "text/css; charset=utf-8"},
    std::pair{".js", "text/javascript; charset=utf-8"},
    std::pair{".json", "application/json"},
    std::pair{".svg", "image/svg+xml"},
    std::pair{".png", "image/png"},
    std::pair{".jpg", "image/jpeg"},
    std::pair{".ico", "image/x-icon"},
    std::pair{".woff2", "font/woff2"},
    std::pair{".ttf", "font/ttf"},
    std::pair{".otf", "font/otf"},
    std::pair{".txt", "text/plain; charset=utf-8"},
    std::pair{".mp3", "audio/mpeg"},
    std::pair{".flac", "audio/flac"},
    std::pair{".m4a", "audio/mp4"},
    std::pair{".ogg", "audio/ogg"},
    std::pair{".opus", "audio/ogg"},
};

/// Changes whenever the file does.
std::string entityTagOf(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return {};
  return std::to_string(status.st_size) + "-" + std::to_string(status.st_mtim.tv_sec) + "-" +
         std::to_string(status.st_mtim.tv_nsec);
}

}  // namespace

std::string contentTypeOf(std::string_view fileName) {
  for (const auto& [ending, type] : contentTypes) {
    if (fileName.ends_with(ending)) return type;
  }
  return "application/octet-stream";
}

StaticFiles::StaticFiles(std::string folder) : _folder(std::move(folder)) {
  std::error_code error;
  for (fs::recursive_directory_iterator entry(_folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored)) _names.insert(entry->path().lexically_relative(_folder).string());
  }
}

void StaticFiles::addTo(PageRoutes& routes) const {
  routes.add(PageMethod::get, "/", [files = *this](const PageRequest& request, const PageReply& reply) {
    const std::string name = request.rest.empty() ? "index.html" : request.rest;
    auto answer = files.has(name) ? files.file(name) : std::nullopt;
    reply(answer ? *std::move(answer) : PageAnswer::notFound());
  });
}

std::optional<PageAnswer> StaticFiles::file(const std::string& name) const {
  auto file = library::FileDescriptor::openForReading(_folder + "/" + name);
  if (!file) return std::nullopt;
  PageAnswer answer;
  answer.contentType = contentTypeOf(name);
  answer.entityTag = entityTagOf(file.get());
  auto body = NSData::dataWithDescriptor(file.release());
  if (!body) return std::nullopt;
  answer.body = *std::move(body);
  return answer;
}

}  // namespace quaverly::page
