// Words: how they look, and the labels that show nothing else.

import {part} from '../elements.js';
import {View} from './view.js';

/** Fonts are known by the names that the host's nodes use. */
export function showFont(style, {font, size}) {
  style.fontFamily = font ? `${JSON.stringify(font)}, sans-serif` : '';
  style.fontSize = size ? `${size}px` : '';
}

// A point more on the side where it does not show: what fits exactly shall not end in dots.
const slack = {left: '0 -1px 0 0', center: '0 -0.5px', right: '0 0 0 -1px'};

export class Label extends View {
  constructor(device, id) {
    super(device, id);
    this.element.classList.add('label');
    this.words = part('span', 'words', this.element);
  }

  show(node) {
    super.show(node);
    if (this.words.textContent !== node.text) this.words.textContent = node.text ?? '';
    const {style} = this.element;
    showFont(style, node);
    style.textAlign = node.align ?? '';
    this.words.style.margin = slack[node.align ?? 'left'];
    style.setProperty('--color', node.color ?? 'black');
    style.setProperty('--pressed', node.pressed ?? node.color ?? 'black');
    this.showLines(node.lines ?? 1);
  }

  showLines(lines) {
    this.element.classList.toggle('wraps', lines !== 1);
    this.words.style.webkitLineClamp = lines > 1 ? lines : '';
  }
}
