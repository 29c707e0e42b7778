// The page's own words: none is missing, none is left over, none stands outside their module.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import {test} from 'node:test';
import {fileURLToPath} from 'node:url';

const page = fileURLToPath(new URL('../../resources/page', import.meta.url));
const sources = folder =>
  fs.readdirSync(folder, {withFileTypes: true}).flatMap(entry => {
    const file = path.join(folder, entry.name);
    return entry.isDirectory() ? sources(file) : file.endsWith('.js') ? [fs.readFileSync(file, 'utf8')] : [];
  });

const table = fs.readFileSync(path.join(page, 'words.js'), 'utf8');
const keys = [...table.matchAll(/^  '([\w.]+)': /gm)].map(([, key]) => key);
const users = sources(page).filter(source => source !== table).join('\n');

// Whole keys in quotes, and the beginnings of those that a state completes.
const named = new Set([...users.matchAll(/'([a-z]+(?:\.\w+)*)'/g)].map(([, key]) => key));
const begun = [...users.matchAll(/say\(`(\w+\.)\$\{/g)].map(([, start]) => start);

test('Every word has its use', () => {
  assert.ok(keys.length > 30);
  const unused = keys.filter(key => !named.has(key) && !begun.some(start => key.startsWith(start)));
  assert.deepEqual(unused, []);
});

test('Every use has its word', () => {
  const wanted = [...users.matchAll(/say\('([\w.]+)'|button\('\w+', '([\w.]+)'/g)].map(([, said, named]) => said ?? named);
  assert.ok(wanted.length > 20);
  assert.deepEqual(wanted.filter(key => !keys.includes(key)), []);
});

test('Each state of a download and of the connection has its words', () => {
  const states = ['queued', 'fetching', 'placing', 'filed', 'duplicate', 'failed'].map(state => `state.${state}`);
  const wanted = [...states, 'connection.lost', 'connection.refused'];
  assert.deepEqual(wanted.filter(key => !keys.includes(key)), []);
});

test('No words stand in the page itself but its name', () => {
  const html = fs.readFileSync(path.join(page, 'index.html'), 'utf8');
  const texts = html.replace(/<noscript>.*?<\/noscript>/s, '').replace(/<[^>]*>/g, '\n').split('\n').map(line => line.trim()).filter(Boolean);
  assert.deepEqual([...new Set(texts)], ['Quaverly']);
});
