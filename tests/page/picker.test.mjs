// Picking a picture: the browser's chooser, the square, and the file that the host gets.
import assert from 'node:assert/strict';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {accessibilityProblems, keepShot, launch, openWindow, phone} from './support/browser.mjs';
import {FakeHost} from './support/fakeHost.mjs';
import {lookAt, onItsSide, redAndBlue} from './support/pictures.mjs';
import {button, window as root} from './support/screens.mjs';

let browser, host, page;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(async () => {
  host = await FakeHost.start();
  page = await openWindow(browser, phone, {hasTouch: true});
});
afterEach(async () => {
  await page.context().close();
  host.stop();
  assert.deepEqual(page.problems, []);
});

const sides = [[0.02, 0.5], [0.98, 0.5]];
const square = () => page.locator('.picker .square');
const picker = {kind: 'picker', place: [0, 0, 375, 667], editing: true};

const showPicker = (more = {}) => host.show(page, {1: root([2]), 2: {...picker, ...more}});

async function choose(buffer, name = 'cover.png', mimeType = 'image/png') {
  await page.locator('input[type=file]').setInputFiles({name, mimeType, buffer});
  await page.getByRole('button', {name: 'Use'}).waitFor();
}

/** What the host gets when the person takes the picture as it lies. */
async function use() {
  const sent = page.waitForResponse('**/picked?node=2');
  await page.getByRole('button', {name: 'Use'}).click();
  await sent;
  const {url, body} = host.picked.at(-1);
  assert.equal(url, '/picked?node=2');
  assert.equal(body.subarray(1, 4).toString(), 'PNG');
  return lookAt(page, body, sides);
}

test('The browser’s file chooser opens at once after a tap', async () => {
  await host.show(page, {1: root([3]), 3: button('Camera', [0, 0, 80, 44])});
  host.onMessage = ({type}) => type === 'tap' && host.change({1: root([3, 2]), 2: picker});
  const chooser = page.waitForEvent('filechooser');
  await page.getByRole('button', {name: 'Camera'}).click();
  await chooser;
  assert.equal(await page.evaluate(() => document.activeElement.getAttribute('role')), 'dialog');
});

test('Without a tap the chooser waits for one', async () => {
  await showPicker();
  const chooser = page.waitForEvent('filechooser');
  await page.getByRole('button', {name: 'Choose picture'}).click();
  await chooser;
});

test('The square shows the middle of a picture', async () => {
  await showPicker();
  await choose(await redAndBlue(page, 800, 200));
  await keepShot(page, 'picker');
  assert.deepEqual(await accessibilityProblems(page), []);
  assert.deepEqual(await use(), {width: 200, height: 200, colors: ['red', 'blue']});
});

test('A mouse moves the picture, but not out of the square', async () => {
  await showPicker();
  await choose(await redAndBlue(page, 800, 200));
  const {x, y, width} = await square().boundingBox();
  await page.mouse.move(x + width / 2, y + 50);
  await page.mouse.down();
  await page.mouse.move(x + width / 2 - 3000, y + 400, {steps: 5});
  await page.mouse.up();
  assert.deepEqual(await use(), {width: 200, height: 200, colors: ['blue', 'blue']});
});

test('A wheel scales the picture around the mouse', async () => {
  await showPicker();
  await choose(await redAndBlue(page, 400, 400));
  const {x, y, width} = await square().boundingBox();
  await page.mouse.move(x + width / 4, y + width / 2);
  await page.mouse.wheel(0, -Math.round(400 * Math.log(4)));
  await page.waitForFunction(() => Number(document.querySelector('.zoom').value) > 0.6);
  const seen = await use();
  assert.ok(Math.abs(seen.width - 100) <= 1, String(seen.width));
  assert.deepEqual(seen.colors, ['red', 'red']);
});

test('The keyboard alone moves, scales and takes the picture', async () => {
  await showPicker();
  await choose(await redAndBlue(page, 400, 400));
  await square().focus();
  for (const key of ['+', '+', '+', '+', '+', '+', '+', '-']) await page.keyboard.press(key);
  for (let step = 0; step < 60; step += 1) await page.keyboard.press('ArrowRight');
  const seen = await use();
  assert.equal(seen.width, Math.round(400 / 1.1 ** 6));
  assert.deepEqual(seen.colors, ['red', 'blue']);
  assert.deepEqual((await lookAt(page, host.picked[0].body, [[0.4, 0.5], [0.95, 0.5]])).colors, ['red', 'blue']);
});

test('Two fingers scale the picture', async () => {
  await showPicker();
  await choose(await redAndBlue(page, 400, 400));
  const {x, y, width} = await square().boundingBox();
  const touch = await page.context().newCDPSession(page);
  const fingers = distance => [-1, 1].map((side, id) => ({x: x + width / 2 + side * distance, y: y + width / 2, id}));
  await touch.send('Input.dispatchTouchEvent', {type: 'touchStart', touchPoints: fingers(40)});
  for (const distance of [50, 60, 70, 80]) await touch.send('Input.dispatchTouchEvent', {type: 'touchMove', touchPoints: fingers(distance)});
  await touch.send('Input.dispatchTouchEvent', {type: 'touchEnd', touchPoints: []});
  const seen = await use();
  assert.ok(seen.width >= 190 && seen.width <= 215, String(seen.width));
  assert.deepEqual(seen.colors, ['red', 'blue']);
});

test('A photograph stands upright', async () => {
  await showPicker();
  await choose(onItsSide(await redAndBlue(page, 200, 200, 'image/jpeg')), 'photo.jpg', 'image/jpeg');
  await use();
  const {colors} = await lookAt(page, host.picked[0].body, [[0.5, 0.02], [0.5, 0.98]]);
  assert.deepEqual(colors, ['red', 'blue']);
});

test('A large picture is sent with 3000 pixels a side', async () => {
  await showPicker();
  await choose(await redAndBlue(page, 4200, 3600));
  assert.deepEqual(await use(), {width: 3000, height: 3000, colors: ['red', 'blue']});
});

test('A picture that is not cut keeps its shape', async () => {
  await showPicker({editing: false});
  await choose(await redAndBlue(page, 400, 100));
  assert.deepEqual(await use(), {width: 400, height: 100, colors: ['red', 'blue']});
});

test('What the host has against a picture is said, and the picture stays', async () => {
  host.pickedRefusal = 'The disk is full.';
  await showPicker();
  await choose(await redAndBlue(page, 100, 100));
  await use();
  await page.getByRole('dialog').getByText('The disk is full.').waitFor();
  assert.ok(await page.getByRole('button', {name: 'Use'}).isEnabled());
  page.problems = page.problems.filter(problem => !problem.includes('422'));
});
