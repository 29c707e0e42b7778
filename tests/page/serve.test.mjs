// The page at a real `quaverly serve`: how one gets in, the host's panels, and its end.
import assert from 'node:assert/strict';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {desk, keepShot, launch, openWindow} from './support/browser.mjs';
import {Program, lantern} from './support/program.mjs';

let browser, page, program;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(async () => {
  program = new Program();
  program.copy(lantern);
  await program.serve();
  page = await openWindow(browser, desk);
  await page.goto(program.address);
  await page.getByRole('region', {name: 'Library'}).waitFor();
  await page.waitForLoadState('networkidle'); // what is still on its way would break off when the program ends
});
afterEach(async () => {
  await page.context().close();
  await program.end();
  assert.deepEqual(page.problems, []);
});

const region = name => page.getByRole('region', {name});

test('The token is exchanged for a cookie and leaves the address', async () => {
  await page.waitForURL('http://127.0.0.1:*/');
  const [cookie] = await page.context().cookies();
  assert.ok(cookie.httpOnly && cookie.sameSite === 'Strict');
  assert.ok(!program.address.includes(cookie.value));
});

test('A song that another command imports appears in both panels, with its cover, and plays', async () => {
  await program.command('import', lantern);
  await region('Downloads').getByText('In the library').waitFor();
  const song = region('Library').getByRole('listitem').filter({hasText: 'Lantern Walk'});
  await song.locator('img').waitFor();
  await page.waitForFunction(() => document.querySelector('.song img').naturalWidth > 0);
  await song.getByRole('button', {name: 'Play Lantern Walk'}).click();
  await song.getByRole('button', {name: 'Pause Lantern Walk'}).waitFor();
  await page.waitForFunction(() => document.querySelector('audio').duration > 1);
  await keepShot(page, 'panels');
});

test('When quaverly has ended the page says so', async () => {
  assert.equal(await program.stop(), 0);
  await page.getByRole('status').getByText('The connection is lost').waitFor();
  page.problems = page.problems.filter(problem => !problem.includes('ERR_CONNECTION_REFUSED'));
});

test('A page of an earlier start is told to open the new address', async () => {
  await program.stop();
  await page.getByRole('status').getByText('The connection is lost').waitFor();
  await program.serve();
  await page.getByRole('status').getByText('Open the address that it prints').waitFor();
  page.problems = page.problems.filter(problem => !/ERR_CONNECTION_REFUSED|403/.test(problem));
});
