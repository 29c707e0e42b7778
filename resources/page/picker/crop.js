// The square that is cut out of a picture: which part of it the square shows, whatever moves and scales it.

const mostEnlarged = 8; // times the size at which the shorter side just fills the square

const between = (low, value, high) => Math.min(Math.max(value, low), high);

/** Lengths are CSS pixels but for `part`, which is in the picture's own. */
export class Crop {
  constructor({width, height, side}) {
    this.width = width;
    this.height = height;
    this.side = side;
    this.least = side / Math.min(width, height);
    this.scale = this.least;
    this.left = (side - width * this.scale) / 2;
    this.top = (side - height * this.scale) / 2;
  }

  move(x, y) {
    this.left = between(this.side - this.width * this.scale, this.left + x, 0);
    this.top = between(this.side - this.height * this.scale, this.top + y, 0);
  }

  /** Scales around a point of the square. */
  scaleBy(factor, x = this.side / 2, y = this.side / 2) {
    const scale = between(this.least, this.scale * factor, this.least * mostEnlarged);
    const change = scale / this.scale;
    this.left = x - (x - this.left) * change;
    this.top = y - (y - this.top) * change;
    this.scale = scale;
    this.move(0, 0);
  }

  /** The square in another size, around the same part. */
  resize(side) {
    const change = side / this.side;
    Object.assign(this, {side, least: this.least * change, scale: this.scale * change, left: this.left * change, top: this.top * change});
  }

  /** From 0, as small as it can be, to 1. */
  get enlargement() {
    return Math.log(this.scale / this.least) / Math.log(mostEnlarged);
  }

  set enlargement(value) {
    this.scaleBy((this.least * mostEnlarged ** value) / this.scale);
  }

  /** The part of the picture that the square shows. */
  get part() {
    return {x: -this.left / this.scale, y: -this.top / this.scale, side: this.side / this.scale};
  }
}
