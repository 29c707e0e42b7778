#include "Host/Screens/MailSheets.h"

#include <charconv>
#include <functional>

#include "Host/Environment/HostWords.h"
#include "Host/Mail/HtmlCleaning.h"
#include "Host/Screens/EnteredMail.h"
#include "Host/Screens/ReachableViews.h"
#include "Platform/MessageUI/MFMailComposeView.h"

namespace quaverly::screens {
namespace {

using page::PageAnswer;
using page::PageMethod;
using page::PageReply;
using page::PageRequest;

constexpr const char* path = "/mail";
constexpr const char* bodyPath = "/mail/body";
constexpr const char* attachmentPath = "/mail/attachment";

constexpr const char* closed = "This mail is closed already.";
constexpr const char* tooLong = "The text is too long for a mail. Shorten it.";

/// Nothing runs in the frame that the body is edited in, and nothing is fetched for it.
constexpr const char* bodyPolicy =
    "default-src 'none'; style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'; "
    "frame-ancestors 'self'; sandbox allow-same-origin";
constexpr const char* attachmentPolicy = "default-src 'none'; frame-ancestors 'none'";

constexpr const char* bodyHead =
    "<!doctype html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>Mail</title>\n"
    "<style>body{margin:0;padding:12px 16px 40px;font:16px/1.4 sans-serif;overflow-wrap:anywhere;"
    "outline:none;background:white;color:black}</style>\n</head>\n<body>";

PageAnswer said(int status, std::string_view sentence) {
  PageAnswer answer;
  answer.status = status;
  answer.contentType = "text/plain; charset=utf-8";
  answer.body = NSData(host::inUsersLanguage(sentence));
  return answer;
}

Ref<MFMailComposeViewController> mailOf(uint64_t node) {
  return reachableController<MFMailComposeView>(node);
}

Ref<MFMailComposeViewController> mailOf(const PageRequest& request) {
  return mailOf(nodeIn(request.query).value_or(0));
}

PageAnswer draftOf(const host::MailMessage& message) {
  PageAnswer answer;
  answer.contentType = "message/rfc822";
  answer.cacheControl = "no-store";
  answer.moreFields.emplace_back("Content-Disposition", "attachment; filename=\"mail.eml\"");
  answer.body = NSData(mimeTextOf(message, host::MailForm::draft));
  return answer;
}

void onMainThread(std::function<void()> block) {
  NSOperationQueue::mainQueue().addOperationWithBlock(std::move(block));
}

}  // namespace

MailSheets::MailSheets(page::PageRoutes& routes, std::optional<host::Sendmail> mailer,
                       std::chrono::milliseconds within)
    : _routes(routes), _mailer(std::move(mailer)), _within(within) {
  MFMailComposeViewController::registerService(this);
  _routes.add(PageMethod::get, bodyPath,
              [this](const auto& request, const auto& reply) { answerBody(request, reply); });
  _routes.add(PageMethod::get, attachmentPath,
              [this](const auto& request, const auto& reply) { answerAttachment(request, reply); });
  _routes.add(PageMethod::post, path,
              [this](const auto& request, const auto& reply) { take(request, reply); });
}

MailSheets::~MailSheets() {
  for (auto& [node, stop] : _sending) stop.request_stop();
  _routes.remove(PageMethod::get, bodyPath);
  _routes.remove(PageMethod::get, attachmentPath);
  _routes.remove(PageMethod::post, path);
  MFMailComposeViewController::registerService(nullptr);
}

void MailSheets::answerBody(const PageRequest& request, const PageReply& reply) const {
  const auto mail = mailOf(request);
  if (!mail || !request.rest.empty()) return reply(PageAnswer::notFound());
  PageAnswer answer;
  answer.contentType = "text/html; charset=utf-8";
  answer.cacheControl = "no-store";
  answer.contentSecurityPolicy = bodyPolicy;
  answer.body = NSData(bodyHead + bodyOf(*mail) + "</body></html>");
  reply(std::move(answer));
}

void MailSheets::answerAttachment(const PageRequest& request, const PageReply& reply) const {
  const auto mail = mailOf(request);
  const std::string_view digits = parameterIn(request.query, "index");
  size_t index = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), index);
  const bool isNamed = mail && result.ec == std::errc() && index < mail->attachments().size();
  if (!isNamed || !request.rest.empty()) return reply(PageAnswer::notFound());
  PageAnswer answer;
  // Whatever it is, it is shown as text and does nothing.
  answer.contentType = "text/plain; charset=utf-8";
  answer.cacheControl = "no-store";
  answer.contentSecurityPolicy = attachmentPolicy;
  answer.body = mail->attachments()[index].data;
  reply(std::move(answer));
}

void MailSheets::take(const PageRequest& request, const PageReply& reply) {
  const auto node = nodeIn(request.query).value_or(0);
  const auto mail = mailOf(node);
  if (!mail) return reply(said(409, closed));
  const std::string_view action = parameterIn(request.query, "action");
  const bool sends = action == "send" && _mailer;
  if ((!sends && action != "save") || !request.rest.empty()) return reply(said(400, ""));
  if (_sending.contains(node)) return reply(said(409, "This mail is on its way already."));
  auto entered = enteredMail(request.body, *mail, sends ? MailUse::send : MailUse::keep);
  if (!entered.problem.empty()) return reply(said(422, entered.problem));
  return sends ? send(node, std::move(entered.message), reply) : save(std::move(entered.message), reply);
}

void MailSheets::save(host::MailMessage message, const PageReply& reply) {
  _workers.addOperationWithBlock([message = std::move(message), reply]() mutable {
    const auto html = host::cleanedHtml(message.htmlBody);
    if (!html) return reply(said(422, tooLong));
    message.htmlBody = *html;
    reply(draftOf(message));
  });
}

void MailSheets::send(uint64_t node, host::MailMessage message, const PageReply& reply) {
  const std::stop_source stop;
  _sending[node] = stop;
  _workers.addOperationWithBlock([this, node, message = std::move(message), mailer = *_mailer,
                                  within = _within, stop = stop.get_token(), reply]() mutable {
    const auto html = host::cleanedHtml(message.htmlBody);
    if (html) message.htmlBody = *html;
    const auto problem =
        html ? mailer.send(mimeTextOf(message, host::MailForm::forMailer), within, stop) : tooLong;
    if (!stop.stop_requested())
      onMainThread([this, node, problem, stop, reply] {
        // Whoever asked for a stop waits no longer, and may be gone.
        if (!stop.stop_requested()) sent(node, problem, reply);
      });
  });
}

void MailSheets::sent(uint64_t node, const std::optional<std::string>& problem, const PageReply& reply) {
  _sending.erase(node);
  if (problem) {
    _problems[node] = *problem;
    return reply(said(502, *problem));
  }
  PageAnswer done;
  done.status = 204;
  reply(std::move(done));
  if (const auto mail = mailOf(node)) mail->finishWithResultError(MFMailComposeResult::sent, nullptr);
  _problems.erase(node);
}

/// Whoever gives up after a mailer that failed has a mail that failed.
void MailSheets::cancel(uint64_t node) {
  if (const auto sending = _sending.find(node); sending != _sending.end()) {
    sending->second.request_stop();
    _sending.erase(sending);
  }
  const auto mail = mailOf(node);
  if (!mail) return;
  const auto problem = _problems.extract(node);
  if (!problem) return mail->finishWithResultError(MFMailComposeResult::cancelled, nullptr);
  mail->finishWithResultError(
      MFMailComposeResult::failed,
      make<NSError>(MFMailComposeErrorDomain, MFMailComposeErrorCodeSendFailed,
                    std::map<std::string, std::string>{{NSLocalizedDescriptionKey, problem.mapped()}}));
}

void MailSheets::finish(uint64_t node) {
  _problems.erase(node);
  if (const auto mail = mailOf(node)) mail->finishWithResultError(MFMailComposeResult::saved, nullptr);
}

}  // namespace quaverly::screens
