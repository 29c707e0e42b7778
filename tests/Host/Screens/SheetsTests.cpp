#include <gmock/gmock.h>
#include <sys/stat.h>

#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "Host/Screens/MailSheets.h"
#include "Host/Screens/NodeDescription.h"
#include "Host/Screens/ScreenEvents.h"
#include "Host/Screens/ScreenLinks.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Social/SLComposeViewController.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using page::PageMethod;
using screens::Json;
using screens::MailSheets;
using testing::HasSubstr;
using testing::Not;

/// A screen to present sheets from, and pages that ask for them.
class Presenting : public testing::Test {
 protected:
  Presenting() : _root(make<UIViewController>()) {
    _window = make<UIWindow>(CGRect{0, 0, 375, 667});
    _window->makeKeyAndVisible();
    _window->setRootViewController(_root);
  }
  ~Presenting() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  void present(const Ref<UIViewController>& sheet) {
    _root->presentViewControllerAnimatedCompletion(sheet, UIAnimated::No);
    while (NSRunLoop::mainRunLoop().runOnce()) continue;
    _node = sheet->view()->identity();
  }
  std::string query(const std::string& more = "") const { return "node=" + std::to_string(_node) + more; }

  /// Asks, without waiting for the answer.
  std::shared_ptr<std::optional<page::PageAnswer>> begin(PageMethod method, const std::string& path,
                                                         const std::string& query,
                                                         const std::string& body = "") {
    auto answer = std::make_shared<std::optional<page::PageAnswer>>();
    _routes.ask({method, path, "", query, "", body}, page::PageReply([this, answer](page::PageAnswer given) {
                  const std::lock_guard lock(_mutex);
                  *answer = std::move(given);
                }));
    return answer;
  }
  page::PageAnswer await(const std::shared_ptr<std::optional<page::PageAnswer>>& answer) {
    for (int turn = 0; turn < 2000; ++turn) {
      NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(10));
      const std::lock_guard lock(_mutex);
      if (*answer) return **answer;
    }
    ADD_FAILURE() << "nobody answered";
    return {};
  }
  page::PageAnswer ask(PageMethod method, const std::string& path, const std::string& query,
                       const std::string& body = "") {
    return await(begin(method, path, query, body));
  }

  test::TestDevice _device;
  page::PageRoutes _routes;
  Ref<UIViewController> _root;
  Ref<UIWindow> _window;
  uint64_t _node = 0;
  std::mutex _mutex;
};

class Recorder : public NSObject, public MFMailComposeViewControllerDelegate {
 public:
  void mailComposeControllerDidFinishWithResultError(MFMailComposeViewController& controller,
                                                     MFMailComposeResult result,
                                                     const Ref<NSError>& error) override {
    results.push_back(result);
    if (error) reasons.push_back(error->localizedDescription());
    controller.dismissViewControllerAnimatedCompletion(UIAnimated::No);
  }
  std::vector<MFMailComposeResult> results;
  std::vector<std::string> reasons;
};

class MailSheet : public Presenting {
 protected:
  /// Opens a sheet where a mailer is this script, or where there is none.
  void open(const std::optional<std::string>& script,
            std::chrono::milliseconds within = std::chrono::seconds(60)) {
    std::optional<host::Sendmail> mailer;
    if (script) {
      const std::string path = _mailer.write("sendmail", "#!/bin/sh\n" + *script);
      chmod(path.c_str(), 0755);
      mailer = host::Sendmail::find(_mailer.path());
    }
    _sheets.emplace(_routes, mailer, within);
    _mail = make<MFMailComposeViewController>();
    _mail->setMailComposeDelegate(_delegate.get());
    _mail->setToRecipients({"support@tolmarin.example"});
    _mail->setSubject("Help");
    _mail->setMessageBodyIsHTML("<p>&nbsp;</p><script>alert(1)</script>", true);
    _mail->addAttachmentDataMimeTypeFileName(NSData("<b>one</b>"), "text/html", "a.html");
    present(_mail);
  }
  page::PageAnswer act(const std::string& action, const Json& mail) {
    return ask(PageMethod::post, "/mail", query("&action=" + action), mail.dump());
  }
  bool isShown() const { return _root->presentedViewController().get() != nullptr; }

  const Json _entered = {{"to", "a@b.example, c@d.example"},
                         {"subject", "Über"},
                         {"html", "<p onclick=x>Text</p><script>alert(1)</script>"}};
  test::TemporaryFolder _mailer;
  std::optional<MailSheets> _sheets;
  Ref<Recorder> _delegate = make<Recorder>();
  Ref<MFMailComposeViewController> _mail;
};

TEST_F(MailSheet, IsDescribedWithAllThatWillLeave) {
  open("exit 0");
  Json node;
  screens::describeSheet(*_mail->view(), node);
  EXPECT_EQ(node, (Json{{"kind", "mail"},
                        {"to", "support@tolmarin.example"},
                        {"subject", "Help"},
                        {"attachments", {{{"name", "a.html"}, {"bytes", 10}}}},
                        {"sends", true}}));
}

TEST_F(MailSheet, HasABodyInWhichNothingRuns) {
  open("exit 0");
  const auto answer = ask(PageMethod::get, "/mail/body", query());
  EXPECT_EQ(answer.status, 200);
  EXPECT_THAT(std::string(answer.body.text()), HasSubstr("<body><p>&nbsp;</p></body>"));
  EXPECT_THAT(answer.contentSecurityPolicy, HasSubstr("default-src 'none'; style-src 'unsafe-inline';"));
  EXPECT_THAT(answer.contentSecurityPolicy, HasSubstr("sandbox allow-same-origin"));
  EXPECT_EQ(ask(PageMethod::get, "/mail/body", "node=1").status, 404);
}

TEST_F(MailSheet, ShowsAnAttachmentAsTextWhateverItIs) {
  open("exit 0");
  const auto answer = ask(PageMethod::get, "/mail/attachment", query("&index=0"));
  EXPECT_EQ(answer.body.text(), "<b>one</b>");
  EXPECT_EQ(answer.contentType, "text/plain; charset=utf-8");
  for (const std::string wrong : {"", "&index=1", "&index=x", "&index=-1"})
    EXPECT_EQ(ask(PageMethod::get, "/mail/attachment", query(wrong)).status, 404) << wrong;
}

TEST_F(MailSheet, SendsWhatThePersonWroteCleaned) {
  open("cat > '" + (_mailer / "mail") + "'");
  EXPECT_EQ(act("send", _entered).status, 204);
  const std::string mail = test::contentsOf(_mailer / "mail");
  EXPECT_THAT(mail, HasSubstr("To: a@b.example, c@d.example\n"));
  EXPECT_THAT(mail, HasSubstr("<p>Text</p>\n"));
  EXPECT_THAT(mail, Not(HasSubstr("alert")));
  EXPECT_THAT(mail, HasSubstr("filename=a.html"));
  EXPECT_THAT(_delegate->results, testing::ElementsAre(MFMailComposeResult::sent));
  EXPECT_FALSE(isShown());
  EXPECT_EQ(act("send", _entered).status, 409);
}

TEST_F(MailSheet, StaysWhenTheMailerFails) {
  open("echo 'no route' >&2; exit 75");
  const auto answer = act("send", _entered);
  EXPECT_EQ(answer.status, 502);
  EXPECT_EQ(answer.body.text(), "The mailer refused the mail (status 75): no route.");
  EXPECT_TRUE(isShown());
  EXPECT_TRUE(_delegate->results.empty());
  _sheets->cancel(_node);
  EXPECT_THAT(_delegate->results, testing::ElementsAre(MFMailComposeResult::failed));
  EXPECT_THAT(_delegate->reasons, testing::ElementsAre(HasSubstr("no route")));
  EXPECT_FALSE(isShown());
}

TEST_F(MailSheet, StaysWhenTheMailerHangs) {
  open("exec tail -f /dev/null", std::chrono::milliseconds(100));
  EXPECT_THAT(std::string(act("send", _entered).body.text()), HasSubstr("did not answer in time"));
  EXPECT_TRUE(isShown());
}

TEST_F(MailSheet, IsNotSentTwiceAndCancellingEndsTheMailer) {
  open("exec tail -f /dev/null");
  const auto first = begin(PageMethod::post, "/mail", query("&action=send"), _entered.dump());
  EXPECT_EQ(act("send", _entered).status, 409);
  _sheets->cancel(_node);
  EXPECT_FALSE(isShown());
  EXPECT_THAT(_delegate->results, testing::ElementsAre(MFMailComposeResult::cancelled));
  const auto began = std::chrono::steady_clock::now();
  _sheets.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(20));
}

TEST_F(MailSheet, IsKeptAsADraftWhereThereIsNoMailer) {
  open(std::nullopt);
  EXPECT_TRUE(MFMailComposeViewController::canSendMail());
  EXPECT_FALSE(MFMailComposeViewController::canSendAtOnce());
  EXPECT_EQ(act("send", _entered).status, 400);
  const auto draft = act("save", {{"to", ""}, {"subject", ""}, {"html", "x"}});
  EXPECT_EQ(draft.contentType, "message/rfc822");
  EXPECT_THAT(std::string(draft.body.text()), HasSubstr("X-Unsent: 1\r\n"));
  EXPECT_TRUE(isShown());
  _sheets->finish(_node);
  EXPECT_THAT(_delegate->results, testing::ElementsAre(MFMailComposeResult::saved));
  EXPECT_FALSE(isShown());
}

TEST_F(MailSheet, SaysWhatIsWrongWithAMail) {
  open("exit 0");
  const auto said = [&](Json mail) {
    const auto answer = act("send", mail);
    EXPECT_EQ(answer.status, 422) << mail;
    return std::string(answer.body.text());
  };
  EXPECT_EQ(said({{"to", " , "}, {"html", "x"}}), "Say to whom the mail goes.");
  for (const char* wrong :
       {"nobody", "a@", "@b", "a@b@c", "-a@b", "a b@c", "a@b\nBcc:c@d", "<a@b>", "a@b\"c"})
    EXPECT_THAT(said({{"to", wrong}}), HasSubstr("is no mail address")) << wrong;
  EXPECT_THAT(said({{"to", "a@b"}, {"subject", std::string(2000, 'x')}}), HasSubstr("too long"));
  EXPECT_EQ(act("send", {{"to", "a@b"}, {"html", std::string(1'100'000, 'x')}}).status, 502);
  EXPECT_EQ(act("send", Json::array()).status, 422);
  EXPECT_TRUE(_delegate->results.empty());
}

class ShareSheet : public Presenting {
 protected:
  void open() {
    SLComposeViewController::setComposeAddress("https://s.example/?text=");
    _sheet = SLComposeViewController::composeViewControllerForServiceType(SLServiceTypeTwitter);
    _sheet->setInitialText("Hello");
    _sheet->setCompletionHandler([this](auto result) { _results.push_back(result); });
    present(_sheet);
  }
  Ref<SLComposeViewController> _sheet;
  std::vector<SLComposeViewControllerResult> _results;
  screens::ScreenEvents _events;
};

TEST_F(ShareSheet, IsDescribedWithItsTextItsLimitAndWhereItIsPosted) {
  open();
  Json node;
  screens::describeSheet(*_sheet->view(), node);
  EXPECT_EQ(
      node,
      (Json{{"kind", "share"}, {"text", "Hello"}, {"limit", 140}, {"compose", "https://s.example/?text="}}));
}

TEST_F(ShareSheet, GoesWhenThePersonIsDoneOrCancels) {
  open();
  _events.finish(_node);
  _events.cancel(_node);
  EXPECT_EQ(_root->presentedViewController().get(), nullptr);
  open();
  _events.cancel(_node);
  EXPECT_EQ(_root->presentedViewController().get(), nullptr);
  using enum SLComposeViewControllerResult;
  EXPECT_THAT(_results, testing::ElementsAre(Done, Cancelled));
}

TEST(ScreenLinks, AreOpenedByThePageWhenTheyLeadToTheWeb) {
  std::vector<std::string> shown;
  const auto environment = [](const char*) { return std::optional<std::string>(); };
  screens::ScreenLinks links([&](const std::string& address) { shown.push_back(address); }, environment);
  const auto& application = UIApplication::sharedApplication();
  for (const char* address : {"https://a.example/x", "HTTP://a.example", "twitter:///user",
                              "file:///etc/passwd", "javascript:alert(1)", "http:"}) {
    const auto url = NSURL::URLWithString(address);
    ASSERT_TRUE(url) << address;
    EXPECT_EQ(application.canOpenURL(*url), url->scheme() == "https" || url->host() == "a.example")
        << address;
    application.openURL(*url);
  }
  EXPECT_THAT(shown, testing::ElementsAre("https://a.example/x", "HTTP://a.example"));
}

}  // namespace
}  // namespace quaverly
