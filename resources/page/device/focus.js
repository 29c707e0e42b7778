// Where the keyboard is, when screens come and go.

const isCover = ([left, top, width, height], [, , wide, high]) => left <= 0 && top <= 0 && left + width >= wide && top + height >= high;

/** The screen on top: the last of the window's children that covers it all and lets no touch through. */
function topmost(root, views) {
  return views.findLast(({node}) => !node.hidden && !node.passive && isCover(node.place, root.node.place));
}

const isFocusable = element => element?.isConnected && !element.closest('[inert], .hidden');

export class Focus {
  constructor() {
    this.returns = new Map(); // a screen below → what had the focus when it was covered
  }

  /** Before a change: what has the focus, and what it stands in. */
  remember() {
    this.last = document.activeElement;
    this.around = [];
    for (let box = this.last?.closest?.('.node'); box; box = box.parentElement?.closest('.node')) this.around.push(box);
  }

  /** After it: only the screen on top can be reached, and the focus is in it. */
  settle(root, views) {
    const top = topmost(root, views);
    const isNew = top !== this.top;
    if (isNew && this.top && this.around.includes(this.top.element)) this.returns.set(this.top, this.last);
    const from = top ? views.indexOf(top) : 0;
    views.forEach((view, index) => view.element.toggleAttribute('inert', index < from));
    const isElsewhere = this.around.length === 0 && this.last !== document.body;
    if (isNew && top && !isElsewhere && this.wasSettled) this.enter(top);
    else if (this.around.length > 0 && !isFocusable(this.last)) this.stayNear();
    else if (this.around.length > 0 && document.activeElement !== this.last) this.last.focus({preventScroll: true});
    this.top = top;
    this.wasSettled = true;
  }

  enter(screen) {
    const last = this.returns.get(screen);
    this.returns.delete(screen);
    this.focus(isFocusable(last) ? last : screen.element);
  }

  /** What had the focus is gone: the next Tab goes on from where it was. */
  stayNear() {
    const box = this.around.find(isFocusable);
    if (box) this.focus(box);
  }

  focus(element) {
    if (!element.hasAttribute('tabindex') && element.tabIndex < 0) element.tabIndex = -1;
    element.focus({preventScroll: true});
  }
}
