// Debian's Chromium, as the tests of the page drive it.
import fs from 'node:fs';
import {createRequire} from 'node:module';
import path from 'node:path';
import {fileURLToPath} from 'node:url';

const modules = process.env.PAGE_MODULES ?? fileURLToPath(new URL('../../../build/page-modules', import.meta.url));
const require = createRequire(path.join(modules, 'package.json'));
const {chromium} = require('playwright-core');
const axe = fs.readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

const shots = process.env.PAGE_SHOTS ?? path.join(modules, 'shots');

const quiet = [
  '--no-sandbox',
  '--disable-gpu',
  '--disable-quic',
  '--no-first-run',
  '--disable-background-networking',
  '--disable-component-update',
  '--disable-sync',
  '--disable-default-apps',
];

export const phone = {width: 375, height: 667};
export const desk = {width: 1280, height: 800};

/** A browser with an empty profile of its own; whoever got it closes it. */
export function launch() {
  return chromium.launch({executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', headless: true, args: quiet});
}

/** A window of its own, without the others' cookies. What goes wrong in the page is in `page.problems`. */
export async function openWindow(browser, viewport, more = {}) {
  const context = await browser.newContext({viewport, locale: 'en-GB', timezoneId: 'UTC', ...more});
  const page = await context.newPage();
  page.problems = [];
  page.on('pageerror', error => page.problems.push(String(error)));
  page.on('console', message => {
    const {url} = message.location();
    // The page that takes the token has no icon yet; the browser asks for one by itself.
    if (message.type() === 'error' && !url.endsWith('/favicon.ico')) page.problems.push(`${message.text()} ${url}`);
  });
  page.setDefaultTimeout(20_000);
  return page;
}

/** Keeps a picture of the page among the build's results. */
export async function keepShot(page, name) {
  fs.mkdirSync(shots, {recursive: true});
  await page.screenshot({path: path.join(shots, `${name}.png`)});
}

const rules = {resultTypes: ['violations']};

// The colours of the device's own texts are fixed to the digit, and greyer than axe would have them. All others
// must be easy to read, and everything else holds for the device as well.
const checks = [
  {where: {include: ['html']}, options: {...rules, rules: {'color-contrast': {enabled: false}}}},
  {where: {exclude: ['.label', '.button.node', '.field']}, options: {...rules, runOnly: {type: 'rule', values: ['color-contrast']}}},
];

/** What axe finds wrong with the page, one line each. */
export async function accessibilityProblems(page) {
  await page.evaluate(axe);
  const found = [];
  for (const {where, options} of checks) {
    const {violations} = await page.evaluate(([place, wanted]) => globalThis.axe.run(place, wanted), [where, options]);
    found.push(...violations);
  }
  return found.map(({id, help, nodes}) => `${id}: ${help}: ${nodes.map(node => node.html).join(' | ')}`);
}
