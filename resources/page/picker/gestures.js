// Mouse, fingers, wheel and keys that move and scale a crop.

const step = 10;
const zoom = 1.1;

const keys = {
  ArrowLeft: crop => crop.move(-step, 0),
  ArrowRight: crop => crop.move(step, 0),
  ArrowUp: crop => crop.move(0, -step),
  ArrowDown: crop => crop.move(0, step),
  '+': crop => crop.scaleBy(zoom),
  '=': crop => crop.scaleBy(zoom),
  '-': crop => crop.scaleBy(1 / zoom),
};

const middle = ([a, b = a]) => ({x: (a.x + b.x) / 2, y: (a.y + b.y) / 2});
const distance = ([a, b]) => (b ? Math.hypot(a.x - b.x, a.y - b.y) : 0);

/** `getCrop` gives what is moved, or nothing; `changed` is called after it was. */
export class Gestures {
  constructor(element, getCrop, changed) {
    this.element = element;
    this.getCrop = getCrop;
    this.changed = changed;
    this.pointers = new Map();
    element.addEventListener('pointerdown', event => this.down(event));
    element.addEventListener('pointermove', event => this.moved(event));
    for (const end of ['pointerup', 'pointercancel']) element.addEventListener(end, event => this.pointers.delete(event.pointerId));
    element.addEventListener('wheel', event => this.wheeled(event), {passive: false});
    element.addEventListener('keydown', event => this.keyPressed(event));
  }

  /** Where a pointer is in the square; the frame may stand smaller than it is. */
  point(event) {
    const {left, top, width} = this.element.getBoundingClientRect();
    const scale = width > 0 ? this.element.offsetWidth / width : 1;
    return {x: (event.clientX - left) * scale, y: (event.clientY - top) * scale};
  }

  down(event) {
    this.element.setPointerCapture(event.pointerId);
    this.pointers.set(event.pointerId, this.point(event));
  }

  moved(event) {
    const crop = this.getCrop();
    if (!crop || !this.pointers.has(event.pointerId)) return;
    const before = [...this.pointers.values()].slice(0, 2);
    this.pointers.set(event.pointerId, this.point(event));
    const after = [...this.pointers.values()].slice(0, 2);
    const [from, to] = [middle(before), middle(after)];
    crop.move(to.x - from.x, to.y - from.y);
    if (distance(before) > 0) crop.scaleBy(distance(after) / distance(before), to.x, to.y);
    this.changed();
  }

  wheeled(event) {
    const crop = this.getCrop();
    if (!crop) return;
    event.preventDefault();
    const {x, y} = this.point(event);
    crop.scaleBy(Math.exp(-event.deltaY / 400), x, y);
    this.changed();
  }

  keyPressed(event) {
    const act = keys[event.key];
    const crop = this.getCrop();
    if (!act || !crop || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    act(crop);
    this.changed();
  }
}
