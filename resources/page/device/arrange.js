// Elements in the order of their nodes, moving as few as possible: what stays where it is keeps its focus, its
// selection and its offset.

const isNode = element => element.classList.contains('node');

function nodeFrom(element) {
  while (element && !isNode(element)) element = element.nextElementSibling;
  return element;
}

function put(box, element, before) {
  if (element.isConnected && box.isConnected && box.moveBefore) box.moveBefore(element, before);
  else box.insertBefore(element, before);
}

/** Has `box` hold just these nodes' elements. Other elements in it stay; nodes stand before `end`. */
export function arrange(box, elements, end = null) {
  const wanted = new Set(elements);
  for (const child of [...box.children]) {
    if (isNode(child) && !wanted.has(child)) child.remove();
  }
  let next = nodeFrom(box.firstElementChild);
  for (const element of elements) {
    if (element === next) next = nodeFrom(next.nextElementSibling);
    else put(box, element, next ?? end);
  }
}
