// A real `quaverly serve` on folders of a test's own.
import {execFile, execFileSync, spawn} from 'node:child_process';
import {once} from 'node:events';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import readline from 'node:readline';
import {fileURLToPath} from 'node:url';
import {promisify} from 'node:util';

const run = promisify(execFile);
const program = process.env.QUAVERLY;
const samples = fileURLToPath(new URL('../../../samples', import.meta.url));

export const lantern = path.join(samples, 'lantern.mp3');
export const roofs = path.join(samples, 'Über den Dächern.mp3');

// Read by a library that is not ours.
const tagReader = `
import json, mutagen, sys
tags = mutagen.File(sys.argv[1]).tags
text = lambda name: str(tags[name]) if name in tags else ""
covers = tags.getall("APIC")
print(json.dumps({"title": text("TIT2"), "artist": text("TPE1"), "album": text("TALB"), "track": text("TRCK"),
                  "year": text("TDRC"), "covers": [list(each.data) for each in covers]}))
`;

const coverWriter = `
import mutagen.id3, sys
tags = mutagen.id3.ID3(sys.argv[1])
tags.delall("APIC")
tags.add(mutagen.id3.APIC(mime="image/jpeg", type=3, data=sys.stdin.buffer.read()))
tags.save()
`;

/** A home with the folders that quaverly uses, and quaverly serving it. */
export class Program {
  constructor() {
    this.home = fs.mkdtempSync(path.join(os.tmpdir(), 'quaverly-page-'));
    this.media = path.join(this.home, 'Downloads');
    this.library = path.join(this.home, 'Music');
    fs.mkdirSync(this.media);
    const passedOn = Object.entries(process.env).filter(([name]) => name === 'PATH' || name.endsWith('SAN_OPTIONS'));
    this.environment = {...Object.fromEntries(passedOn), HOME: this.home, LANG: 'C.UTF-8', TZ: 'UTC'};
  }

  /** Puts a copy of a file among the downloads. */
  copy(source, name = path.basename(source)) {
    const target = path.join(this.media, name);
    fs.mkdirSync(path.dirname(target), {recursive: true});
    fs.copyFileSync(source, target);
  }

  /** Gives a song among the downloads another cover. */
  setCover(name, jpeg) {
    execFileSync('/usr/bin/python3', ['-c', coverWriter, path.join(this.media, name)], {input: jpeg});
  }

  async serve() {
    this.log = '';
    this.process = spawn(program, ['serve', '--no-browser'], {env: this.environment, stdio: ['ignore', 'pipe', 'pipe']});
    this.ended = once(this.process, 'exit');
    this.process.stderr.on('data', text => (this.log += text));
    const lines = readline.createInterface({input: this.process.stdout});
    const ended = this.ended.then(([status]) => Promise.reject(new Error(`quaverly serve ended with ${status}: ${this.log}`)));
    ended.catch(() => {});
    [this.address] = await Promise.race([once(lines, 'line'), ended]);
    return this;
  }

  /** Asks it to end, as Ctrl-C does, and gives its exit status. */
  async stop() {
    this.process.kill('SIGTERM');
    const [status] = await this.ended;
    return status;
  }

  /** Runs another command of the program beside it. */
  command(...words) {
    return run(program, words, {env: this.environment, timeout: 60_000});
  }

  async end() {
    if (this.process && this.process.exitCode === null) await this.stop();
    fs.rmSync(this.home, {recursive: true, force: true});
  }

  /** In MiB. */
  residentMemory() {
    const status = fs.readFileSync(`/proc/${this.process.pid}/status`, 'utf8');
    return Number(/VmRSS:\s+(\d+) kB/.exec(status)[1]) / 1024;
  }

  /** What a player would find in the library. */
  songs() {
    const found = folder =>
      fs.readdirSync(folder, {withFileTypes: true}).flatMap(entry => {
        if (entry.name.startsWith('.')) return [];
        const file = path.join(folder, entry.name);
        return entry.isDirectory() ? found(file) : [path.relative(this.library, file)];
      });
    return fs.existsSync(this.library) ? found(this.library).sort() : [];
  }

  async tags(song) {
    const {stdout} = await run('/usr/bin/python3', ['-c', tagReader, path.join(this.library, song)], {maxBuffer: 2 ** 28});
    const tags = JSON.parse(stdout);
    return {...tags, covers: tags.covers.map(bytes => Buffer.from(bytes))};
  }
}
