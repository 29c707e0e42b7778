// The page alone, at a host of a few lines: what each kind of node becomes, and what the page says back.
import assert from 'node:assert/strict';
import {after, afterEach, before, beforeEach, test} from 'node:test';
import {accessibilityProblems, desk, keepShot, launch, openWindow, phone} from './support/browser.mjs';
import {FakeHost} from './support/fakeHost.mjs';
import {FolderScreen, button, field, label, window as root} from './support/screens.mjs';

let browser, host, page;

before(async () => (browser = await launch()));
after(() => browser.close());
beforeEach(async () => {
  host = await FakeHost.start();
  page = await openWindow(browser, phone);
});
afterEach(async () => {
  await page.context().close();
  host.stop();
  assert.deepEqual(page.problems, []);
});

const node = id => page.locator(`[data-node="${id}"]`);
const focused = () => page.evaluate(() => document.activeElement.dataset?.node ?? document.activeElement.localName);
const style = (id, name) => node(id).evaluate((element, property) => getComputedStyle(element)[property], name);

/** Waits until the host has got as many messages of a type. */
async function heard(type, count = 1) {
  while (host.all(type).length < count) await page.evaluate(() => new Promise(requestAnimationFrame));
  return host.all(type);
}

/** Waits until the page has taken all that was sent to it so far. */
async function settled() {
  const id = 9_000_000 + (host.marks = (host.marks ?? 0) + 1);
  host.change({1: {...host.nodes[1], children: [...host.nodes[1].children, id]}, [id]: {kind: 'view', place: [0, 0, 0, 0], passive: true}});
  await node(id).waitFor({state: 'attached'});
}

test('A page says first who it is and how large it shows the device', async () => {
  await host.show(page, {1: root([])});
  const [hello] = host.received;
  assert.equal(hello.type, 'hello');
  assert.match(hello.client, /^[0-9a-f]+$/);
  assert.deepEqual([hello.width, hello.height, hello.orientation], [375, 667, 1]);
});

test('On a desk the device has the size of a phone, and turns', async () => {
  await page.setViewportSize(desk);
  await host.show(page, {1: root([])});
  await page.getByRole('button', {name: 'Turn'}).click();
  const [turned] = await heard('screen');
  assert.deepEqual(turned, {type: 'screen', width: 667, height: 375, orientation: 3});
});

test('A window that changes its size changes the device and loads nothing again', async () => {
  await host.show(page, {1: root([])});
  await page.evaluate(() => (globalThis.isStillHere = true));
  await page.setViewportSize({width: 375, height: 380});
  const said = await heard('screen');
  assert.deepEqual(said.at(-1), {type: 'screen', width: 375, height: 380, orientation: 1});
  assert.equal(await page.evaluate(() => globalThis.isStillHere), true);
});

test('A phone that is held on its side says so', async () => {
  await page.context().close();
  page = await openWindow(browser, {width: 667, height: 375}, {isMobile: true, hasTouch: true});
  host.screen = [667, 375];
  await host.show(page, {1: root([], {place: [0, 0, 667, 375]})});
  const [{width, height, orientation}] = host.received;
  assert.deepEqual([width, height], [667, 375]);
  assert.ok(orientation === 3 || orientation === 4, String(orientation));
  assert.deepEqual(await node(1).boundingBox(), {x: 0, y: 0, width: 667, height: 375});
});

test('A device that another page made larger is shown whole', async () => {
  host.screen = [667, 375];
  await host.show(page, {1: root([], {place: [0, 0, 667, 375]})});
  const {x, width} = await node(1).boundingBox();
  assert.ok(x >= 0 && Math.abs(width - 375) < 1, `${x} ${width}`);
});

test('Nodes stand where the host says and look as it says', async () => {
  await host.show(page, {
    1: root([2]),
    2: {
      kind: 'view', place: [10, 20, 100, 50], background: 'rgb(10 20 30)', alpha: 0.5, corner: 4, clip: true,
      border: [0.8, 'rgb(1 2 3)'], transform: [Math.PI / 2, 1, 1, 5, 0],
    },
  });
  assert.equal(await style(2, 'backgroundColor'), 'rgb(10, 20, 30)');
  assert.equal(await style(2, 'opacity'), '0.5');
  assert.equal(await style(2, 'borderRadius'), '4px');
  assert.equal(await style(2, 'overflow'), 'clip');
  // Turned by a right angle around its middle (60, 45), then shifted.
  const {x, y, width, height} = await node(2).boundingBox();
  assert.deepEqual([x, y, width, height].map(Math.round), [40, -5, 50, 100]);
});

test('Hidden nodes can neither be seen nor reached', async () => {
  await host.show(page, {1: root([2, 3]), 2: button('Away', [0, 0, 80, 44], {hidden: true}), 3: button('Here', [0, 50, 80, 44])});
  await page.keyboard.press('Tab');
  assert.equal(await focused(), '3');
  assert.equal(await page.getByRole('button', {name: 'Away'}).count(), 0);
});

test('A label cuts one line with an ellipsis and wraps many', async () => {
  const long = 'A title that is far too long for the room that it has';
  await host.show(page, {
    1: root([2, 3]),
    2: label(long, [0, 0, 120, 20]),
    3: label(long, [0, 30, 120, 100], {lines: 0, align: 'center'}),
  });
  const heights = await page.locator('.label .words').evaluateAll(all => all.map(each => each.offsetHeight));
  assert.ok(heights[0] < 25 && heights[1] > 60, String(heights));
  const middle = await page.locator('.label .words').nth(1).evaluate(words => {
    const inner = words.getBoundingClientRect();
    const outer = words.parentElement.getBoundingClientRect();
    return (inner.top + inner.bottom) / 2 - (outer.top + outer.bottom) / 2;
  });
  assert.ok(Math.abs(middle) < 1, String(middle));
});

test('Text is drawn in the fonts that the host serves', async () => {
  await host.show(page, {1: root([2]), 2: label('Text', [0, 0, 200, 40])});
  await page.evaluate(() => document.fonts.ready);
  const loaded = await page.evaluate(() => [...document.fonts].filter(font => font.status === 'loaded').map(font => font.family));
  assert.ok(loaded.some(family => family.includes('Arial')), String(loaded));
});

test('Buttons are named by their text or by their purpose, and say when they are tapped', async () => {
  await host.show(page, {
    1: root([2, 3, 4, 5]),
    2: button('Import', [0, 0, 80, 44]),
    5: button('', [100, 0, 20, 44], {back: true}),
    3: button('', [0, 50, 40, 40], {name: 'Choose picture', image: '/images/camera_icon@3x.png', imageSize: [24, 24], corner: 20}),
    4: button('Off', [0, 100, 80, 44], {disabled: true}),
  });
  await page.getByRole('button', {name: 'Import'}).click();
  await page.getByRole('button', {name: 'Choose picture'}).click();
  assert.deepEqual((await heard('tap', 2)).map(tap => tap.node), [2, 3]);
  assert.equal(await page.getByRole('button', {name: 'Back'}).count(), 1);
  assert.ok(await page.getByRole('button', {name: 'Off'}).isDisabled());
  assert.deepEqual(await node(3).locator('img').evaluate(image => [image.width, image.height]), [24, 24]);
});

test('A switch is a switch, on or off as the host says', async () => {
  const wlan = on => ({kind: 'switch', place: [300, 6, 51, 31], name: 'Enabled', on});
  await host.show(page, {1: root([2]), 2: wlan(false)});
  const control = page.getByRole('switch', {name: 'Enabled'});
  assert.equal(await control.isChecked(), false);
  await control.press('Space');
  await heard('tap');
  assert.equal(await control.isChecked(), false);
  host.change({2: wlan(true)});
  await page.getByRole('switch', {checked: true}).waitFor();
});

test('Only rows that can be chosen answer click and Enter', async () => {
  const cell = (top, more) => ({kind: 'cell', place: [0, top, 375, 50], row: top / 50 + 1, rows: 2, ...more});
  await host.show(page, {
    1: root([2]),
    2: {kind: 'table', place: [0, 0, 375, 667], content: [375, 100], offset: [0, 0], moved: 1, children: [3, 4]},
    3: cell(0, {children: [5]}),
    4: cell(50, {selectable: true, children: [6]}),
    5: label('plain', [15, 0, 300, 50], {passive: true}),
    6: label('chosen', [15, 0, 300, 50], {passive: true}),
  });
  await page.getByText('plain').click({force: true});
  await page.getByText('chosen').click({force: true});
  await page.keyboard.press('Enter');
  assert.deepEqual((await heard('tap', 2)).map(tap => tap.node), [4, 4]);
  assert.equal(await node(3).getAttribute('tabindex'), null);
  assert.equal(await page.getByRole('listitem').nth(1).getAttribute('aria-posinset'), '2');
});

test('The line below a row begins where the host says, and is not there without one', async () => {
  const cell = (top, more) => ({kind: 'cell', place: [0, top, 375, 50], row: top / 50 + 1, rows: 3, ...more});
  await host.show(page, {
    1: root([2]),
    2: {kind: 'table', place: [0, 0, 375, 667], content: [375, 150], offset: [0, 0], moved: 1, children: [3, 4, 5]},
    3: cell(0, {separator: [59, 'rgb(200 199 204)']}),
    4: cell(50, {separator: [0, 'rgb(200 199 204)']}),
    5: cell(100),
  });
  const line = id => node(id).evaluate(element => {
    const {content, left, borderBottomColor} = getComputedStyle(element, '::after');
    return content === 'none' ? null : [left, borderBottomColor];
  });
  assert.deepEqual(await line(3), ['59px', 'rgb(200, 199, 204)']);
  assert.deepEqual(await line(4), ['0px', 'rgb(200, 199, 204)']);
  assert.equal(await line(5), null);
});

test('An empty table is no list, but what else stands in it is seen', async () => {
  await host.show(page, {
    1: root([2]),
    2: {kind: 'table', place: [0, 0, 375, 667], content: [375, 0], inset: [64, 0, 0, 0], offset: [0, -64], moved: 1, children: [3]},
    3: label('No files here', [100, 250, 175, 30]),
  });
  assert.equal(await page.locator('#screen').getByRole('list').count(), 0);
  const seen = await page.evaluate(() => document.elementFromPoint(187, 64 + 265).textContent);
  assert.equal(seen, 'No files here');
});

test('Shapes draw the part of an ellipse that is asked for', async () => {
  await host.show(page, {
    1: root([2]),
    2: {kind: 'view', place: [100, 100, 45, 45], shapes: [{ellipse: [0, 0, 45, 45], stroke: 'rgb(90 160 252)', width: 5, start: 0, end: 0.6}]},
  });
  const ellipse = node(2).locator('ellipse');
  assert.equal(await ellipse.getAttribute('stroke-dasharray'), '0.6 1');
  assert.deepEqual(await ellipse.evaluate(({cx, rx}) => [cx.baseVal.value, rx.baseVal.value]), [22.5, 22.5]);
});

test('A page that comes in the middle of an animation shows its middle', async () => {
  const turning = {id: 1, property: 'transform', from: [0, 1, 1, 0, 0], to: [Math.PI, 1, 1, 0, 0], begin: host.now() - 5000, delay: 0, duration: 10_000, easing: 'linear', repeat: false, reverse: false};
  await host.show(page, {1: root([2]), 2: {kind: 'view', place: [100, 100, 50, 50], transform: [Math.PI, 1, 1, 0, 0], animations: [turning]}});
  const seconds = await node(2).evaluate(element => element.getAnimations()[0].currentTime / 1000);
  assert.ok(seconds > 4.9 && seconds < 9, String(seconds));
  const {a} = await node(2).evaluate(element => new DOMMatrix(getComputedStyle(element).transform));
  assert.ok(a < 0.1 && a > -0.95, String(a)); // around a right angle, not at the end
});

test('Before its delay is over an animation shows where it begins, and none that the host has ended goes on', async () => {
  const fading = {id: 1, property: 'alpha', from: [1], to: [0], begin: host.now(), delay: 60_000, duration: 100, easing: 'ease-out', repeat: false, reverse: false};
  const card = more => ({kind: 'view', place: [0, 0, 50, 50], alpha: 0, ...more});
  await host.show(page, {1: root([2]), 2: card({animations: [fading]})});
  assert.equal(await style(2, 'opacity'), '1');
  host.change({2: card()});
  await settled();
  assert.equal(await style(2, 'opacity'), '0');
});

test('Who wants no motion gets none, but fades', async () => {
  await page.emulateMedia({reducedMotion: 'reduce'});
  const endless = (id, property, from, to) => ({id, property, from, to, begin: host.now(), delay: 0, duration: 600, easing: 'linear', repeat: true, reverse: true});
  await host.show(page, {
    1: root([2]),
    2: {kind: 'view', place: [0, 0, 50, 50], animations: [endless(1, 'transform', [0, 1, 1, 0, 0], [1, 1, 1, 0, 0]), endless(2, 'center', [0, 0], [9, 9]), endless(3, 'alpha', [0], [1])]},
  });
  const properties = await node(2).evaluate(element => element.getAnimations().flatMap(each => Object.keys(each.effect.getKeyframes()[0])).filter(name => ['opacity', 'transform', 'translate'].includes(name)));
  assert.deepEqual(properties, ['opacity']);
});

test('A message is a status and is said once', async () => {
  await host.show(page, {1: root([])});
  host.change({1: root([2]), 2: {kind: 'view', place: [15, 283, 345, 100], role: 'status', background: 'rgb(245 245 245)', corner: 4, clip: true, children: [3]}, 3: label('Song imported', [0, 0, 345, 100], {align: 'center', lines: 0})});
  await page.locator('#screen').getByRole('status').getByText('Song imported').waitFor();
  assert.equal(await page.locator('#announcer').textContent(), 'Song imported');
});

test('Typing reaches the host as whole texts with growing numbers', async () => {
  await host.show(page, {1: root([2]), 2: field('Title', [50, 100, 300, 25], 'Old')});
  await page.getByLabel('Title').fill('');
  await page.getByLabel('Title').pressSequentially('Moon');
  const edits = await heard('edit', 5);
  assert.deepEqual(edits.map(({text}) => text), ['', 'M', 'Mo', 'Moo', 'Moon']);
  assert.deepEqual(edits.map(({sequence}) => sequence), [1, 2, 3, 4, 5]);
});

test('An older echo does not take away what was typed since', async () => {
  host.answersEdits = false;
  await host.show(page, {1: root([2]), 2: field('Title', [50, 100, 300, 25], '')});
  await page.getByLabel('Title').pressSequentially('abc');
  await heard('edit', 3);
  host.send({type: 'ack', node: 2, sequence: 1});
  host.change({2: field('Title', [50, 100, 300, 25], 'a')});
  await settled();
  assert.equal(await page.getByLabel('Title').inputValue(), 'abc');
  host.send({type: 'ack', node: 2, sequence: 3});
  host.change({2: field('Title', [50, 100, 300, 25], 'another')});
  await settled();
  assert.equal(await page.getByLabel('Title').inputValue(), 'another');
});

test('What the host writes leaves the caret where it is', async () => {
  await host.show(page, {1: root([2]), 2: field('Title', [50, 100, 300, 25], 'First Steps')});
  await page.getByLabel('Title').focus();
  await page.getByLabel('Title').evaluate(input => input.setSelectionRange(5, 5));
  host.change({2: field('Title', [50, 100, 300, 25], 'First steps')});
  await settled();
  assert.equal(await page.getByLabel('Title').evaluate(input => input.selectionStart), 5);
  assert.equal(await focused(), '2');
});

test('What was typed while the connection was gone is sent with the next one', async () => {
  await host.show(page, {1: root([2]), 2: field('Title', [50, 100, 300, 25], '')});
  host.isAway = true;
  await host.socket.close();
  await page.getByLabel('Title').pressSequentially('kept');
  await page.getByText('The connection is lost').waitFor();
  host.isAway = false;
  host.received = [];
  const [edit] = await heard('edit');
  assert.equal(host.received[0].type, 'hello');
  assert.deepEqual([edit.text, edit.sequence], ['kept', 4]);
  assert.equal(await page.getByLabel('Title').inputValue(), 'kept');
  assert.equal(await focused(), '2');
  await page.getByText('The connection is lost').waitFor({state: 'hidden'});
});

test('A page that is not let in again says so', async () => {
  await host.show(page, {1: root([])});
  host.refuses = true;
  await host.socket.close();
  await page.getByText('Open the address that it prints').waitFor();
  page.problems = page.problems.filter(problem => !problem.includes('403'));
});

test('Number fields bring up the keyboard for numbers', async () => {
  await host.show(page, {1: root([2, 3]), 2: field('Year', [0, 0, 100, 25], '', {keyboard: 'number'}), 3: field('Album', [0, 30, 100, 25], '', {keyboard: 'text'})});
  assert.equal(await page.getByLabel('Year').getAttribute('inputmode'), 'numeric');
  assert.equal(await page.getByLabel('Album').getAttribute('inputmode'), 'text');
});

test('A screen that is put on top takes the focus, and gives it back', async () => {
  const below = {kind: 'view', place: [0, 0, 375, 667], children: [3]};
  const above = {kind: 'view', place: [0, 0, 375, 667], background: 'rgb(255 255 255)', children: [5]};
  await host.show(page, {1: root([2]), 2: below, 3: button('Open', [0, 0, 80, 44])});
  await node(3).focus();
  host.change({1: root([2, 4]), 4: above, 5: button('Cancel', [0, 0, 80, 44])});
  await settled();
  assert.equal(await focused(), '4');
  assert.equal(await node(2).getAttribute('inert'), '');
  await page.keyboard.press('Tab');
  assert.equal(await focused(), '5');
  host.change({1: root([2])}, [4, 5]);
  await settled();
  assert.equal(await focused(), '3');
  assert.equal(await node(2).getAttribute('inert'), null);
});

test('A row that had the focus and goes leaves it to its table', async () => {
  const screen = new FolderScreen(3);
  await host.show(page, screen.nodes());
  await node(screen.cellId(1)).focus();
  const ids = [0, 1, 2].flatMap(row => [0, 1, 2, 3, 4].map(each => screen.cellId(row) + each));
  host.change({5: {...screen.table(), children: [70]}, 70: {kind: 'cell', place: [0, 0, 375, 50], row: 1, rows: 1, selectable: true}}, ids);
  await settled();
  assert.equal(await focused(), '5');
  await page.keyboard.press('Tab');
  assert.equal(await focused(), '70');
});

test('The page keeps its offset until the host moves the content', async () => {
  const screen = new FolderScreen(100);
  await host.show(page, screen.nodes());
  const scroller = node(5).locator('.scroller');
  assert.equal(await scroller.evaluate(element => element.scrollTop), 0); // the offset and what the bar covers
  await scroller.evaluate(element => element.scrollBy(0, 400));
  const [scroll] = await heard('scroll');
  assert.deepEqual(scroll, {type: 'scroll', node: 5, x: 0, y: 336, moved: 1});
  host.change({5: {...screen.table(), offset: [0, 0]}}); // an older state
  await settled();
  assert.equal(await scroller.evaluate(element => element.scrollTop), 400);
  screen.moved = 2;
  host.change({5: {...screen.table(), offset: [0, 100]}});
  await settled();
  assert.equal(await scroller.evaluate(element => element.scrollTop), 164);
  assert.equal(host.all('scroll').length, 1);
});

test('Ten thousand rows scroll, and rows are in sight all the time', async () => {
  const screen = new FolderScreen(10_000);
  await host.show(page, screen.nodes());
  host.onMessage = message => message.type === 'scroll' && host.change(...screen.scrollTo(message.y));
  const longestBlank = await node(5).locator('.scroller').evaluate(async scroller => {
    const frame = () => new Promise(requestAnimationFrame);
    const isBlank = () => {
      const {left, top} = scroller.getBoundingClientRect();
      return !document.elementFromPoint(left + 150, top + 300)?.closest('.cell');
    };
    let since = null;
    let longest = 0;
    for (let step = 0; step < 200; step += 1) {
      scroller.scrollTop += 2500; // as one throws a scroll bar down
      await frame();
      if (isBlank()) longest = Math.max(longest, performance.now() - (since ??= performance.now()));
      else since = null;
    }
    return longest;
  });
  assert.ok(longestBlank < 200, `${longestBlank} ms`);
  await page.getByText('Song number 9999.mp3').or(page.getByText('Folder 10000')).first().waitFor();
  assert.ok(await page.locator('.cell').count() < 40);
});

test('The picker says of a file that is no picture that it is none', async () => {
  await host.show(page, {1: root([2]), 2: {kind: 'picker', place: [0, 0, 375, 667], editing: true}});
  await page.locator('input[type=file]').setInputFiles({name: 'notes.txt', mimeType: 'text/plain', buffer: Buffer.from('no picture')});
  await page.getByRole('dialog').getByText('“notes.txt” is no picture').waitFor();
  await page.getByRole('button', {name: 'Cancel'}).click();
  assert.deepEqual(await heard('cancel'), [{type: 'cancel', node: 2}]);
  assert.deepEqual(host.picked, []);
});

test('A device and the panels in the dark', async () => {
  await page.emulateMedia({colorScheme: 'dark'});
  await page.setViewportSize(desk);
  await host.show(page, new FolderScreen(40).nodes());
  host.send({type: 'downloads', whole: true, notice: '', items: [{id: 7, file: 'a.mp3', title: 'Lantern Walk', artist: 'The Quaver House Band', state: 'fetching', bytes: 65536, total: 174294, canRetry: false}]});
  host.send({type: 'library', whole: true, more: false, items: [{id: 5, title: 'Lantern Walk', artist: 'The Quaver House Band', album: 'First Steps', track: 1, year: 2026, path: 'a.mp3', hasCover: false}]});
  await page.getByRole('region', {name: 'Library'}).getByText('Lantern Walk').waitFor();
  await keepShot(page, 'dark');
  assert.deepEqual(await accessibilityProblems(page), []);
});
