// The frame in which a mail's text is edited. No script runs in it and nothing is fetched for it; the page reaches
// into it from outside.

import {part} from '../elements.js';
import {say} from '../words.js';

const isEmpty = element => element.textContent.trim() === '';

export class Body {
  /** `onKey` hears of keys that are pressed in the frame, where the browser tells. */
  constructor(parent, onKey) {
    this.onKey = onKey;
    this.frame = part('iframe', 'body', parent);
    this.frame.setAttribute('sandbox', 'allow-same-origin');
    this.frame.title = say('mail.body');
    this.frame.addEventListener('load', () => this.loaded());
  }

  open(address) {
    this.address = address;
    this.frame.src = address;
  }

  get box() {
    const {contentDocument: inner} = this.frame;
    return inner?.location.pathname === '/mail/body' ? inner.body : null;
  }

  loaded() {
    const {box} = this;
    if (!box) return;
    const {documentElement: root} = box.ownerDocument;
    root.lang = document.documentElement.lang;
    box.contentEditable = 'true';
    for (const [name, value] of [['role', 'textbox'], ['aria-multiline', 'true'], ['aria-label', say('mail.body')]]) box.setAttribute(name, value);
    box.style.minHeight = '100vh';
    // A frame that moves loads anew.
    if (this.kept !== undefined) box.innerHTML = this.kept;
    else this.untouched = box.innerHTML;
    box.addEventListener('input', () => (this.kept = box.innerHTML));
    box.addEventListener('keydown', this.onKey);
    if (this.wantsFocus) this.focus();
  }

  /** Puts the cursor into the first empty paragraph, now or as soon as there is one. */
  focus() {
    const {box} = this;
    this.wantsFocus = box?.contentEditable !== 'true';
    if (this.wantsFocus) return;
    box.focus({preventScroll: true});
    const first = [...box.querySelectorAll('p')].find(isEmpty) ?? box;
    box.ownerDocument.getSelection().collapse(first, 0);
  }

  get html() {
    return this.box?.innerHTML ?? this.kept ?? '';
  }

  get wasEdited() {
    return this.untouched !== undefined && this.html !== this.untouched;
  }
}
