// What a test of the whole page needs: a browser, a program with a home of its own, and a phone that shows it.
import assert from 'node:assert/strict';
import {after, afterEach, before, beforeEach} from 'node:test';
import {launch, openWindow} from './browser.mjs';
import {Phone} from './phone.mjs';
import {Program} from './program.mjs';

export let browser, program, phone;

/** Sets them up for every test of a file, which opens one phone. At a test's end nothing may have gone wrong in the page. */
export function setStage() {
  before(async () => (browser = await launch()));
  after(() => browser.close());
  beforeEach(() => (program = new Program()));
  afterEach(async () => {
    await phone.page.context().close();
    await program.end();
    assert.deepEqual(phone.page.problems, []);
  });
}

/** Serves, and shows the first pane. */
export async function openPanes(viewport) {
  await program.serve();
  phone = new Phone(await openWindow(browser, viewport));
  await phone.page.goto(program.address);
}

/** Serves, and goes on to the browser screen. */
export async function openFolders(viewport) {
  await openPanes(viewport);
  await phone.goToBrowser();
}
