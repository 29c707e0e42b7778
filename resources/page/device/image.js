// Pictures, and stencils: pictures of which only the shape is used, in another colour.

import {View} from './view.js';

const fits = {fill: 'fill', fit: 'contain', cover: 'cover', center: 'fill'};

function inUrl(path) {
  return `url(${JSON.stringify(new URL(path, location.href).href)})`;
}

/** A picture inside a node's element, below everything else that is in it. */
export class Picture {
  constructor(box) {
    this.box = box;
  }

  show({image, mode, imageSize, tint}) {
    if (!image) return this.remove();
    this.ensure(tint ? 'span' : 'img');
    if (tint) this.showStencil(image, mode, tint);
    else this.showPicture(image, mode);
    const {style, classList} = this.element;
    const centred = mode === 'center' && imageSize;
    classList.toggle('centred', Boolean(centred));
    style.width = centred ? `${imageSize[0]}px` : '';
    style.height = centred ? `${imageSize[1]}px` : '';
  }

  showPicture(image, mode) {
    this.element.style.objectFit = fits[mode] ?? 'fill';
    if (this.element.getAttribute('src') !== image) this.element.setAttribute('src', image);
  }

  showStencil(image, mode, tint) {
    const {style} = this.element;
    style.maskImage = inUrl(image);
    style.maskSize = {fit: 'contain', cover: 'cover'}[mode] ?? '100% 100%';
    style.backgroundColor = tint;
  }

  ensure(tag) {
    if (this.element?.localName === tag) return;
    this.remove();
    this.element = document.createElement(tag);
    this.element.className = 'picture';
    if (tag === 'img') {
      this.element.alt = '';
      this.element.draggable = false;
    }
    this.box.prepend(this.element);
  }

  remove() {
    this.element?.remove();
    this.element = null;
  }
}

export class ImageView extends View {
  constructor(device, id) {
    super(device, id);
    this.picture = new Picture(this.element);
  }

  get roleOfName() {
    return 'img';
  }

  show(node) {
    super.show(node);
    this.picture.show(node);
  }
}
