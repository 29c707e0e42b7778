// Shows how far a table is scrolled, while it is; it takes no room.

import {part} from '../elements.js';

const least = 36;
const margin = 3;

export class Indicator {
  constructor(box, scroller) {
    this.scroller = scroller;
    this.isWanted = true;
    this.element = part('div', 'indicator', box);
  }

  show() {
    const {clientHeight, scrollHeight, scrollTop} = this.scroller;
    if (!this.isWanted || scrollHeight <= clientHeight) return;
    const room = clientHeight - 2 * margin;
    const height = Math.max(least, (room * clientHeight) / scrollHeight);
    const top = margin + ((room - height) * scrollTop) / (scrollHeight - clientHeight);
    this.element.style.height = `${height}px`;
    this.element.style.translate = `0 ${top}px`;
    this.element.classList.add('seen');
    clearTimeout(this.fading);
    this.fading = setTimeout(() => this.element.classList.remove('seen'), 700);
  }
}
