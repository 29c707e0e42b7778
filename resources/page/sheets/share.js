// The share sheet: a text to finish, which the service's own page posts.

import {part} from '../elements.js';
import {openTab} from '../links.js';
import {say} from '../words.js';
import {Sheet, button, field} from './sheet.js';

export class Share extends Sheet {
  constructor(device, id) {
    super(device, id, 'share');
    this.post = button('main', 'share.post', this.top, () => this.postText());
    this.text = field('share.text', this.element, 'textarea');
    this.text.addEventListener('input', () => this.count());
    const foot = part('div', 'foot', this.element);
    part('p', 'hint', foot).textContent = say('share.hint');
    this.counter = part('p', 'counter', foot);
    this.counter.id = `share-counter-${id}`;
    this.text.setAttribute('aria-describedby', this.counter.id);
  }

  fill({text}) {
    this.text.value = text ?? '';
    this.count();
  }

  enter() {
    this.text.focus({preventScroll: true});
    this.text.setSelectionRange(this.text.value.length, this.text.value.length);
  }

  /** The service counts as the browser does: in UTF-16 units. */
  count() {
    const left = this.node.limit - this.text.value.length;
    this.counter.textContent = say(left < 0 ? 'share.tooMany' : 'share.left', {count: Math.abs(left)});
    this.counter.setAttribute('role', left < 0 ? 'alert' : 'none');
    this.text.setAttribute('aria-invalid', String(left < 0));
    this.post.disabled = left < 0 || this.text.value.trim() === '' || !this.node.compose;
  }

  postText() {
    const text = this.text.value.toWellFormed?.() ?? this.text.value;
    openTab(this.node.compose + encodeURIComponent(text));
    this.send('finish');
  }
}
