#pragma once

#include "Platform/StoreServices/SSDownloadManager.h"

namespace quaverly::commandline {

/// Puts a service behind the download manager while it lives.
class ServiceRegistration {
 public:
  explicit ServiceRegistration(SSDownloadService& service) { SSDownloadManager::registerService(&service); }
  ~ServiceRegistration() { SSDownloadManager::registerService(nullptr); }
  ServiceRegistration(const ServiceRegistration&) = delete;
  ServiceRegistration& operator=(const ServiceRegistration&) = delete;
};

}  // namespace quaverly::commandline
