// Mailers that a test puts before the system's own, and an independent reader of what they are given.
import {execFile} from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import {promisify} from 'node:util';

const run = promisify(execFile);

const reader = `
import email, email.policy, json, sys
mail = email.message_from_bytes(open(sys.argv[1], "rb").read(), policy=email.policy.default)
parts = [{"type": part.get_content_type(), "name": part.get_filename(), "text": part.get_payload(decode=True).decode()} for part in mail.iter_parts()]
defects = [str(each) for part in mail.walk() for each in part.defects]
print(json.dumps({"headers": dict(mail.items()), "parts": parts, "defects": defects}))
`;

/** A mail in a file, as Python's library reads it. */
export async function readMail(file) {
  const {stdout} = await run('/usr/bin/python3', ['-c', reader, file], {maxBuffer: 2 ** 28});
  return JSON.parse(stdout);
}

/** Has a program find this script as its mailer. */
export function installMailer(program, script) {
  const folder = path.join(program.home, 'bin');
  fs.mkdirSync(folder, {recursive: true});
  fs.writeFileSync(path.join(folder, 'sendmail'), `#!/bin/sh\n${script}\n`, {mode: 0o755});
  program.environment.PATH = `${folder}:${process.env.PATH}`;
}

/** A mailer that keeps what it is given; gives the file's path. */
export function installRecorder(program) {
  const file = path.join(program.home, 'sent');
  installMailer(program, `echo "$@" > '${file}.arguments'; cat > '${file}.new' && mv '${file}.new' '${file}'`);
  return file;
}
