// The settings panes in a real browser, on a real `quaverly serve`.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {accessibilityProblems, desk, keepShot, phone as phoneSize} from './support/browser.mjs';
import {openPanes, phone, program, setStage} from './support/stage.mjs';

setStage();

async function open(viewport) {
  await openPanes(viewport);
  await phone.row('Import audio').waitFor();
}

/** What the engine files say, by another command. */
async function enabledEngines() {
  const {stdout} = await program.command('engines', 'list', '--json');
  return stdout.trim().split('\n').map(line => JSON.parse(line)).filter(engine => engine.enabled).length;
}

test('The root pane has a row for everything, and leads there and back', async () => {
  await open(phoneSize);
  await keepShot(phone.page, 'pane-root');
  assert.deepEqual(await accessibilityProblems(phone.page), []);
  const rows = await phone.screen.getByRole('listitem').allTextContents();
  for (const row of ['Import audio', 'Engines', 'Donate', 'Write to support']) assert.ok(rows.some(each => each.includes(row)), String(rows));
  await phone.row('Import audio').click();
  await phone.waitForFolder('/var/mobile/Media');
  await phone.still();
  await phone.screen.locator('.button.back').click();
  await phone.row('Engines').waitFor();
  await phone.still();
  assert.equal(await phone.screen.getByText('/var/mobile/Media').count(), 0);
});

for (const [means, turn] of [['mouse', control => control.click()], ['keyboard', control => control.press('Space')]]) {
  test(`An engine is switched by ${means}, and its file says so`, async () => {
    await open(desk);
    await phone.row('Engines').click();
    const control = phone.screen.getByRole('switch').first();
    await control.waitFor();
    await phone.still();
    await keepShot(phone.page, 'pane-engines');
    assert.deepEqual(await accessibilityProblems(phone.page), []);
    const before = await enabledEngines();
    const wasOn = await control.isChecked();
    await turn(control);
    while ((await control.isChecked()) === wasOn) await phone.frame();
    assert.equal(await enabledEngines(), before + (wasOn ? -1 : 1));
  });
}
