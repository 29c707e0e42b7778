// What the host animates, as animations of the browser's own. Each runs by the host's clock: a page that comes
// later shows the middle of it.

const calm = matchMedia('(prefers-reduced-motion: reduce)');

/** A node's transform in CSS: scaled, then turned, then shifted, around the middle. */
export function transformText([angle, scaleX, scaleY, shiftX, shiftY]) {
  return `translate(${shiftX}px, ${shiftY}px) rotate(${angle}rad) scale(${scaleX}, ${scaleY})`;
}

/** The difference from where the node is in the end. */
function centerFrame([x, y], [left, top, width, height]) {
  return {translate: `${x - left - width / 2}px ${y - top - height / 2}px`};
}

function boundsFrame([width, height], [left, top, finalWidth, finalHeight]) {
  return {
    width: `${width}px`,
    height: `${height}px`,
    left: `${left + (finalWidth - width) / 2}px`,
    top: `${top + (finalHeight - height) / 2}px`,
  };
}

const frames = {
  alpha: ([value]) => ({opacity: value}),
  transform: values => ({transform: transformText(values)}),
  center: centerFrame,
  bounds: boundsFrame,
};

function timing({delay, duration, easing, repeat, reverse}) {
  return {
    delay,
    duration,
    easing,
    iterations: repeat ? Infinity : reverse ? 2 : 1,
    direction: reverse ? 'alternate' : 'normal',
    fill: 'backwards',
  };
}

/** The animations of one element. */
export class Animations {
  constructor(element, now) {
    this.element = element;
    this.now = now;
    this.running = new Map();
  }

  /** Runs those that are told and no others. `place` is where the node is in the end. */
  show(told, place) {
    const wanted = new Map(told.filter(({property}) => !calm.matches || property === 'alpha').map(each => [each.id, each]));
    for (const [id, animation] of this.running) {
      if (wanted.has(id)) continue;
      animation.cancel();
      this.running.delete(id);
    }
    for (const [id, each] of wanted) {
      const make = frames[each.property];
      const steps = [make(each.from, place), make(each.to, place)];
      if (this.running.has(id)) this.running.get(id).effect.setKeyframes(steps);
      else this.start(each, steps);
    }
  }

  start(each, steps) {
    const animation = this.element.animate(steps, timing(each));
    animation.currentTime = this.now() - each.begin;
    this.running.set(each.id, animation);
  }
}
