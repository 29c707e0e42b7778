import email
import email.policy
import os
import pathlib
import unittest

import program
from program import ProgramTest

RECORDER = """#!/bin/sh
printf '%s\\n' "$@" > "$HOME/arguments"
cat > "$HOME/sent"
exit ${RESULT:-0}
"""


class Mail(ProgramTest):
    def setUp(self):
        super().setUp()
        self.programs = self.home / "bin"
        self.programs.mkdir()

    def install(self):
        mailer = self.programs / "sendmail"
        mailer.write_text(RECORDER)
        mailer.chmod(0o755)
        return mailer

    def mail(self, *arguments, **env):
        return self.run_program("mail", *arguments, env={"PATH": f"{self.programs}:{os.environ['PATH']}", **env})

    def parsed(self, name):
        mail = email.message_from_bytes((self.home / name).read_bytes(), policy=email.policy.default)
        self.assertEqual(mail.defects, [])
        return mail

    def check(self, mail):
        self.assertEqual((mail["To"], mail["Subject"]), ("support@tolmarin.example", "Quaverly Support"))
        body, *attachments = mail.iter_parts()
        html = body.get_content()
        self.assertTrue(html.startswith("<style>p{margin-top: 0em;margin-bottom: 0.1em;}</style><p>&nbsp;</p>"))
        for label in ("Device:", "Udid:", "iOS Version:", "Quaverly Version:"):
            self.assertIn(f"<strong>{label}</strong> ", html)
        own = pathlib.Path("/etc/machine-id")
        if own.exists() and own.read_text().strip():
            self.assertNotIn(own.read_text().strip(), html)
        status = pathlib.Path("/var/lib/dpkg/status")
        self.assertEqual(len(attachments), 1 if status.exists() else 0)
        for attachment in attachments:
            self.assertEqual((attachment.get_content_type(), attachment.get_filename()),
                             ("text/plain", "Cydia Status.txt"))
            self.assertEqual(attachment.get_payload(decode=True), status.read_bytes())

    def test_goes_through_the_systems_mailer(self):
        self.install()
        result = self.mail("--json")
        self.assertEqual((result.status, result.object["state"]), (0, "sent"))
        self.assertEqual((self.home / "arguments").read_text().split(), ["-t", "-i"])
        mail = self.parsed("sent")
        self.assertIsNone(mail["X-Unsent"])
        self.check(mail)

    def test_is_saved_as_a_draft_where_it_is_wanted(self):
        self.install()
        result = self.mail("--output", "mine.eml", "--json")
        self.assertEqual((result.status, result.object["state"], result.object["path"]), (0, "saved", "mine.eml"))
        self.assertFalse((self.home / "sent").exists())
        mail = self.parsed("mine.eml")
        self.assertEqual(mail["X-Unsent"], "1")
        self.check(mail)

    def test_a_mailer_that_fails_is_said(self):
        mailer = self.install()
        result = self.mail(RESULT="75")
        self.assertEqual(result.status, 1)
        self.assertIn(str(mailer), result.errors[0])
        self.assertIn("75", result.errors[0])

    def test_a_place_that_cannot_be_written_is_said(self):
        result = self.mail("--output", "none/mine.eml")
        self.assertEqual(result.status, 1)
        self.assertIn("none/mine.eml", result.errors[0])


if __name__ == "__main__":
    unittest.main(verbosity=2)
