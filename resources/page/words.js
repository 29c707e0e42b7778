// The page's own words, by key. What stands on the device's screens is the host's.

import {language, translation} from './translation.js';

document.documentElement.lang = language;

const words = {
  'device': 'Device',
  'turn': 'Turn',
  'turn.purpose': 'Turn the device',
  'connection.lost': 'The connection is lost. Trying again…',
  'connection.refused': 'Quaverly has ended or was started anew. Open the address that it prints.',
  'back': 'Back',
  'loading': 'Loading',

  'picker': 'Picture',
  'picker.choose': 'Choose picture',
  'picker.chooseAnother': 'Choose another',
  'picker.cancel': 'Cancel',
  'picker.use': 'Use',
  'picker.invite': 'Choose a picture from this computer.',
  'picker.hint': 'Move it and scale it, until the square shows what you want.',
  'picker.crop': 'Part of the picture. The arrow keys move it, plus and minus scale it.',
  'picker.zoom': 'Scale',
  'picker.noPicture': '“{name}” is no picture that this browser can read.',
  'picker.sending': 'One moment…',
  'picker.notSent': 'The picture could not be handed over. Try it again.',

  'mail': 'New mail',
  'mail.to': 'To',
  'mail.subject': 'Subject',
  'mail.body': 'Text of the mail',
  'mail.attachments': 'Attachments',
  'mail.attachment': '{name}, {size}',
  'mail.seeAttachment': '{name}, {size}, shown in a new tab',
  'mail.send': 'Send',
  'mail.save': 'Save draft',
  'mail.sending': 'Sending…',
  'mail.saving': 'One moment…',
  'mail.notSent': 'The mail could not be handed over. Try it again.',
  'mail.lost': 'What you wrote is lost if you cancel. Press Cancel again to do so.',
  'mail.draft': 'Mail',
  'share': 'Share',
  'share.text': 'Text',
  'share.left': 'Characters left: {count}',
  'share.tooMany': 'Characters too many: {count}',
  'share.post': 'Post',
  'share.hint': 'Post opens the service’s page with this text in a new tab.',
  'sheet.cancel': 'Cancel',
  'link.open': 'Open {address}',
  'link.close': 'Close',

  'panels': 'Downloads and library',
  'panels.close': 'Close',
  'downloads': 'Downloads',
  'downloads.none': 'What you import appears here.',
  'downloads.retry': 'Retry',
  'downloads.retryOf': 'Retry {title}',
  'downloads.progress': 'Progress of {title}',
  'downloads.bytes': '{bytes} of {total}',
  'downloads.announceFiled': '{title} is in the library.',
  'downloads.announceDuplicate': '{title} was in the library already.',
  'downloads.announceFailed': '{title} failed. {reason}',
  'state.queued': 'Waiting',
  'state.fetching': 'Importing',
  'state.placing': 'Filing',
  'state.filed': 'In the library',
  'state.duplicate': 'In the library already',
  'state.failed': 'Failed',
  'library': 'Library',
  'library.none': 'No songs yet.',
  'library.more': 'Older songs',
  'library.track': 'Track {track}',
  'library.play': 'Play {title}',
  'library.pause': 'Pause {title}',
  'library.player': 'Player',
  'library.cannotPlay': '{title} cannot be played by this browser.',
};

/** The words of a key, with values in the places that are named in braces. */
export function say(key, values = {}) {
  return (translation[key] ?? words[key]).replace(/\{(\w+)\}/g, (place, name) => values[name] ?? place);
}

const units = ['byte', 'kilobyte', 'megabyte', 'gigabyte'];

/** A number of bytes, as people read it. */
export function sayBytes(bytes) {
  let unit = 0;
  let amount = bytes;
  while (amount >= 1000 && unit < units.length - 1) {
    amount /= 1000;
    unit += 1;
  }
  const digits = amount < 10 && unit > 1 ? 1 : 0;
  const format = {style: 'unit', unit: units[unit], unitDisplay: 'short', maximumFractionDigits: digits};
  return new Intl.NumberFormat(document.documentElement.lang, format).format(amount);
}
