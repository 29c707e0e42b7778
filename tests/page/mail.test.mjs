// The support mail: a real `quaverly serve`, a real browser, and programs that stand in for the system's mailer.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {accessibilityProblems, desk, keepShot, launch, openWindow, phone as phoneSize} from './support/browser.mjs';
import {FakeHost} from './support/fakeHost.mjs';
import {installMailer, installRecorder, readMail} from './support/mailer.mjs';
import {Phone} from './support/phone.mjs';
import {Program} from './support/program.mjs';
import {window as root} from './support/screens.mjs';

let browser, program, page, phone, host, expected;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(() => {
  program = new Program();
  expected = [];
});
afterEach(async () => {
  await page.context().close();
  await program.end();
  host?.stop();
  assert.deepEqual(page.problems.filter(problem => !expected.some(part => problem.includes(part))), []);
});

const dialog = () => page.getByRole('dialog', {name: 'New mail'});
const button = name => dialog().getByRole('button', {name, exact: true});
const frame = () => page.frameLocator('.mail iframe');
const editor = () => frame().locator('body');
const message = text => dialog().getByRole('status').getByText(text);
const gone = async () => {
  await dialog().waitFor({state: 'detached'});
  await phone.still();
};

/** Opens the page and the sheet, and waits until the cursor stands in it. */
async function openMail(viewport = phoneSize) {
  await program.serve();
  page = await openWindow(browser, viewport);
  await page.goto(program.address);
  phone = new Phone(page);
  await phone.row('Write to support').click();
  await editorIsReady();
}

async function editorIsReady() {
  await dialog().waitFor();
  await phone.still();
  await page.waitForFunction(() => document.activeElement.matches('.mail iframe'));
}

for (const [name, viewport] of [['phone', phoneSize], ['desk', desk]]) {
  test(`A mail is written and sent by keyboard, on a ${name}`, async () => {
    const sent = installRecorder(program);
    await program.serve();
    page = await openWindow(browser, viewport);
    await page.goto(program.address);
    phone = new Phone(page);
    await phone.row('Write to support').focus();
    await page.keyboard.press('Enter');
    await editorIsReady();
    await page.keyboard.type('My songs <sing> & dance.');
    await keepShot(page, `${name}-mail`);
    assert.deepEqual(await accessibilityProblems(page), []);
    await button('Send').focus();
    await page.keyboard.press('Enter');
    await gone();
    assert.equal(fs.readFileSync(`${sent}.arguments`, 'utf8'), '-t -i\n');
    const {headers, parts, defects} = await readMail(sent);
    assert.deepEqual(defects, []);
    assert.equal(headers.To, 'support@tolmarin.example');
    assert.equal(headers.Subject, 'Quaverly Support');
    assert.ok(!('X-Unsent' in headers));
    assert.match(parts[0].text, /^<style>[^<]+<\/style><p>My songs &lt;sing&gt; &amp; dance\.(&nbsp;)?<\/p><p>&nbsp;<\/p>/);
    assert.match(parts[0].text, /<strong>Quaverly Version:<\/strong> 1\.4\.5/);
    assert.deepEqual([parts[1].type, parts[1].name], ['text/plain', 'Cydia Status.txt']);
    assert.equal(parts[1].text, fs.readFileSync('/var/lib/dpkg/status', 'utf8'));
  });
}

test('A mail goes by mouse to whom the person names', async () => {
  const sent = installRecorder(program);
  await openMail();
  await dialog().getByLabel('To').fill('one@a.example; two@b.example');
  await dialog().getByLabel('Subject').fill('Über Töne');
  await editor().locator('p').first().click();
  await page.keyboard.type('Hello');
  await button('Send').click();
  await gone();
  const {headers} = await readMail(sent);
  assert.equal(headers.To, 'one@a.example, two@b.example');
  assert.equal(headers.Subject, 'Über Töne');
});

test('The attachment is there to be read before it leaves', async () => {
  installRecorder(program);
  await openMail();
  const link = dialog().getByRole('link', {name: /^Cydia Status\.txt, .*B, shown in a new tab$/});
  const [tab] = await Promise.all([page.context().waitForEvent('page'), link.click()]);
  await tab.waitForLoadState();
  assert.equal(await tab.evaluate(() => document.contentType), 'text/plain');
  assert.ok((await tab.locator('body').innerText()).startsWith('Package: '));
  assert.equal(await tab.evaluate(() => window.opener), null);
});

test('A draft is saved as a file that mail programs open', async () => {
  installRecorder(program);
  await openMail();
  await page.keyboard.type('Later');
  const download = page.waitForEvent('download');
  await button('Save draft').click();
  const file = await download;
  assert.equal(file.suggestedFilename(), 'Quaverly Support.eml');
  const {headers, parts, defects} = await readMail(await file.path());
  assert.deepEqual(defects, []);
  assert.equal(headers['X-Unsent'], '1');
  assert.match(parts[0].text, /<p>Later/);
  await gone();
});

test('A mailer that refuses is said with its words, the text stays, and the mail can be saved', async () => {
  installMailer(program, 'echo "sendmail: no relay is set" >&2; exit 75');
  expected = ['502'];
  await openMail();
  await page.keyboard.type('Keep me');
  await button('Send').click();
  await message('The mailer refused the mail (status 75): sendmail: no relay is set.').waitFor();
  await keepShot(page, 'mail-refused');
  assert.match(await editor().innerText(), /Keep me/);
  const download = page.waitForEvent('download');
  await button('Save draft').click();
  await download;
  await gone();
});

test('A mailer that hangs holds neither the sheet nor the program', async () => {
  installMailer(program, 'exec tail -f /dev/null');
  expected = ['409', '50', 'net::ERR'];
  await openMail();
  await button('Send').click();
  await message('Sending…').waitFor();
  assert.ok(await button('Send').isDisabled());
  await button('Cancel').click();
  await gone();
  await phone.row('Write to support').click();
  await editorIsReady();
  await button('Send').click();
  await message('Sending…').waitFor();
  const began = Date.now();
  assert.equal(await program.stop(), 0);
  assert.ok(Date.now() - began < 20_000);
});

test('What was written is still there when the device was turned', async () => {
  installRecorder(program);
  await openMail(desk);
  await page.keyboard.type('Still here');
  await page.getByRole('button', {name: 'Turn'}).click();
  await page.waitForFunction(() => document.getElementById('screen').clientWidth === 667);
  await phone.still();
  await keepShot(page, 'mail-turned');
  assert.match(await editor().innerText(), /Still here/);
  assert.ok(await button('Send').isVisible());
  assert.ok(await button('Save draft').isVisible());
});

test('An address that is none is said', async () => {
  const sent = installRecorder(program);
  expected = ['422'];
  await openMail();
  await dialog().getByLabel('To').fill('nobody');
  await button('Send').click();
  await message('“nobody” is no mail address.').waitFor();
  assert.ok(!fs.existsSync(sent));
});

test('Cancelling asks before anything that was written is lost', async () => {
  installRecorder(program);
  await openMail();
  await button('Cancel').click();
  await gone();
  await phone.row('Write to support').click();
  await editorIsReady();
  await page.keyboard.type('x');
  await page.keyboard.press('Escape');
  await message('What you wrote is lost if you cancel.').waitFor();
  await button('Cancel').click();
  await gone();
});

test('Scripts and pictures that are pasted neither run nor leave', async () => {
  const sent = installRecorder(program);
  await openMail();
  const foreign = [];
  // What the page's policy holds back never gets here.
  await page.context().route(/t\.example/, route => {
    foreign.push(route.request().url());
    return route.abort();
  });
  const evil = [
    '<img src="https://t.example/a.gif" onerror="top.ran=1"><script>top.ran=1</' + 'script>',
    '<svg onload="top.ran=1"></svg><iframe src="javascript:top.ran=1"></iframe><a href="javascript:top.ran=1">link</a>',
    '<b onclick="top.ran=1" style="background:url(https://t.example/b.gif)">bold</b><object data="https://t.example/c"></object>',
  ].join('');
  expected = ['Content Security Policy', 'Content-Security-Policy', 'Blocked script', 'sandbox'];
  // As the clipboard has it, and as a hostile extension would write it.
  await page.evaluate(html => {
    const inner = document.querySelector('.mail iframe').contentDocument;
    inner.execCommand('insertHTML', false, html);
    inner.body.insertAdjacentHTML('beforeend', html);
    const script = inner.createElement('script');
    script.textContent = 'top.ran=1';
    inner.body.append(script);
  }, evil);
  await editor().getByText('bold').first().click();
  await editor().getByText('link').first().click();
  await button('Send').click();
  await gone();
  assert.equal(await page.evaluate(() => window.ran), undefined);
  assert.deepEqual(foreign, []);
  const {parts} = await readMail(sent);
  assert.match(parts[0].text, /<a>link<\/a>/);
  assert.match(parts[0].text, /<b[^>]*>bold<\/b>/);
  assert.doesNotMatch(parts[0].text, /t\.example|ran=1|javascript|<img|<script|onerror|onclick/);
});

test('Where there is no mailer a mail can only be saved', async () => {
  host = await FakeHost.start();
  page = await openWindow(browser, phoneSize);
  const mail = {kind: 'mail', place: [0, 0, 375, 667], to: 'a@b.example', subject: 'x', attachments: [], sends: false};
  expected = ['404'];
  await host.show(page, {1: root([2]), 2: mail});
  await button('Save draft').waitFor();
  assert.ok(!(await button('Send').isVisible()));
  await button('Cancel').click();
  while (host.all('cancel').length === 0) await page.evaluate(() => new Promise(requestAnimationFrame));
});
