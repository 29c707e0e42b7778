// What a person does on the device's screens, and what they see there.
import {openWindow} from './browser.mjs';

export class Phone {
  /** Opens the page of a program and goes to the browser screen. */
  static async open(browser, program, viewport, more) {
    const page = await openWindow(browser, viewport, more);
    await page.goto(program.address);
    const phone = new Phone(page);
    await phone.goToBrowser();
    return phone;
  }

  /** From the first pane, where that is what is shown first. */
  async goToBrowser() {
    const link = this.row('Import audio');
    await link.or(this.screen.getByText('/var/mobile/Media', {exact: true})).first().waitFor();
    if (await link.isVisible()) await link.click();
    await this.waitForFolder('/var/mobile/Media');
    await this.still();
  }

  constructor(page) {
    this.page = page;
    this.screen = page.locator('#screen');
  }

  row(text) {
    return this.screen.getByRole('listitem').filter({hasText: text});
  }

  button(name) {
    return this.screen.getByRole('button', {name, exact: true});
  }

  field(name) {
    return this.screen.getByLabel(name, {exact: true});
  }

  region(name) {
    return this.page.getByRole('region', {name});
  }

  waitForFolder(path) {
    return this.screen.getByText(path, {exact: true}).waitFor();
  }

  /** Taps a song and waits for the editor that shows it. */
  async openSong(file, title) {
    await this.row(file).click();
    await this.waitForValue('Title', title);
    await this.still();
  }

  async waitForValue(name, value) {
    const field = this.field(name);
    await field.waitFor();
    while ((await field.inputValue()) !== value) await this.frame();
  }

  frame() {
    return this.page.evaluate(() => new Promise(requestAnimationFrame));
  }

  /** Waits until nothing moves any more, but for what never ends. */
  async still() {
    const moves = () => document.getAnimations().some(each => each.playState === 'running' && Number.isFinite(each.effect.getComputedTiming().endTime));
    await this.frame();
    while (await this.page.evaluate(moves)) await this.frame();
  }

  values() {
    return Promise.all(['Title', 'Track number', 'Album', 'Artist', 'Genre', 'Year'].map(name => this.field(name).inputValue()));
  }

  /** Picks a picture and takes it as it lies in the square. */
  async pick(buffer, name = 'cover.png', mimeType = 'image/png') {
    await this.page.locator('input[type=file]').setInputFiles({name, mimeType, buffer});
    await this.page.getByRole('button', {name: 'Use'}).click();
    await this.page.getByRole('dialog').waitFor({state: 'detached'});
    await this.still();
  }

  /** The paths of all pictures that can be seen, the backdrop first. */
  pictures() {
    return this.screen.locator('img.picture:visible').evaluateAll(all => all.filter(image => image.naturalWidth > 0).map(image => image.getAttribute('src')));
  }
}
