#include <gtest/gtest.h>

#include "Platform/MessageUI/MFMailComposeViewController.h"

namespace quaverly {
namespace {

struct SomeMailService : MFMailService {
  bool canSendMail() const override { return can; }
  bool can = true;
};

TEST(MailComposer, SaysWhetherTheServiceCanSendMail) {
  EXPECT_FALSE(MFMailComposeViewController::canSendMail());
  SomeMailService service;
  MFMailComposeViewController::registerService(&service);
  EXPECT_TRUE(MFMailComposeViewController::canSendMail());
  service.can = false;
  EXPECT_FALSE(MFMailComposeViewController::canSendMail());
  MFMailComposeViewController::registerService(nullptr);
  EXPECT_FALSE(MFMailComposeViewController::canSendMail());
}

class SomeDelegate : public NSObject, public MFMailComposeViewControllerDelegate {
 public:
  void mailComposeControllerDidFinishWithResultError(MFMailComposeViewController&, MFMailComposeResult result,
                                                     const Ref<NSError>&) override {
    results.push_back(result);
  }
  std::vector<MFMailComposeResult> results;
};

TEST(MailComposer, TellsItsDelegateTheOutcomeOnceWhileThatIsThere) {
  const auto delegate = make<SomeDelegate>();
  using enum MFMailComposeResult;
  for (const auto result : {cancelled, saved, sent, failed}) {
    const auto composer = make<MFMailComposeViewController>();
    composer->setMailComposeDelegate(delegate.get());
    composer->finishWithResultError(result, nullptr);
    composer->finishWithResultError(sent, nullptr);
  }
  EXPECT_EQ(delegate->results, (std::vector{cancelled, saved, sent, failed}));
}

TEST(MailComposer, HasNobodyToTellOnceItsDelegateIsGone) {
  const auto composer = make<MFMailComposeViewController>();
  auto delegate = make<SomeDelegate>();
  composer->setMailComposeDelegate(delegate.get());
  delegate = nullptr;
  composer->finishWithResultError(MFMailComposeResult::sent, nullptr);
}

}  // namespace
}  // namespace quaverly
