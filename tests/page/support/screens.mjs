// Screens as a host would describe them.

const white = 'rgb(255 255 255)';
const grey = 'rgb(128 128 128)';

export const window = (children, more = {}) => ({kind: 'view', place: [0, 0, 375, 667], background: white, children, ...more});
export const label = (text, place, more = {}) => ({kind: 'label', place, text, font: 'Arial', size: 18, color: 'rgb(48 48 48)', ...more});
export const field = (name, place, text, more = {}) => ({kind: 'field', place, text, name, font: 'Arial', size: 15, color: 'rgb(0 0 0)', ...more});
export const button = (text, place, more = {}) => ({kind: 'button', place, text, font: 'HelveticaNeue', size: 17, color: 'rgb(0 99 209)', ...more});

const rowHeight = 50;
const width = 375;

/** A folder as the browser screen shows it: only the rows in sight are nodes. */
export class FolderScreen {
  constructor(rows, {height = 667, icon = '/images/sound_file_icon@3x.png'} = {}) {
    Object.assign(this, {rows, height, icon, offset: -64, moved: 1, shown: []});
  }

  table() {
    const {rows, height, moved, shown} = this;
    return {
      kind: 'table', place: [0, 0, width, height], background: white, clip: true, content: [width, rows * rowHeight],
      inset: [64, 0, 0, 0], offset: [0, this.offset], moved, children: shown.map(row => this.cellId(row)),
    };
  }

  cellId(row) {
    return 1000 + row * 10;
  }

  rowsInSight() {
    const first = Math.max(0, Math.floor(this.offset / rowHeight));
    const last = Math.min(this.rows - 1, Math.floor((this.offset + this.height) / rowHeight));
    return Array.from({length: Math.max(0, last - first + 1)}, (_, index) => first + index);
  }

  row(row) {
    const id = this.cellId(row);
    const isFolder = row % 3 === 0;
    const icon = isFolder ? '/images/folder_icon@3x.png' : this.icon;
    return {
      [id]: {
        kind: 'cell', place: [0, row * rowHeight, width, rowHeight], row: row + 1, rows: this.rows, selectable: true,
        separator: [59, 'rgb(200 199 204)'], children: [id + 1],
      },
      [id + 1]: {kind: 'view', place: [0, 0, width, rowHeight], background: white, children: [id + 2, id + 3, id + 4]},
      [id + 2]: {kind: 'image', place: [15, 10.5, 29, 29], image: icon, mode: 'fill', passive: true},
      [id + 3]: label(isFolder ? `Folder ${row + 1}` : `Song number ${row + 1}.mp3`, [59, 5, 301, 21], {pressed: grey, passive: true}),
      [id + 4]: label('4.2 MB 21/11/2026', [59, 28, 301, 13], {size: 11, color: 'rgb(95 95 95)', passive: true}),
    };
  }

  /** The nodes of the whole screen, the first being number 1. */
  nodes() {
    this.shown = this.rowsInSight();
    return Object.assign(
      {
        1: window([2]),
        2: {kind: 'view', place: [0, 0, 375, 667], background: 'rgb(239 239 244)', children: [5, 3]},
        3: {kind: 'bar', place: [0, 0, 375, 64], background: 'rgb(248 248 248)', line: 'rgb(178 178 178)', children: [6, 7, 8, 9]},
        5: this.table(),
        6: label('Quaverly', [80, 27, 215, 20], {size: 20, align: 'center', color: 'rgb(50 50 50)'}),
        7: label('/var/mobile/Media', [80, 45, 215, 14], {size: 12, align: 'center', color: 'rgb(95 95 95)'}),
        8: button('Settings', [0, 20, 80, 44], {back: true}),
        9: button('/mobile', [295, 20, 72, 44]),
      },
      ...this.shown.map(row => this.row(row)),
    );
  }

  /** What changes when a person has scrolled. */
  scrollTo(y) {
    this.offset = y;
    const before = this.shown;
    this.shown = this.rowsInSight();
    const added = this.shown.filter(row => !before.includes(row));
    const removed = before.filter(row => !this.shown.includes(row));
    const gone = removed.flatMap(row => [0, 1, 2, 3, 4].map(each => this.cellId(row) + each));
    return [Object.assign({5: this.table()}, ...added.map(row => this.row(row))), gone];
  }
}
