#include "Host/Mail/MailMessage.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <memory>

#include "Platform/Foundation/NSString.h"

namespace quaverly::host {
namespace {

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <class T>
using Object = std::unique_ptr<T, Unref>;

struct FreeOptions {
  void operator()(GMimeFormatOptions* options) const { g_mime_format_options_free(options); }
};
using Options = std::unique_ptr<GMimeFormatOptions, FreeOptions>;

void initializeOnce() {
  static const bool initialized = [] {
    g_mime_init();
    return true;
  }();
  static_cast<void>(initialized);
}

std::string headerText(std::string_view text) {
  std::string clean = NSStringWithReplacements(text);
  std::ranges::replace_if(
      clean, [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
  return clean;
}

/// Lines of text stay readable; single carriage returns and NULs would not survive as lines.
GMimeContentEncoding encodingOf(std::string_view body) {
  using namespace std::string_view_literals;
  return body.find_first_of("\r\0"sv) == std::string_view::npos ? GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE
                                                                : GMIME_CONTENT_ENCODING_BASE64;
}

/// A part that holds a copy of the bytes.
Object<GMimePart> partOf(const std::string& mimeType, std::string_view bytes, GMimeContentEncoding encoding) {
  const size_t slash = std::min(mimeType.find('/'), mimeType.size());
  const std::string subtype = slash < mimeType.size() ? mimeType.substr(slash + 1) : "octet-stream";
  Object<GMimePart> part(g_mime_part_new_with_type(mimeType.substr(0, slash).c_str(), subtype.c_str()));
  const Object<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
  const Object<GMimeDataWrapper> content(
      g_mime_data_wrapper_new_with_stream(stream.get(), GMIME_CONTENT_ENCODING_DEFAULT));
  g_mime_part_set_content(part.get(), content.get());
  g_mime_part_set_content_encoding(part.get(), encoding);
  return part;
}

Object<GMimePart> bodyPart(const std::string& html) {
  auto part = partOf("text/html", html, encodingOf(html));
  g_mime_object_set_content_type_parameter(GMIME_OBJECT(part.get()), "charset", "utf-8");
  return part;
}

Object<GMimePart> attachmentPart(const MailMessage::Attachment& attachment) {
  auto part = partOf(attachment.mimeType, attachment.data.text(), GMIME_CONTENT_ENCODING_BASE64);
  g_mime_object_set_disposition(GMIME_OBJECT(part.get()), GMIME_DISPOSITION_ATTACHMENT);
  g_mime_part_set_filename(part.get(), headerText(attachment.fileName).c_str());
  return part;
}

Object<GMimeMultipart> contentOf(const MailMessage& message) {
  Object<GMimeMultipart> content(g_mime_multipart_new_with_subtype("mixed"));
  g_mime_multipart_add(content.get(), GMIME_OBJECT(bodyPart(message.htmlBody).get()));
  for (const auto& attachment : message.attachments)
    g_mime_multipart_add(content.get(), GMIME_OBJECT(attachmentPart(attachment).get()));
  return content;
}

std::string written(GMimeMessage* message, MailForm form) {
  const Options options(g_mime_format_options_new());
  g_mime_format_options_set_newline_format(
      options.get(), form == MailForm::draft ? GMIME_NEWLINE_FORMAT_DOS : GMIME_NEWLINE_FORMAT_UNIX);
  const std::unique_ptr<char, void (*)(gpointer)> text(
      g_mime_object_to_string(GMIME_OBJECT(message), options.get()), g_free);
  return text.get();
}

}  // namespace

std::string mimeTextOf(const MailMessage& message, MailForm form) {
  initializeOnce();
  const Object<GMimeMessage> mail(g_mime_message_new(true));
  for (const auto& address : message.to)
    g_mime_message_add_mailbox(mail.get(), GMIME_ADDRESS_TYPE_TO, nullptr, headerText(address).c_str());
  g_mime_message_set_subject(mail.get(), headerText(message.subject).c_str(), "utf-8");
  if (form == MailForm::draft) g_mime_object_set_header(GMIME_OBJECT(mail.get()), "X-Unsent", "1", nullptr);
  g_mime_message_set_mime_part(mail.get(), GMIME_OBJECT(contentOf(message).get()));
  return written(mail.get(), form);
}

}  // namespace quaverly::host
