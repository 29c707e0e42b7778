// How long a person waits for the page. Measured in the page itself, on a real `quaverly serve`.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import {test} from 'node:test';
import {desk} from './support/browser.mjs';
import {noisyPhotograph} from './support/pictures.mjs';
import {lantern, roofs} from './support/program.mjs';
import {browser, openFolders, phone, program, setStage} from './support/stage.mjs';

setStage();

const median = values => values.sort((a, b) => a - b)[Math.floor(values.length / 2)];

/** Milliseconds from a tap to the first change of the device's screen. */
function tapToChange(locator) {
  return locator.evaluate(async element => {
    const start = performance.now();
    const changed = new Promise(done => {
      const watch = new MutationObserver(() => {
        watch.disconnect();
        done(performance.now() - start);
      });
      watch.observe(document.getElementById('screen'), {subtree: true, childList: true, characterData: true});
    });
    element.click();
    return changed;
  });
}

test('A tap changes the page within 50 ms', async t => {
  for (const name of ['a', 'b', 'c']) fs.writeFileSync(path.join(program.media, `${name}.mp3`), '');
  fs.mkdirSync(path.join(program.media, 'Folder'));
  await openFolders(desk);
  const times = [];
  for (let round = 0; round < 15; round += 1) {
    times.push(await tapToChange(phone.row('Folder')));
    await phone.waitForFolder('/var/mobile/Media/Folder');
    times.push(await tapToChange(phone.button('/Media')));
    await phone.row('Folder').waitFor();
  }
  t.diagnostic(`from tap to change, median of ${times.length}: ${median(times).toFixed(1)} ms`);
  assert.ok(median(times) < 50);
});

test('Ten thousand files scroll without a blank second', async t => {
  for (let each = 0; each < 10_000; each += 1) fs.writeFileSync(path.join(program.media, `Song ${String(each).padStart(5, '0')}.mp3`), '');
  await openFolders(desk);
  await phone.screen.locator('[aria-posinset="1"][aria-setsize="10000"]').waitFor();
  const blank = await phone.screen.locator('.scroller').first().evaluate(async scroller => {
    const frame = () => new Promise(requestAnimationFrame);
    const {left, top, height} = scroller.getBoundingClientRect();
    const isBlank = () => !document.elementFromPoint(left + 150, top + height / 2)?.closest('.cell');
    let since = null;
    let longest = 0;
    while (scroller.scrollTop + scroller.clientHeight < scroller.scrollHeight - 1) {
      scroller.scrollTop += 5000;
      await frame();
      if (isBlank()) longest = Math.max(longest, performance.now() - (since ??= performance.now()));
      else since = null;
    }
    return longest;
  });
  t.diagnostic(`longest blank: ${blank.toFixed(0)} ms`);
  assert.ok(blank < 200);
  await phone.screen.locator('[aria-posinset="10000"]').waitFor();
});

test('A cover of nine million pixels is seen soon after the tap', async t => {
  program.copy(lantern);
  const drawing = await browser.newPage();
  program.setCover('lantern.mp3', await noisyPhotograph(drawing, 3000));
  await drawing.close();
  await openFolders(desk);
  const elapsed = await phone.row('lantern.mp3').evaluate(async row => {
    const start = performance.now();
    row.click();
    const seen = () => [...document.querySelectorAll('#screen img.picture')].filter(each => each.naturalWidth >= 300 && each.complete);
    while (seen().length < 2) await new Promise(requestAnimationFrame);
    await Promise.all(seen().map(image => image.decode()));
    return performance.now() - start;
  });
  t.diagnostic(`from tap to the cover and its blurred backdrop: ${elapsed.toFixed(0)} ms`);
  assert.ok(elapsed < 5000);
});

test('An idle program that has imported songs stays below 40 MiB', async t => {
  const songs = {'lantern.mp3': 'Lantern Walk', 'Über den Dächern.mp3': 'Über den Dächern'};
  for (const song of [lantern, roofs]) program.copy(song);
  await openFolders(desk);
  for (const [file, title] of Object.entries(songs)) {
    await phone.openSong(file, title);
    while ((await phone.pictures()).length < 2) await phone.frame();
    await phone.button('Import').click();
    await phone.field('Title').waitFor({state: 'hidden'});
  }
  while (program.songs().length < 2) await phone.frame();
  await phone.still();
  const resident = program.residentMemory();
  t.diagnostic(`resident: ${resident.toFixed(1)} MiB`);
  assert.ok(resident < 40);
});
