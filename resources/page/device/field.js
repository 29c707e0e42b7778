// Fields that a person types into.

import {showFont} from './text.js';
import {View} from './view.js';

const keyboards = {text: 'text', number: 'numeric'};
const longest = 10_000; // more would not fit into a message

/** Puts other words into a field and leaves the caret where it was. */
function replaceValue(input, text) {
  if (input.value === text) return;
  const {selectionStart, selectionEnd} = input;
  input.value = text;
  if (document.activeElement === input) input.setSelectionRange(selectionStart, selectionEnd);
}

export class Field extends View {
  constructor(device, id) {
    super(device, id, 'input');
    Object.assign(this.element, {type: 'text', autocomplete: 'off', spellcheck: false, maxLength: longest});
    this.element.setAttribute('autocorrect', 'off');
    this.element.classList.add('field');
    this.element.addEventListener('input', () => device.edits.typed(id, this.element.value));
  }

  show(node) {
    super.show(node);
    const input = this.element;
    // What a person typed stands until the host knows it: until then all that it says is older.
    if (!this.device.edits.waitsFor(this.id)) replaceValue(input, node.text ?? '');
    input.inputMode = keyboards[node.keyboard] ?? 'text';
    input.placeholder = node.placeholder ?? '';
    input.style.color = node.color ?? '';
    input.style.textAlign = node.align ?? '';
    showFont(input.style, node);
  }

  showMeaning({name}) {
    this.setAttribute('aria-label', name);
  }
}
