// What the sheets have in common: a dialog with its name and buttons on top.

import {View} from '../device/view.js';
import {part} from '../elements.js';
import {say} from '../words.js';

export function button(className, key, parent, act) {
  const element = part('button', className, parent);
  element.type = 'button';
  element.textContent = say(key);
  element.addEventListener('click', act);
  return element;
}

/** A labelled field. */
export function field(key, parent, tag = 'input') {
  const row = part('label', 'row', parent);
  part('span', 'label-text', row).textContent = say(key);
  return part(tag, 'entry', row);
}

export class Sheet extends View {
  /** `name` is the key of what the sheet is called. */
  constructor(device, id, name) {
    super(device, id);
    this.name = name;
    this.element.classList.add('sheet', name);
    this.top = part('div', 'top', this.element);
    button('cancel', 'sheet.cancel', this.top, () => this.cancel());
    part('h2', 'title', this.top).textContent = say(name);
    this.element.addEventListener('keydown', event => {
      if (event.key === 'Escape') this.cancel();
    });
    // The device gives the focus to the sheet as a whole when it appears.
    this.element.addEventListener('focus', () => this.enter());
  }

  /** The host's description counts when the sheet appears; from then on it is the person's. */
  show(node) {
    super.show(node);
    if (this.wasFilled) return;
    this.wasFilled = true;
    this.fill(node);
  }

  showMeaning() {
    this.element.setAttribute('role', 'dialog');
    this.element.setAttribute('aria-modal', 'true');
    this.element.setAttribute('aria-label', say(this.name));
  }

  setChildren() {}

  cancel() {
    this.send('cancel');
  }
}
