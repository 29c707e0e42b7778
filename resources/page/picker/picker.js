// The picture picker: the browser's own file chooser, then a square to cut the picture to.

import {View} from '../device/view.js';
import {part} from '../elements.js';
import {say} from '../words.js';
import {Crop} from './crop.js';
import {Gestures} from './gestures.js';
import {makePNG, readPicture} from './picture.js';

function button(className, key, parent, act) {
  const element = part('button', className, parent);
  element.type = 'button';
  element.textContent = say(key);
  element.addEventListener('click', act);
  return element;
}

export class Picker extends View {
  constructor(device, id) {
    super(device, id);
    this.element.classList.add('picker');
    this.makeParts();
    new Gestures(this.square, () => this.crop, () => this.showCrop());
    new ResizeObserver(() => this.resized()).observe(this.square);
    this.element.addEventListener('keydown', event => {
      if (event.key === 'Escape') this.send('cancel');
    });
  }

  makeParts() {
    const top = part('div', 'top', this.element);
    button('cancel', 'picker.cancel', top, () => this.send('cancel'));
    this.use = button('use', 'picker.use', top, () => this.handOver());
    const middle = part('div', 'middle', this.element);
    this.square = part('div', 'square', middle);
    this.square.tabIndex = 0;
    this.square.setAttribute('role', 'application');
    this.square.setAttribute('aria-label', say('picker.crop'));
    const bottom = part('div', 'bottom', this.element);
    this.message = part('p', 'message', bottom);
    this.message.setAttribute('role', 'status');
    this.makeZoom(bottom);
    this.choose = button('choose', 'picker.choose', bottom, () => this.input.click());
    this.makeInput();
    this.showState(say('picker.invite'));
  }

  makeZoom(parent) {
    this.zoom = part('input', 'zoom', parent);
    Object.assign(this.zoom, {type: 'range', min: 0, max: 1, step: 'any', value: 0});
    this.zoom.setAttribute('aria-label', say('picker.zoom'));
    this.zoom.addEventListener('input', () => {
      this.crop.enlargement = Number(this.zoom.value);
      this.showCrop();
    });
  }

  makeInput() {
    this.input = part('input', 'file', this.element);
    Object.assign(this.input, {type: 'file', accept: 'image/*', hidden: true});
    this.input.addEventListener('change', () => this.take(this.input.files[0]));
  }

  showMeaning() {
    this.element.setAttribute('role', 'dialog');
    this.element.setAttribute('aria-modal', 'true');
    this.element.setAttribute('aria-label', say('picker'));
  }

  /** Opens the file chooser at once where the browser lets a page do so: just after its person did something. */
  settle() {
    if (this.wasOpened) return;
    this.wasOpened = true;
    if (document.hasFocus() && navigator.userActivation?.isActive) this.input.click();
  }

  setChildren() {}

  async take(file) {
    if (!file) return;
    this.input.value = '';
    const picture = await readPicture(file);
    if (!picture) return this.showState(say('picker.noPicture', {name: file.name}));
    this.picture?.close();
    this.picture = picture;
    this.square.replaceChildren(picture.image);
    this.element.classList.add('chosen');
    this.makeCrop();
    this.showState(this.node.editing ? say('picker.hint') : '');
    this.use.focus();
  }

  makeCrop() {
    const {width, height, image} = this.picture;
    image.width = width;
    image.height = height;
    this.crop = new Crop({width, height, side: this.square.clientWidth});
    this.showCrop();
  }

  resized() {
    const side = this.square.clientWidth;
    if (!this.crop || side === 0 || side === this.crop.side) return;
    this.crop.resize(side);
    this.showCrop();
  }

  showCrop() {
    const {left, top, scale} = this.crop;
    this.picture.image.style.transform = `translate(${left}px, ${top}px) scale(${scale})`;
    this.zoom.value = this.crop.enlargement;
  }

  showState(message) {
    const isCropping = Boolean(this.picture && this.node?.editing);
    this.message.textContent = message;
    this.use.hidden = !this.picture;
    this.zoom.hidden = !isCropping;
    this.choose.textContent = say(this.picture ? 'picker.chooseAnother' : 'picker.choose');
  }

  part() {
    const {width, height} = this.picture;
    if (!this.node.editing) return {x: 0, y: 0, width, height};
    const {x, y, side} = this.crop.part;
    return {x, y, width: side, height: side};
  }

  /** The host closes the picker when it has taken the picture. */
  async handOver() {
    this.showState(say('picker.sending'));
    this.use.disabled = true;
    try {
      const body = await makePNG(this.picture, this.part());
      const answer = await fetch(`/picked?node=${this.id}`, {method: 'POST', headers: {'Content-Type': 'image/png'}, body});
      if (!answer.ok) throw new Error((await answer.text()).slice(0, 200));
    } catch (problem) {
      const isPlain = /^[^<>]+$/.test(problem.message) && !(problem instanceof TypeError);
      this.showState(isPlain ? problem.message : say('picker.notSent'));
    }
    this.use.disabled = false;
  }
}
