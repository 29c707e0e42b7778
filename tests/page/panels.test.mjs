// Downloads and Library, at a host of a few lines.
import assert from 'node:assert/strict';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {accessibilityProblems, desk, keepShot, launch, openWindow, phone} from './support/browser.mjs';
import {FakeHost} from './support/fakeHost.mjs';
import {window as root} from './support/screens.mjs';

let browser, host, page;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(async () => {
  host = await FakeHost.start();
  page = await openWindow(browser, desk);
  await host.show(page, {1: root([])});
});
afterEach(async () => {
  await page.context().close();
  host.stop();
  assert.deepEqual(page.problems, []);
});

const downloads = () => page.getByRole('region', {name: 'Downloads'});
const library = () => page.getByRole('region', {name: 'Library'});
const download = (id, state, more = {}) => ({id, file: `${id}.mp3`, title: `Song ${id}`, state, bytes: 0, total: 0, canRetry: state === 'failed', ...more});
const song = (id, more = {}) => ({id, title: `Song ${id}`, artist: 'The Quaver House Band', path: `Song ${id}.mp3`, hasCover: false, ...more});
const titles = region => region().getByRole('listitem').locator('.title').allTextContents();

test('Downloads show how far they are, the newest first', async () => {
  host.send({type: 'downloads', whole: true, notice: '', items: [download(3, 'fetching', {bytes: 500_000, total: 2_000_000}), download(2, 'queued')]});
  host.send({type: 'downloads', notice: '', items: [download(4, 'queued')]});
  const bar = downloads().getByRole('progressbar', {name: 'Progress of Song 3'});
  await bar.waitFor();
  assert.equal(await bar.getAttribute('aria-valuenow'), '25');
  await downloads().getByText('500 kB of 2 MB').waitFor();
  assert.deepEqual(await titles(downloads), ['Song 4', 'Song 3', 'Song 2']);
});

test('A failed download says why and can be tried again', async () => {
  host.send({type: 'downloads', whole: true, notice: '', items: [download(3, 'fetching')]});
  host.send({type: 'downloads', notice: '', items: [download(3, 'failed', {reason: 'The file is gone.'})]});
  await downloads().getByText('The file is gone.').waitFor();
  assert.equal(await downloads().getByRole('progressbar').count(), 0);
  assert.equal(await page.locator('#announcer').textContent(), 'Song 3 failed. The file is gone.');
  await downloads().getByRole('button', {name: 'Retry'}).click();
  while (host.all('retry').length === 0) await page.evaluate(() => new Promise(requestAnimationFrame));
  assert.deepEqual(host.all('retry'), [{type: 'retry', id: 3}]);
});

test('What stops all downloads is said, and no longer when it is over', async () => {
  host.send({type: 'downloads', whole: true, notice: 'Port 8080 is taken.', items: []});
  await downloads().getByText('Port 8080 is taken.').waitFor();
  host.send({type: 'downloads', notice: '', items: []});
  await downloads().getByText('What you import appears here.').waitFor();
});

test('Songs come in steps, as a person scrolls', async () => {
  host.onMessage = ({type, before}) => {
    if (type !== 'more-library') return;
    const items = Array.from({length: before - 1}, (_, index) => song(before - 1 - index));
    host.send({type: 'library', more: false, items});
  };
  host.send({type: 'library', whole: true, more: true, items: Array.from({length: 100}, (_, index) => song(140 - index))});
  await library().getByText('Song 140').waitFor();
  assert.deepEqual(host.all('more-library'), []);
  await library().evaluate(section => section.scrollTo(0, section.scrollHeight));
  await library().getByText('Song 1', {exact: true}).waitFor();
  assert.deepEqual(host.all('more-library')[0], {type: 'more-library', before: 41});
  assert.equal((await titles(library)).length, 140);
  assert.equal((await titles(library)).at(-1), 'Song 1');
});

test('A song without sound is said to be one', async () => {
  host.send({type: 'library', whole: true, more: false, items: [song(5)]});
  await library().getByRole('button', {name: 'Play Song 5'}).click();
  await library().getByText('Song 5 cannot be played').waitFor();
  page.problems = page.problems.filter(problem => !problem.includes('404'));
});

test('On a narrow window the panels are behind a button, by keyboard too', async () => {
  await page.setViewportSize(phone);
  host.send({type: 'library', whole: true, more: false, items: [song(5)]});
  await library().waitFor({state: 'hidden'});
  await page.getByRole('button', {name: 'Downloads and library'}).focus();
  await page.keyboard.press('Enter');
  await library().getByText('Song 5').waitFor();
  await keepShot(page, 'panels-narrow');
  assert.deepEqual(await accessibilityProblems(page), []);
  await page.keyboard.press('Escape');
  await library().waitFor({state: 'hidden'});
  assert.equal(await page.evaluate(() => document.activeElement.id), 'open-panels');
});
