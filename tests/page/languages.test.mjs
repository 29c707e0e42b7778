// The page and the device on it in the user's language.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {accessibilityProblems, desk, keepShot} from './support/browser.mjs';
import {lantern} from './support/program.mjs';
import {openPanes, phone, program, setStage} from './support/stage.mjs';

setStage();

function open(locale) {
  program.environment.LANG = `${locale}.UTF-8`;
  return openPanes(desk);
}

test('In German all is German: the rows, the editor for screen readers, the panels and the outcome', async () => {
  program.copy(lantern);
  await open('de_AT');
  await phone.row('Audio importieren').click();
  assert.equal(await phone.page.locator('html').getAttribute('lang'), 'de');
  await phone.row('lantern.mp3').click();
  await phone.waitForValue('Titel', 'Lantern Walk');
  for (const name of ['Titelnummer', 'Album', 'Interpret', 'Genre', 'Jahr']) await phone.field(name).waitFor();
  await phone.button('Cover wählen').waitFor();
  await phone.button('Abbrechen').waitFor();
  await phone.still();
  await keepShot(phone.page, 'german-editor');
  assert.deepEqual(await accessibilityProblems(phone.page), []);
  await phone.button('Importieren').click();
  await phone.region('Mediathek').getByText('Lantern Walk').waitFor();
  await phone.region('Downloads').getByText('In der Mediathek').waitFor();
});

test('A reason is told in the user’s language', async () => {
  program.copy(lantern);
  await program.command('import', program.media + '/lantern.mp3');
  await open('fr_FR');
  await phone.row('Importer de l’audio').click();
  await phone.row('lantern.mp3').click();
  await phone.waitForValue('Titre', 'Lantern Walk');
  await phone.still();
  await phone.button('Importer').click();
  await phone.region('Téléchargements').getByText('Déjà dans la bibliothèque').waitFor();
});

for (const [locale, language, row, panel] of [
  ['es_ES', 'es', 'Motores', 'Biblioteca'],
  ['it_IT', 'it', 'Motori', 'Libreria'],
  ['ja_JP', 'ja', 'エンジン', 'ライブラリ'],
  ['pt_BR', 'pt-BR', 'Mecanismos', 'Biblioteca'],
  ['ru_RU', 'ru', 'Движки', 'Медиатека'],
  ['zh_CN', 'zh-Hans', '引擎', '资料库'],
  ['sv_SE', 'en', 'Engines', 'Library'],
]) {
  test(`${locale} sees ${language}`, async () => {
    await open(locale);
    await phone.row(row).waitFor();
    await phone.region(panel).waitFor();
    assert.equal(await phone.page.locator('html').getAttribute('lang'), language);
    await keepShot(phone.page, `language-${language}`);
  });
}
