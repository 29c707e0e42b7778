// The road of a song, as a person takes it: a real `quaverly serve`, a real browser, real files.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {accessibilityProblems, desk, keepShot, launch, openWindow, phone as phoneSize} from './support/browser.mjs';
import {Phone} from './support/phone.mjs';
import {lookAt, onItsSide, redAndBlue} from './support/pictures.mjs';
import {Program, lantern, roofs} from './support/program.mjs';

let browser, program, phones;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(() => {
  program = new Program();
  phones = [];
});
afterEach(async () => {
  for (const {page} of phones) await page.context().close();
  await program.end();
  for (const {page} of phones) assert.deepEqual(page.problems, []);
});

async function open(viewport = phoneSize, more = {}) {
  if (!program.process) await program.serve();
  const phone = await Phone.open(browser, program, viewport, more);
  phones.push(phone);
  return phone;
}

/** Waits until the library holds as many songs. */
async function filed(phone, count) {
  while (program.songs().length < count) await phone.frame();
  return program.songs();
}

for (const [name, viewport] of [['phone', phoneSize], ['desk', desk]]) {
  test(`A song is found, corrected, given another cover, imported and filed, on a ${name}`, async () => {
    program.copy(lantern, 'Night/lantern.mp3');
    const phone = await open(viewport);
    await keepShot(phone.page, `${name}-1-media`);
    assert.deepEqual(await accessibilityProblems(phone.page), []);
    await phone.row('Night').click();
    await phone.waitForFolder('/var/mobile/Media/Night');
    await keepShot(phone.page, `${name}-2-folder`);
    await phone.openSong('lantern.mp3', 'Lantern Walk');
    assert.deepEqual(await phone.values(), ['Lantern Walk', '1', 'First Steps', 'The Quaver House Band', '', '2026']);
    while ((await phone.pictures()).length < 2) await phone.frame();
    await keepShot(phone.page, `${name}-3-editor`);
    assert.deepEqual(await accessibilityProblems(phone.page), []);
    const before = await phone.pictures();

    await phone.field('Title').fill('Lantern Walk at Night');
    await phone.field('Year').fill('2025');
    const chooser = phone.page.waitForEvent('filechooser');
    await phone.button('Choose cover').click();
    await chooser;
    await phone.still();
    await keepShot(phone.page, `${name}-4-picker`);
    assert.deepEqual(await accessibilityProblems(phone.page), []);
    await phone.pick(await redAndBlue(phone.page, 600, 300));
    while ((await phone.pictures()).filter(each => !before.includes(each)).length < 2) await phone.frame();
    await keepShot(phone.page, `${name}-5-cover`);

    await phone.button('Import').click();
    await phone.screen.getByRole('status').getByText('Song imported').waitFor();
    await phone.field('Title').waitFor({state: 'hidden'});
    await keepShot(phone.page, `${name}-6-imported`);
    const [song] = await filed(phone, 1);
    assert.equal(song, 'The Quaver House Band/First Steps/01 Lantern Walk at Night.mp3');
    const tags = await program.tags(song);
    assert.deepEqual([tags.title, tags.artist, tags.album, tags.track, tags.year], ['Lantern Walk at Night', 'The Quaver House Band', 'First Steps', '1', '2025']);
    const cover = await lookAt(phone.page, tags.covers[0], [[0.1, 0.5], [0.9, 0.5]]);
    assert.deepEqual(cover, {width: 300, height: 300, colors: ['red', 'blue']});
    await phone.screen.getByRole('status').waitFor({state: 'detached'});
    if (viewport === phoneSize) await phone.page.getByRole('button', {name: 'Downloads and library'}).click();
    await phone.region('Library').getByText('Lantern Walk at Night').waitFor();
    await phone.region('Downloads').getByText('In the library').waitFor();
    await keepShot(phone.page, `${name}-7-panels`);
    assert.deepEqual(await accessibilityProblems(phone.page), []);
  });
}

test('Cancel imports nothing and forgets what was typed', async () => {
  program.copy(lantern);
  const phone = await open();
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  await phone.field('Title').fill('Something else');
  await phone.button('Cancel').click();
  await phone.field('Title').waitFor({state: 'hidden'});
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  await phone.button('Cancel').click();
  await phone.field('Title').waitFor({state: 'hidden'});
  assert.deepEqual(program.songs(), []);
});

test('A second song shows its own tags and keeps its own cover', async () => {
  program.copy(lantern);
  program.copy(roofs);
  const phone = await open(desk);
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  await phone.field('Title').fill('Changed');
  await phone.button('Import').click();
  await phone.field('Title').waitFor({state: 'hidden'});
  await phone.still();
  await phone.row('Dächern').click();
  await phone.waitForValue('Title', 'Über den Dächern');
  await phone.still();
  await phone.button('Import').click();
  const songs = await filed(phone, 2);
  const covers = await Promise.all(songs.map(async song => (await program.tags(song)).covers[0]));
  assert.ok(covers.every(cover => cover?.length > 0) && !covers[0].equals(covers[1]));
  assert.ok(songs.some(song => song.endsWith('Changed.mp3')) && songs.some(song => song.endsWith('Über den Dächern.mp3')), String(songs));
});

test('A cover that was taken with the camera on its side stands upright', async () => {
  program.copy(lantern);
  const phone = await open();
  program.setCover('lantern.mp3', onItsSide(await redAndBlue(phone.page, 300, 200, 'image/jpeg')));
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  while ((await phone.pictures()).length < 2) await phone.frame();
  const looks = (await phone.pictures()).map(async address => {
    const bytes = await phone.page.evaluate(async from => Array.from(new Uint8Array(await (await fetch(from)).arrayBuffer())), address);
    return lookAt(phone.page, bytes, [[0.5, 0.1], [0.5, 0.9]]);
  });
  const upright = (await Promise.all(looks)).filter(({colors}) => colors.join() === 'red,blue');
  assert.deepEqual(upright.map(({width, height}) => height > width), [true, true], 'the cover, and its blurred copy');
});

test('A folder without files, and one that cannot be read, say that there is nothing', async () => {
  fs.mkdirSync(path.join(program.media, 'Empty'));
  fs.mkdirSync(path.join(program.media, 'Vanishing'));
  const phone = await open();
  await phone.row('Empty').click();
  await phone.screen.getByText('No files here').waitFor();
  await phone.waitForFolder('/var/mobile/Media/Empty');
  await keepShot(phone.page, 'empty-folder');
  await phone.button('/Media').click();
  await phone.row('Vanishing').waitFor();
  fs.rmdirSync(path.join(program.media, 'Vanishing'));
  await phone.row('Vanishing').click();
  await phone.waitForFolder('/var/mobile/Media/Vanishing');
  await phone.screen.getByText('No files here').waitFor();
});

test('A file that no player reads is shown and cannot be chosen', async () => {
  fs.writeFileSync(path.join(program.media, 'notes.txt'), 'no song');
  const phone = await open();
  await phone.row('notes.txt').waitFor();
  assert.equal(await phone.row('notes.txt').getAttribute('tabindex'), null);
});

test('A device that is turned lies on its side, the header below the bar', async () => {
  program.copy(lantern);
  const phone = await open(desk);
  await phone.page.getByRole('button', {name: 'Turn'}).click();
  while ((await phone.screen.boundingBox()).width < 600) await phone.frame();
  await keepShot(phone.page, 'landscape-folder');
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  while ((await phone.pictures()).length < 2) await phone.frame();
  await keepShot(phone.page, 'landscape-editor');
  const screen = await phone.screen.boundingBox();
  const album = await phone.field('Album').boundingBox();
  // 84 points below the header's top, of which the first 35 are out of sight.
  assert.equal(Math.round(album.y - screen.y), 84 - 35);
  await phone.page.getByRole('button', {name: 'Turn'}).click();
  while ((await phone.screen.boundingBox()).width > 600) await phone.frame();
  await phone.still();
  assert.deepEqual((await phone.values()).slice(0, 3), ['Lantern Walk', '1', 'First Steps']);
  await keepShot(phone.page, 'turned-back-editor');
});

test('Typing goes on while the connection is gone, and nothing of it is lost', async () => {
  program.copy(lantern);
  await program.serve();
  const page = await openWindow(browser, phoneSize);
  const phone = new Phone(page);
  phones.push(phone);
  let socket;
  let isCut = false;
  await page.routeWebSocket('**/socket', toPage => {
    if (isCut) return toPage.close();
    socket = {toPage, toHost: toPage.connectToServer()};
  });
  await page.goto(program.address);
  await phone.goToBrowser();
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  await phone.field('Title').press('End');
  await page.keyboard.type(' at');
  isCut = true;
  await socket.toHost.close();
  await socket.toPage.close();
  await page.keyboard.type(' Night');
  await page.getByText('The connection is lost').waitFor();
  isCut = false;
  await page.keyboard.type(', slowly');
  await page.getByText('The connection is lost').waitFor({state: 'hidden'});
  await page.keyboard.type('.');
  assert.equal(await phone.field('Title').inputValue(), 'Lantern Walk at Night, slowly.');
  await phone.button('Import').click();
  const [song] = await filed(phone, 1);
  assert.equal((await program.tags(song)).title, 'Lantern Walk at Night, slowly.');
});

test('The whole road can be taken by keyboard alone', async () => {
  program.copy(lantern, 'Night/lantern.mp3');
  const phone = await open(desk);
  const {keyboard} = phone.page;
  const tabTo = async locator => {
    for (let presses = 0; presses < 40; presses += 1) {
      await keyboard.press('Tab');
      if (await locator.evaluate(element => element === document.activeElement)) return;
    }
    assert.fail('the keyboard does not get there');
  };
  await tabTo(phone.row('Night'));
  await keyboard.press('Enter');
  await phone.waitForFolder('/var/mobile/Media/Night');
  await tabTo(phone.row('lantern.mp3'));
  await keepShot(phone.page, 'keyboard-row');
  await keyboard.press('Enter');
  await phone.waitForValue('Title', 'Lantern Walk');
  await phone.still();
  await tabTo(phone.field('Album'));
  await keyboard.press('Control+A');
  await keyboard.type('Second Steps');
  await tabTo(phone.button('Choose cover'));
  await keyboard.press('Enter');
  await phone.page.getByRole('dialog').waitFor();
  await phone.page.locator('input[type=file]').setInputFiles({name: 'a.png', mimeType: 'image/png', buffer: await redAndBlue(phone.page, 300, 300)});
  await tabTo(phone.page.locator('.picker .square'));
  for (let step = 0; step < 12; step += 1) await keyboard.press('+');
  for (let step = 0; step < 40; step += 1) await keyboard.press('ArrowRight');
  await keepShot(phone.page, 'keyboard-picker');
  await tabTo(phone.page.getByRole('button', {name: 'Use'}));
  await keyboard.press('Enter');
  await phone.page.getByRole('dialog').waitFor({state: 'detached'});
  await tabTo(phone.button('Import'));
  await keyboard.press('Enter');
  const [song] = await filed(phone, 1);
  const tags = await program.tags(song);
  assert.equal(tags.album, 'Second Steps');
  assert.deepEqual((await lookAt(phone.page, tags.covers[0], [[0.1, 0.1], [0.9, 0.9]])).colors, ['red', 'red']);
});

test('Two pages show the same device', async () => {
  program.copy(lantern);
  const one = await open(desk);
  const other = await open(desk);
  await one.openSong('lantern.mp3', 'Lantern Walk');
  await other.waitForValue('Title', 'Lantern Walk');
  await one.field('Title').fill('Typed in one');
  await other.waitForValue('Title', 'Typed in one');
  await other.field('Artist').fill('Typed in the other');
  await one.waitForValue('Artist', 'Typed in the other');
  await other.button('Cancel').click();
  await one.field('Title').waitFor({state: 'hidden'});
});

test('A picked file that is no picture changes nothing', async () => {
  program.copy(lantern);
  const phone = await open();
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  while ((await phone.pictures()).length < 2) await phone.frame();
  const before = await phone.pictures();
  await phone.button('Choose cover').click();
  await phone.page.locator('input[type=file]').setInputFiles({name: 'song.mp3', mimeType: 'audio/mpeg', buffer: fs.readFileSync(lantern)});
  await phone.page.getByRole('dialog').getByText('“song.mp3” is no picture').waitFor();
  await phone.still();
  await keepShot(phone.page, 'no-picture');
  await phone.page.getByRole('dialog').getByRole('button', {name: 'Cancel'}).click();
  await phone.page.getByRole('dialog').waitFor({state: 'detached'});
  assert.deepEqual(await phone.pictures(), before);
});

test('A file that vanishes before its import fails with the reason, and can be tried again', async () => {
  program.copy(lantern);
  const phone = await open(desk);
  await phone.openSong('lantern.mp3', 'Lantern Walk');
  fs.rmSync(path.join(program.media, 'lantern.mp3'));
  await phone.button('Import').click();
  await phone.region('Downloads').getByText('Failed').waitFor();
  await keepShot(phone.page, 'failed-download');
  program.copy(lantern);
  await phone.region('Downloads').getByRole('button', {name: 'Retry'}).click();
  await filed(phone, 1);
});
