#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <stop_token>
#include <string>

#include "Host/Mail/MailMessage.h"
#include "Host/Mail/Sendmail.h"
#include "Host/Page/PageRoutes.h"
#include "Platform/Foundation/NSOperationQueue.h"
#include "Platform/MessageUI/MFMailComposeViewController.h"

namespace quaverly::screens {

/// The mails that people finish on a page: what the page fetches of one, and what becomes of it.
/// docs/page-protocol.md has the addresses. Bodies are cleaned, and mails sent, on a worker. Main thread; one
/// at a time.
class MailSheets : public MFMailService {
 public:
  /// Where the system's mailer is, or nothing; how long it may take. The routes must outlive it.
  MailSheets(page::PageRoutes& routes, std::optional<host::Sendmail> mailer,
             std::chrono::milliseconds within = host::Sendmail::limit);
  /// Ends a mailer that is still at work.
  ~MailSheets() override;
  MailSheets(const MailSheets&) = delete;
  MailSheets& operator=(const MailSheets&) = delete;

  /// Always: a draft can be kept.
  bool canSendMail() const override { return true; }
  bool canSendAtOnce() const override { return _mailer.has_value(); }

  /// The person closed the mail, or has kept it as a draft. A number that is no mail's does nothing.
  void cancel(uint64_t node);
  void finish(uint64_t node);

 private:
  void answerBody(const page::PageRequest& request, const page::PageReply& reply) const;
  void answerAttachment(const page::PageRequest& request, const page::PageReply& reply) const;
  void take(const page::PageRequest& request, const page::PageReply& reply);
  void save(host::MailMessage message, const page::PageReply& reply);
  void send(uint64_t node, host::MailMessage message, const page::PageReply& reply);
  void sent(uint64_t node, const std::optional<std::string>& problem, const page::PageReply& reply);

  page::PageRoutes& _routes;
  std::optional<host::Sendmail> _mailer;
  std::chrono::milliseconds _within;
  std::map<uint64_t, std::stop_source> _sending;  // by the mail's view
  std::map<uint64_t, std::string> _problems;      // why the last try failed
  NSOperationQueue _workers;
};

}  // namespace quaverly::screens
