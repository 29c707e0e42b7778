// Ellipses that are drawn on top of a node.

const svg = 'http://www.w3.org/2000/svg';

function make(tag, attributes) {
  const element = document.createElementNS(svg, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  return element;
}

/** The part of the way around that is drawn; an ellipse begins at its right and goes clockwise. */
function dashes(start, end) {
  return {pathLength: 1, 'stroke-dasharray': `${Math.max(0, end - start)} 1`, 'stroke-dashoffset': -start};
}

function ellipse({ellipse: [x, y, width, height], fill, stroke, width: line = 1, start = 0, end = 1, alpha = 1}) {
  return make('ellipse', {
    cx: x + width / 2,
    cy: y + height / 2,
    rx: width / 2,
    ry: height / 2,
    fill: fill ?? 'none',
    opacity: alpha,
    ...(stroke ? {stroke, 'stroke-width': line} : {}),
    ...(stroke && (start > 0 || end < 1) ? dashes(start, end) : {}),
  });
}

export function shapesElement(shapes) {
  const element = make('svg', {class: 'shapes', 'aria-hidden': 'true', width: 1, height: 1});
  element.append(...shapes.map(ellipse));
  return element;
}
