#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <random>

#include "Host/Mail/MailMessage.h"
#include "Host/Mail/Sendmail.h"
#include "Support/Command.h"
#include "Support/TemporaryFolder.h"

namespace quaverly::host {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Reads a mail with Python's parser and writes its parts into files.
constexpr const char* parse = R"(
import email, email.policy, sys, pathlib
folder = pathlib.Path(sys.argv[1])
mail = email.message_from_bytes((folder / "mail").read_bytes(), policy=email.policy.default)
assert not mail.defects, mail.defects
assert mail.get_content_type() == "multipart/mixed", mail.get_content_type()
parts = list(mail.iter_parts())
(folder / "headers").write_text("\n".join(f"{k}: {v}" for k, v in mail.items()))
for number, part in enumerate(parts):
    assert not part.defects, part.defects
    (folder / f"part{number}").write_bytes(part.get_payload(decode=True))
    print(part.get_content_type(), part.get_content_charset(), part.get_content_disposition(), part.get_filename(), sep="|")
)";

class Mail : public testing::Test {
 protected:
  /// What the parser says of each part.
  std::string parsed(const MailMessage& message, MailForm form) {
    _folder.write("mail", mimeTextOf(message, form));
    return test::python(parse, {_folder.path()});
  }
  std::string file(const char* name) const { return test::contentsOf(_folder / name); }

  MailMessage _message{{"support@tolmarin.example"}, "Quaverly Support", "<p>Hello</p>", {}};
  test::TemporaryFolder _folder;
};

TEST_F(Mail, CarriesItsBodyAndItsAttachment) {
  _message.attachments.push_back({NSData("Package: a\nStatus: ok\n\n"), "text/plain", "Cydia Status.txt"});
  EXPECT_EQ(parsed(_message, MailForm::forMailer),
            "text/html|utf-8|None|None\ntext/plain|None|attachment|Cydia Status.txt\n");
  EXPECT_EQ(file("part0"), "<p>Hello</p>");
  EXPECT_EQ(file("part1"), "Package: a\nStatus: ok\n\n");
  EXPECT_THAT(file("headers"), HasSubstr("To: support@tolmarin.example"));
  EXPECT_THAT(file("headers"), HasSubstr("Subject: Quaverly Support"));
  EXPECT_THAT(file("headers"), HasSubstr("MIME-Version: 1.0"));
  EXPECT_THAT(file("headers"), Not(HasSubstr("X-Unsent")));
}

TEST_F(Mail, ADraftSaysThatItIsOneAndHasTheLineEndsOfMail) {
  parsed(_message, MailForm::draft);
  EXPECT_THAT(file("headers"), HasSubstr("X-Unsent: 1"));
  const std::string text = file("mail");
  for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1))
    ASSERT_EQ(text[at - 1], '\r');
}

TEST_F(Mail, AnyBodyComesOutAsItWentIn) {
  using namespace std::string_literals;
  std::string everything;
  for (int byte = 0; byte < 256; ++byte) everything += static_cast<char>(byte);
  for (const std::string& body :
       {""s, "\n"s, "From here\n.\n..\n--\n"s, "Grüße 音 🎵"s, std::string(5'000, 'x'), "a \n\tb\t\n \n"s,
        "a\rb\r\nc"s, "a\0b"s, everything, "=3D=\n=C3=BC"s}) {
    _message.htmlBody = body;
    parsed(_message, MailForm::forMailer);
    EXPECT_EQ(file("part0"), body);
  }
}

TEST_F(Mail, ALargeAttachmentIsWhole) {
  std::string bytes(20'000'000, '\0');
  std::mt19937 random(1);
  for (char& byte : bytes) byte = static_cast<char>(random());
  _message.attachments.push_back({NSData(std::string_view(bytes)), "text/plain", "large.txt"});
  parsed(_message, MailForm::draft);
  EXPECT_TRUE(file("part1") == bytes);
}

TEST_F(Mail, HeadersCannotBeBrokenInto) {
  _message.subject = "Über\r\nBcc: other@example.org\n\nbody";
  _message.to = {"a@b.example\nBcc: third@example.org"};
  _message.attachments.push_back({NSData("x"), "text/plain", "a\"b\r\nX-Evil: 1 ü.txt"});
  parsed(_message, MailForm::forMailer);
  EXPECT_THAT(file("headers"), Not(HasSubstr("\nBcc")));
  EXPECT_THAT(file("headers"), HasSubstr("Über"));
}

class Mailer : public testing::Test {
 protected:
  Sendmail mailer(const std::string& script) {
    const std::string path = _folder.write("sendmail", "#!/bin/sh\n" + script);
    chmod(path.c_str(), 0755);
    return *Sendmail::find(_folder.path());
  }
  test::TemporaryFolder _folder;
};

TEST_F(Mailer, IsGivenTheMailAndTheOptionsThatEveryMailerKnows) {
  const auto sendmail =
      mailer("echo \"$@\" > '" + (_folder / "arguments") + "'; cat > '" + (_folder / "mail") + "'");
  const std::string mail = "Subject: x\n\n.\n" + std::string(3'000'000, 'x');
  EXPECT_EQ(sendmail.send(mail), std::nullopt);
  EXPECT_EQ(test::contentsOf(_folder / "arguments"), "-t -i\n");
  EXPECT_TRUE(test::contentsOf(_folder / "mail") == mail);
}

TEST_F(Mailer, ThatRefusesBreaksOffOrHangsIsSaid) {
  EXPECT_THAT(mailer("exit 75").send("x").value_or(""), HasSubstr("status 75"));
  EXPECT_THAT(mailer("kill -9 $$").send("x").value_or(""), HasSubstr("broke off."));
  EXPECT_EQ(mailer("exit 0").send(std::string(3'000'000, 'x')), std::nullopt);
  const auto began = std::chrono::steady_clock::now();
  EXPECT_THAT(mailer("exec tail -f /dev/null").send("x", std::chrono::milliseconds(100)).value_or(""),
              HasSubstr("in time"));
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(20));
}

TEST_F(Mailer, IsSaidWithItsOwnWordsOnOneLine) {
  const auto said = mailer("printf 'no\\nrelay\\377.\\n' >&2; exit 1").send("x").value_or("");
  EXPECT_EQ(said, "The mailer refused the mail (status 1): no relay\uFFFD.");
}

TEST_F(Mailer, IsEndedWhenNobodyWaitsForItAnyMore) {
  const auto hanging = mailer("exec tail -f /dev/null");
  std::stop_source stop;
  stop.request_stop();
  EXPECT_THAT(hanging.send("x", std::chrono::minutes(10), stop.get_token()).value_or(""),
              HasSubstr("in time"));
}

TEST_F(Mailer, ThatIsNoProgramIsNone) {
  const auto found = Sendmail::find(_folder.path());
  _folder.write("sendmail", "not executable");
  const auto again = Sendmail::find(_folder.path().string() + "::relative:" + (_folder / "missing"));
  EXPECT_EQ(found.has_value(), again.has_value());
  EXPECT_THAT(again ? again->path() : "", Not(HasSubstr(_folder.path().string())));
}

}  // namespace
}  // namespace quaverly::host
