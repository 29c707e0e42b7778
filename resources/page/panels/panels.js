// The host's own panels beside the device.

import {say} from '../words.js';
import {Downloads} from './downloads.js';
import {Library} from './library.js';

export class Panels {
  constructor({send, announce}) {
    this.downloads = new Downloads(document.getElementById('downloads'), {send, announce});
    this.library = new Library(document.getElementById('library'), {send});
    document.getElementById('panels').setAttribute('aria-label', say('panels'));
    document.getElementById('open-panels').textContent = '♫';
    document.getElementById('open-panels').setAttribute('aria-label', say('panels'));
    document.getElementById('close-panels').textContent = say('panels.close');
  }

  take(message) {
    if (message.type === 'downloads') this.downloads.take(message);
    else if (message.type === 'library') this.library.take(message);
    else if (message.type === 'problem') this[message.panel]?.tell(message.text);
  }
}
