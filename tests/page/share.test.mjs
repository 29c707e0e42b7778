// The share sheet and the links of the first pane: what opens, where, and what the new tab knows of the page.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {accessibilityProblems, keepShot, launch, openWindow, phone as phoneSize} from './support/browser.mjs';
import {FakeHost} from './support/fakeHost.mjs';
import {Phone} from './support/phone.mjs';
import {Program} from './support/program.mjs';
import {window as root} from './support/screens.mjs';

const praise = '#Quaverly by @Tolmarin is the best way to download music directly from your iDevice!\nhttps://repo.tolmarin.example/deb';

let browser, program, page, phone, host;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(async () => {
  program = new Program();
  await program.serve();
  page = await openWindow(browser, phoneSize);
  // Pages of elsewhere, which there is no way to from here.
  await page.context().route(/\.example\//, route => route.fulfill({contentType: 'text/html', body: '<title>elsewhere</title>'}));
  await page.goto(program.address);
  phone = new Phone(page);
  await phone.row('Donate').waitFor();
});
afterEach(async () => {
  await page.context().close();
  await program.end();
  host?.stop();
  assert.deepEqual(page.problems, []);
});

const dialog = () => page.getByRole('dialog', {name: 'Share'});
const text = () => dialog().getByRole('textbox', {name: 'Text'});
const post = () => dialog().getByRole('button', {name: 'Post'});

async function openShare() {
  await page.locator('#screen .bar button:visible').last().click();
  await dialog().waitFor();
  await phone.still();
}

/** The tab that an act opens; it knows nothing of the page. */
async function tabOf(act) {
  const [tab] = await Promise.all([page.context().waitForEvent('page'), act()]);
  await tab.waitForLoadState();
  assert.equal(await tab.evaluate(() => window.opener), null);
  assert.equal(await tab.evaluate(() => document.referrer), '');
  return tab.url();
}

test('A text is finished and posted on the service’s page, by keyboard', async () => {
  await openShare();
  await page.waitForFunction(() => document.activeElement.matches('.share textarea'));
  assert.equal(await text().inputValue(), praise);
  await dialog().getByText('Characters left: 22').waitFor();
  await keepShot(page, 'phone-share');
  assert.deepEqual(await accessibilityProblems(page), []);
  await page.keyboard.type(' & 音');
  await post().focus();
  const url = await tabOf(() => page.keyboard.press('Enter'));
  assert.equal(url, `https://twitter.example/intent/tweet?text=${encodeURIComponent(`${praise} & 音`)}`);
  await dialog().waitFor({state: 'detached'});
});

test('A text is counted as the service counts, and one that is too long cannot be posted', async () => {
  await openShare();
  await text().fill('x'.repeat(138) + '🎵');
  await dialog().getByText('Characters left: 0').waitFor();
  assert.ok(await post().isEnabled());
  await text().fill('x'.repeat(139) + '🎵');
  await dialog().getByText('Characters too many: 1').waitFor();
  assert.ok(await post().isDisabled());
  assert.deepEqual(await accessibilityProblems(page), []);
  await text().fill(' ');
  assert.ok(await post().isDisabled());
});

test('A text that is cancelled goes nowhere', async () => {
  await openShare();
  await dialog().getByRole('button', {name: 'Cancel'}).click();
  await dialog().waitFor({state: 'detached'});
  await phone.still();
  await openShare();
  await page.keyboard.press('Escape');
  await dialog().waitFor({state: 'detached'});
  assert.equal(page.context().pages().length, 1);
});

for (const [row, address] of [
  ['Follow on Twitter', 'https://twitter.example/Tolmarin'],
  ['Donate', 'https://tolmarin.example/donate'],
  ['Visit the repository', 'https://repo.tolmarin.example/'],
]) {
  test(`“${row}” opens its page in a tab of its own, by mouse and by keyboard`, async () => {
    assert.equal(await tabOf(() => phone.row(row).click()), address);
    await page.bringToFront();
    await phone.row(row).focus();
    assert.equal(await tabOf(() => page.keyboard.press('Enter')), address);
  });
}

test('With the application there, following opens it instead of the web', async () => {
  await page.context().close();
  await program.end();
  program = new Program();
  const opened = path.join(program.home, 'opened');
  const bin = path.join(program.home, 'bin');
  const applications = path.join(program.home, '.local/share/applications');
  for (const folder of [bin, applications]) fs.mkdirSync(folder, {recursive: true});
  fs.writeFileSync(path.join(bin, 'xdg-open'), `#!/bin/sh\nprintf '%s\\n' "$@" > '${opened}.new' && mv '${opened}.new' '${opened}'\n`, {mode: 0o755});
  fs.writeFileSync(path.join(applications, 'bird.desktop'), '[Desktop Entry]\n');
  fs.writeFileSync(path.join(applications, 'mimeapps.list'), '[Default Applications]\nx-scheme-handler/twitter=bird.desktop\n');
  Object.assign(program.environment, {DISPLAY: ':0', PATH: `${bin}:${process.env.PATH}`});
  await program.serve();
  page = await openWindow(browser, phoneSize);
  await page.goto(program.address);
  phone = new Phone(page);
  await phone.row('Follow on Twitter').click();
  while (!fs.existsSync(opened)) await phone.frame();
  assert.equal(fs.readFileSync(opened, 'utf8'), 'twitter:///user?screen_name=Tolmarin\n');
  assert.equal(page.context().pages().length, 1);
});

test('A page that may not open a tab offers the link instead', async () => {
  host = await FakeHost.start();
  const other = await openWindow(browser, phoneSize);
  await other.context().route(/\.example\//, route => route.fulfill({contentType: 'text/html', body: 'elsewhere'}));
  // The driver of the browser counts as a person; here none has done anything for a while.
  await other.addInitScript(() => Object.defineProperty(navigator, 'userActivation', {value: {isActive: false}}));
  await host.show(other, {1: root([])});
  host.send({type: 'open', url: 'javascript:alert(1)'});
  host.send({type: 'open', url: 'https://tolmarin.example/donate'});
  const link = other.getByRole('link', {name: 'Open tolmarin.example'});
  await link.waitFor();
  await keepShot(other, 'link-bar');
  assert.deepEqual(await accessibilityProblems(other), []);
  assert.equal(other.context().pages().length, 1);
  const [tab] = await Promise.all([other.context().waitForEvent('page'), link.click()]);
  await tab.waitForURL('https://tolmarin.example/donate');
  await link.waitFor({state: 'detached'});
  await other.context().close();
  assert.deepEqual(other.problems, []);
});
