// What all nodes have in common.

import {Animations, transformText} from './animations.js';
import {arrange} from './arrange.js';
import {shapesElement} from './shapes.js';

/** A node as an element. It stays the same one for as long as the host knows the node. */
export class View {
  constructor(device, id, tag = 'div') {
    this.device = device;
    this.id = id;
    this.element = document.createElement(tag);
    this.element.className = 'node';
    this.element.dataset.node = id;
    this.animations = new Animations(this.element, () => device.now());
  }

  /** Shows what the host says of the node, but for its children. */
  show(node) {
    this.node = node;
    this.showPlace(node);
    this.showLook(node);
    this.showMeaning(node);
    this.showShapes(node.shapes);
    this.animations.show(node.animations ?? [], node.place);
  }

  /** Takes the children's views, in reading order. */
  setChildren(views) {
    arrange(this.element, views.map(view => view.element), this.shapes ?? null);
  }

  /** Called when all elements stand where they belong. */
  settle() {}

  send(type, more = {}) {
    return this.device.send({type, node: this.id, ...more});
  }

  showPlace({place: [left, top, width, height], transform, raised}) {
    const {style} = this.element;
    style.left = `${left}px`;
    style.top = `${top}px`;
    style.width = `${width}px`;
    style.height = `${height}px`;
    style.transform = transform ? transformText(transform) : '';
    style.zIndex = raised ? 1 : 0;
  }

  showLook({alpha, hidden, clip, corner, passive, background, border}) {
    const {style, classList} = this.element;
    style.opacity = alpha ?? '';
    style.borderRadius = corner ? `${corner}px` : '';
    style.backgroundColor = background ?? '';
    style.boxShadow = border ? `inset 0 0 0 ${border[0]}px ${border[1]}` : '';
    classList.toggle('hidden', Boolean(hidden));
    classList.toggle('clip', Boolean(clip));
    classList.toggle('passive', Boolean(passive));
  }

  showMeaning({name, role}) {
    this.setAttribute('role', role ?? (name ? this.roleOfName : null));
    this.setAttribute('aria-label', name);
    // The device says a message itself when it appears: elements that come with their text are often not read.
    this.setAttribute('aria-live', role === 'status' ? 'off' : null);
  }

  /** What kind of thing it is that has a name. */
  get roleOfName() {
    return 'group';
  }

  showShapes(shapes) {
    const told = JSON.stringify(shapes);
    if (told === this.toldShapes) return;
    this.toldShapes = told;
    this.shapes?.remove();
    this.shapes = shapes?.length ? shapesElement(shapes) : null;
    if (this.shapes) this.element.append(this.shapes);
  }

  setAttribute(name, value) {
    if (value === undefined || value === null || value === '') this.element.removeAttribute(name);
    else this.element.setAttribute(name, value);
  }
}
