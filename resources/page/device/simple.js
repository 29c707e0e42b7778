// The kinds that need few words.

import {part} from '../elements.js';
import {say} from '../words.js';
import {View} from './view.js';

export class Bar extends View {
  constructor(device, id) {
    super(device, id);
    this.element.classList.add('bar');
  }

  show(node) {
    super.show(node);
    this.element.style.setProperty('--line', node.line ?? 'transparent');
    this.element.style.setProperty('--above', `${node.place[1]}px`);
    this.element.classList.toggle('clear', !node.background);
  }
}

const spokes = 12;

/** Turns while something is loading. */
export class Wheel extends View {
  constructor(device, id) {
    super(device, id);
    this.element.classList.add('wheel');
    for (let spoke = 0; spoke < spokes; spoke += 1) {
      const {style} = part('span', 'spoke', this.element);
      style.rotate = `${(360 / spokes) * spoke}deg`;
      style.opacity = 0.25 + (0.75 * spoke) / spokes;
    }
  }

  show(node) {
    super.show(node);
    this.element.style.color = node.color ?? '';
    this.element.classList.toggle('turning', Boolean(node.turning));
  }

  showMeaning({name, turning}) {
    this.setAttribute('role', turning ? 'progressbar' : null);
    this.setAttribute('aria-label', turning ? name ?? say('loading') : null);
  }
}
