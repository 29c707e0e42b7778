// The measurement of bench/screens, which says what it needs.
import {execFile} from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import {parseArgs, promisify} from 'node:util';
import {launch, phone as phoneSize} from '../tests/page/support/browser.mjs';
import {Phone} from '../tests/page/support/phone.mjs';
import {Program} from '../tests/page/support/program.mjs';

const mostBeyondListing = 150; // milliseconds
const {values} = parseArgs({options: {entries: {type: 'string', default: '100000'}, rounds: {type: 'string', default: '7'}}});
const entries = Number(values.entries);
const median = times => times.toSorted((a, b) => a - b)[Math.floor(times.length / 2)];

function makeFolder(folder) {
  fs.mkdirSync(folder);
  for (let each = 0; each < entries; each += 1) {
    const ending = each % 5 < 3 ? 'mp3' : 'txt';
    fs.writeFileSync(path.join(folder, `Song ${String(each).padStart(6, '0')}.${ending}`), '');
  }
}

/** Milliseconds that the listing itself takes, in a program that does nothing else. */
async function listing(folder) {
  const {stderr} = await promisify(execFile)(process.env.LISTING, [folder, 'UTC'], {maxBuffer: 2 ** 28});
  return Number(stderr);
}

/** Milliseconds from the tap on the folder until a picture with its rows was handed to the screen. */
function tapToRows(row) {
  return row.evaluate(async (element, count) => {
    const frame = () => new Promise(requestAnimationFrame);
    const start = performance.now();
    element.click();
    while (!document.querySelector(`#screen [aria-setsize="${count}"]`)) await frame();
    await frame();
    return performance.now() - start;
  }, entries);
}

async function measure(program, phone) {
  const times = {listing: [], rows: []};
  for (let round = 0; round < Number(values.rounds); round += 1) {
    times.listing.push(await listing(path.join(program.media, 'many')));
    times.rows.push(await tapToRows(phone.row('many')));
    await phone.button('/Media').click();
    await phone.row('many').waitFor();
  }
  return times;
}

const browser = await launch();
const program = new Program();
try {
  makeFolder(path.join(program.media, 'many'));
  const phone = await Phone.open(browser, await program.serve(), phoneSize);
  const times = await measure(program, phone);
  const beyond = median(times.rows) - median(times.listing);
  console.log(`${entries} entries: listing ${median(times.listing).toFixed(0)} ms, tap to rows ${median(times.rows).toFixed(0)} ms: ${beyond.toFixed(0)} ms beyond it, goal ${mostBeyondListing} ms`);
  process.exitCode = beyond > mostBeyondListing ? 1 : 0;
} finally {
  await browser.close();
  await program.end();
}
