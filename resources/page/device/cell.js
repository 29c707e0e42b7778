// A row of a table.

import {View} from './view.js';

const ownControls = 'button, input, a';

export class Cell extends View {
  constructor(device, id) {
    super(device, id);
    this.element.classList.add('cell');
    this.element.addEventListener('click', event => this.clicked(event));
    this.element.addEventListener('keydown', event => this.keyPressed(event));
  }

  show(node) {
    super.show(node);
    const {classList, style} = this.element;
    classList.toggle('selectable', Boolean(node.selectable));
    classList.toggle('selected', Boolean(node.selected));
    classList.toggle('disclosure', node.accessory === 'disclosure');
    const [inset, color] = node.separator ?? [];
    classList.toggle('separated', Boolean(color));
    style.setProperty('--separator', color ?? 'transparent');
    style.setProperty('--separator-inset', `${inset ?? 0}px`);
    this.setAttribute('tabindex', node.selectable ? 0 : null);
  }

  showMeaning({name, row, rows}) {
    this.setAttribute('role', 'listitem');
    this.setAttribute('aria-label', name);
    this.setAttribute('aria-posinset', row);
    this.setAttribute('aria-setsize', rows);
  }

  clicked(event) {
    if (this.node.selectable && !event.target.closest(ownControls)) this.send('tap');
  }

  keyPressed(event) {
    if (event.target !== this.element) return;
    if (event.key === 'Enter' && !event.repeat) this.clicked(event);
    else if (event.key === 'ArrowDown') this.focusNeighbour(event, 'nextElementSibling');
    else if (event.key === 'ArrowUp') this.focusNeighbour(event, 'previousElementSibling');
  }

  focusNeighbour(event, next) {
    let neighbour = this.element[next];
    while (neighbour && neighbour.tabIndex < 0) neighbour = neighbour[next];
    if (!neighbour) return;
    event.preventDefault();
    neighbour.focus();
  }
}
