// What a person taps or switches.

import {part} from '../elements.js';
import {say} from '../words.js';
import {Picture} from './image.js';
import {showFont} from './text.js';
import {View} from './view.js';

export class Button extends View {
  constructor(device, id) {
    super(device, id, 'button');
    this.element.type = 'button';
    this.element.classList.add('button');
    this.picture = new Picture(this.element);
    this.words = part('span', 'words', this.element);
    this.element.addEventListener('click', () => this.send('tap'));
  }

  show(node) {
    super.show(node);
    this.words.textContent = node.text ?? '';
    this.element.disabled = Boolean(node.disabled);
    this.element.classList.toggle('back', Boolean(node.back));
    this.element.style.color = node.color ?? '';
    showFont(this.element.style, node);
    this.picture.show({mode: 'center', ...node});
  }

  showMeaning({name, text, back}) {
    this.setAttribute('aria-label', text ? null : name ?? (back ? say('back') : null));
  }
}

export class Switch extends View {
  constructor(device, id) {
    super(device, id, 'button');
    this.element.type = 'button';
    this.element.classList.add('switch');
    this.element.setAttribute('role', 'switch');
    part('span', 'knob', this.element);
    this.element.addEventListener('click', () => this.send('tap'));
  }

  show(node) {
    super.show(node);
    this.element.setAttribute('aria-checked', String(Boolean(node.on)));
    this.element.disabled = Boolean(node.disabled);
  }

  showMeaning({name}) {
    this.setAttribute('aria-label', name);
  }
}
