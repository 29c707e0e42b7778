#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Platform/Foundation/NSBundle.h"
#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSError.h"
#include "Platform/UIKit/UIViewController.h"

namespace quaverly {

class MFMailComposeViewController;

/// What became of a mail. The numbers are the framework's own.
enum class MFMailComposeResult { cancelled = 0, saved = 1, sent = 2, failed = 3 };

/// Why a mail failed.
inline constexpr const char* MFMailComposeErrorDomain = "MFMailComposeErrorDomain";
inline constexpr int MFMailComposeErrorCodeSaveFailed = 0;
inline constexpr int MFMailComposeErrorCodeSendFailed = 1;

/// Hears when the person is done with a mail.
class MFMailComposeViewControllerDelegate {
 public:
  virtual ~MFMailComposeViewControllerDelegate() = default;
  virtual void mailComposeControllerDidFinishWithResultError(MFMailComposeViewController& controller,
                                                             MFMailComposeResult result,
                                                             const Ref<NSError>& error) = 0;
};

/// What stands behind the composer: the host's way to send mail.
class MFMailService {
 public:
  virtual ~MFMailService() = default;
  virtual bool canSendMail() const = 0;
  /// Whether a mail can leave from here; otherwise it can only be kept as a draft.
  virtual bool canSendAtOnce() const { return canSendMail(); }
};

/// The screen on which a person finishes a mail and sends it. Main thread only.
class MFMailComposeViewController : public UIViewController {
 public:
  struct Attachment {
    NSData data;
    std::string mimeType;
    std::string fileName;
  };

  /// Without a service no mail can be sent.
  static bool canSendMail();
  static bool canSendAtOnce();
  /// The service must outlive its registration; null takes it away.
  static void registerService(const MFMailService* service);

  /// Null when the screen cannot be made; the caller then lets it go.
  virtual MFMailComposeViewController* initWithNibNameBundle(const std::optional<std::string>& nibName,
                                                             const Ref<NSBundle>& bundle);
  MFMailComposeViewController* init() override { return initWithNibNameBundle(std::nullopt, nullptr); }

  /// The delegate is not owned.
  template <class Delegate>
  void setMailComposeDelegate(Delegate* delegate) {
    _delegate = delegate;
  }

  const std::vector<std::string>& toRecipients() const { return _toRecipients; }
  void setToRecipients(std::vector<std::string> recipients) { _toRecipients = std::move(recipients); }
  const std::string& subject() const { return _subject; }
  void setSubject(std::string subject) { _subject = std::move(subject); }
  const std::string& messageBody() const { return _messageBody; }
  bool messageBodyIsHTML() const { return _messageBodyIsHTML; }
  void setMessageBodyIsHTML(std::string body, bool isHTML);
  const std::vector<Attachment>& attachments() const { return _attachments; }
  /// Absent data attaches nothing.
  void addAttachmentDataMimeTypeFileName(std::optional<NSData> data, std::string mimeType,
                                         std::string fileName);

  void loadView() override;

  /// For the host: tells the delegate what became of the mail. Once; what comes after does nothing.
  void finishWithResultError(MFMailComposeResult result, const Ref<NSError>& error);

 private:
  Unowned<MFMailComposeViewControllerDelegate> _delegate;
  std::vector<std::string> _toRecipients;
  std::string _subject;
  std::string _messageBody;
  bool _messageBodyIsHTML = false;
  std::vector<Attachment> _attachments;
  bool _done = false;
};

}  // namespace quaverly
