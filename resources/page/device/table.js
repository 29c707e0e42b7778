// Tables: rows that a person scrolls. The host makes the rows that are in sight, and hears where that is.

import {part} from '../elements.js';
import {arrange} from './arrange.js';
import {Cell} from './cell.js';
import {Indicator} from './indicator.js';
import {View} from './view.js';

export class Table extends View {
  constructor(device, id) {
    super(device, id);
    this.element.classList.add('table');
    this.scroller = part('div', 'scroller', this.element);
    this.cells = [];
    this.content = part('div', 'content', this.scroller);
    this.others = part('div', 'others', this.content);
    this.rows = part('div', 'rows', this.content);
    this.indicator = new Indicator(this.element, this.scroller);
    this.scroller.addEventListener('scroll', () => this.scrolled());
  }

  show(node) {
    const before = this.node;
    super.show(node);
    const {content: [, height], inset: [top = 0, , bottom = 0] = []} = node;
    this.content.style.height = `${Math.max(0, height + top + bottom)}px`;
    this.others.style.top = this.rows.style.top = `${top}px`;
    this.indicator.isWanted = node.indicator !== false;
    this.chooseOffset(before, node);
  }

  // The page owns the offset, but for a host that chose another one.
  chooseOffset(before, node) {
    const isMoved = !before || (node.moved ?? 0) > (before.moved ?? 0);
    if (isMoved) [this.x, this.y] = node.offset ?? [0, 0];
    if (isMoved || before.inset?.[0] !== node.inset?.[0]) this.isDue = true;
  }

  // Rows are a list of their own: nothing else may stand in it.
  setChildren(views) {
    const cells = views.filter(view => view instanceof Cell);
    arrange(this.rows, cells.map(view => view.element));
    arrange(this.others, views.filter(view => !(view instanceof Cell)).map(view => view.element));
    if (cells.length) this.rows.setAttribute('role', 'list');
    else this.rows.removeAttribute('role');
    this.makeReachable(cells);
    this.cells = cells;
    this.holdRows();
  }

  /**
   * Whoever throws the content far sees the rows from before until the new ones are there, not an empty
   * table.
   */
  holdRows() {
    const height = this.node.place[3];
    const first = Math.min(...this.cells.map(({node}) => node.place[1]));
    const last = Math.max(...this.cells.map(({node}) => node.place[1] + node.place[3]));
    const shift = last <= this.y ? this.y + height - last : first >= this.y + height ? this.y - first : 0;
    this.rows.style.translate = Number.isFinite(shift) && shift ? `0 ${shift}px` : '';
  }

  /** The keyboard scrolls by the rows that it can reach; where there are none it needs the table itself. */
  makeReachable(cells) {
    const overflows = this.node.content[1] > this.node.place[3];
    if (overflows && !cells.some(({node}) => node.selectable)) this.scroller.tabIndex = 0;
    else this.scroller.removeAttribute('tabindex');
  }

  get top() {
    return this.node.inset?.[0] ?? 0;
  }

  settle() {
    if (!this.isDue) return;
    this.isDue = false;
    this.scroller.scrollTop = this.y + this.top;
    this.stands = this.scroller.scrollTop;
  }

  /** Once per frame at most; what we did ourselves is no news. */
  scrolled() {
    if (!this.node || Math.abs(this.scroller.scrollTop - this.stands) < 1) return;
    this.stands = undefined;
    this.indicator.show();
    this.y = this.scroller.scrollTop - this.top;
    this.holdRows();
    this.telling ??= requestAnimationFrame(() => {
      this.telling = null;
      this.send('scroll', {x: this.x, y: this.y, moved: this.node.moved ?? 0});
    });
  }
}
