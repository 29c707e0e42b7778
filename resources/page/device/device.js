// The device's screens: what the host describes, as elements.

import {Picker} from '../picker/picker.js';
import {Mail} from '../sheets/mail.js';
import {Share} from '../sheets/share.js';
import {Button, Switch} from './button.js';
import {Cell} from './cell.js';
import {Edits} from './edits.js';
import {Field} from './field.js';
import {Focus} from './focus.js';
import {ImageView} from './image.js';
import {Bar, Wheel} from './simple.js';
import {Table} from './table.js';
import {Label} from './text.js';
import {View} from './view.js';

const kinds = {
  view: View,
  label: Label,
  image: ImageView,
  button: Button,
  field: Field,
  switch: Switch,
  table: Table,
  cell: Cell,
  bar: Bar,
  wheel: Wheel,
  picker: Picker,
  mail: Mail,
  share: Share,
};

export class Device {
  /** `onScreen` is told the screen's width and height when they change. */
  constructor({root, send, announce, onScreen}) {
    this.box = root;
    this.send = send;
    this.announce = announce;
    this.onScreen = onScreen;
    this.views = new Map();
    this.edits = new Edits(send);
    this.focus = new Focus();
    this.ahead = 0;
  }

  /** Takes a message from the host; whether it was one for the device. */
  take(message) {
    if (message.type === 'tree') this.takeTree(message);
    else if (message.type === 'change') this.takeChange(message.set ?? {}, message.gone ?? [], message);
    else if (message.type === 'ack') this.edits.acknowledge(message.node, message.sequence);
    else return false;
    return true;
  }

  /** The host's clock. */
  now() {
    return performance.now() + this.ahead;
  }

  takeTree(message) {
    const gone = [...this.views.keys()].filter(id => !(id in message.nodes));
    this.root = message.root;
    this.takeChange(message.nodes, gone, message);
    this.edits.sendAgain();
  }

  takeChange(set, gone, {now, screen}) {
    this.ahead = now - performance.now();
    if (screen) this.onScreen(...screen);
    this.focus.remember();
    const changed = Object.entries(set).map(([id, node]) => this.show(Number(id), node));
    for (const view of changed) view.setChildren(this.childrenOf(view));
    gone.forEach(id => this.remove(id));
    this.settle();
  }

  show(id, node) {
    let view = this.views.get(id);
    if (!view) {
      view = new (kinds[node.kind] ?? View)(this, id);
      this.views.set(id, view);
      if (node.role === 'status') this.arrived = view;
    }
    view.show(node);
    return view;
  }

  childrenOf(view) {
    return (view.node.children ?? []).map(id => this.views.get(id)).filter(Boolean);
  }

  remove(id) {
    this.views.get(id)?.element.remove();
    this.views.delete(id);
    this.edits.forget(id);
  }

  settle() {
    const root = this.views.get(this.root);
    if (!root) return;
    if (root.element.parentNode !== this.box) this.box.replaceChildren(root.element);
    for (const view of this.views.values()) view.settle();
    this.focus.settle(root, this.childrenOf(root));
    this.colorTime();
    if (this.arrived) this.announce(this.arrived.element.textContent);
    this.arrived = null;
  }

  /** The time is light above what is dark: a bar without a colour of its own, or the picker. */
  colorTime() {
    const top = this.focus.top?.element;
    const isDark = top?.matches('.picker') || Boolean(top?.querySelector('.bar.clear'));
    this.box.classList.toggle('dark-above', isDark);
  }
}
