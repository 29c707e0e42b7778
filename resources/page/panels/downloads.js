// What becomes of each import.

import {part} from '../elements.js';
import {say, sayBytes} from '../words.js';
import {ItemList} from './list.js';

const underWay = new Set(['queued', 'fetching', 'placing']);
const announcements = {filed: 'downloads.announceFiled', duplicate: 'downloads.announceDuplicate', failed: 'downloads.announceFailed'};

class Download {
  constructor(id, {send, announce}) {
    this.announce = announce;
    this.element = document.createElement('li');
    this.element.className = 'download';
    this.title = part('span', 'title', this.element);
    this.artist = part('span', 'artist', this.element);
    this.progress = part('div', 'progress', this.element);
    this.progress.setAttribute('role', 'progressbar');
    this.done = part('div', 'done', this.progress);
    const foot = part('div', 'foot', this.element);
    this.state = part('span', 'state', foot);
    this.retry = part('button', 'retry', foot);
    this.retry.type = 'button';
    this.retry.textContent = say('downloads.retry');
    this.retry.addEventListener('click', () => send({type: 'retry', id}));
    this.reason = part('p', 'reason', this.element);
  }

  show(item) {
    const {title, artist, file, state, reason = '', canRetry} = item;
    this.title.textContent = title || file;
    this.artist.textContent = artist ?? file;
    this.reason.textContent = reason;
    this.element.dataset.state = state;
    this.retry.hidden = !canRetry;
    this.retry.setAttribute('aria-label', say('downloads.retryOf', {title}));
    this.showProgress(item);
    if (this.before && this.before !== state && announcements[state]) this.announce(say(announcements[state], {title, reason}));
    this.before = state;
  }

  showProgress({title, state, bytes, total}) {
    const isFetching = state === 'fetching' && total > 0;
    const amount = isFetching ? say('downloads.bytes', {bytes: sayBytes(bytes), total: sayBytes(total)}) : '';
    this.state.textContent = [say(`state.${state}`), amount].filter(Boolean).join(' · ');
    this.progress.hidden = !underWay.has(state);
    this.progress.setAttribute('aria-label', say('downloads.progress', {title}));
    const percent = total > 0 ? Math.round((100 * bytes) / total) : undefined;
    if (percent === undefined) this.progress.removeAttribute('aria-valuenow');
    else this.progress.setAttribute('aria-valuenow', Math.min(percent, 100));
    this.done.style.width = `${Math.min(percent ?? 0, 100)}%`;
  }
}

export class Downloads {
  constructor(section, tools) {
    section.querySelector('h2').textContent = say('downloads');
    this.remark = section.querySelector('.remark');
    this.list = new ItemList(section.querySelector('ol'), id => new Download(id, tools));
    this.tell('');
  }

  take({items = [], whole, notice}) {
    this.list.take(items, whole);
    this.tell(notice ?? '');
  }

  /** Why nothing goes on, or what could not be done. */
  tell(text) {
    this.remark.textContent = text || (this.list.size === 0 ? say('downloads.none') : '');
  }
}
