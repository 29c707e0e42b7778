// Addresses that the device's screens open: in a new tab, which knows nothing of this one.

import {part} from './elements.js';
import {say} from './words.js';

const isWebAddress = address => /^https?:$/.test(URL.canParse(address) ? new URL(address).protocol : '');

/** Opens a new tab; false when the browser does not let the page do so. A tab without an opener cannot be asked. */
export function openTab(address) {
  if (!isWebAddress(address)) return false;
  const wasActive = navigator.userActivation?.isActive ?? true;
  window.open(address, '_blank', 'noopener');
  return wasActive;
}

export class Links {
  /** Takes a message from the host; whether it was one that opens something. */
  take({type, url}) {
    if (type !== 'open') return false;
    if (isWebAddress(url) && !(navigator.userActivation?.isActive && openTab(url))) this.offer(url);
    return true;
  }

  /** What may not be opened without the person's doing is offered as a link. */
  offer(address) {
    this.bar?.remove();
    this.bar = part('div', 'link-bar', document.getElementById('stage'));
    this.bar.setAttribute('role', 'status');
    const link = part('a', 'link', this.bar);
    Object.assign(link, {href: address, target: '_blank', rel: 'noopener noreferrer'});
    link.textContent = say('link.open', {address: new URL(address).host});
    link.addEventListener('click', () => this.close());
    const close = part('button', 'close', this.bar);
    close.type = 'button';
    close.textContent = '×';
    close.setAttribute('aria-label', say('link.close'));
    close.addEventListener('click', () => this.close());
  }

  close() {
    this.bar?.remove();
    this.bar = null;
  }
}
