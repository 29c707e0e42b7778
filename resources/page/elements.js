/** A new element at the end of another. */
export function part(tag, className, parent) {
  const element = document.createElement(tag);
  element.className = className;
  parent?.append(element);
  return element;
}
