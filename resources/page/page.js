// The page of Quaverly: the device, the host's panels beside it, and the connection that feeds both.

import {Connection} from './connection.js';
import {Device} from './device/device.js';
import {Frame} from './frame.js';
import {Links} from './links.js';
import {Panels} from './panels/panels.js';
import {say} from './words.js';

const notice = document.getElementById('notice');
const announcer = document.getElementById('announcer');

/** Has a screen reader say something. */
function announce(text) {
  announcer.textContent = text;
}

function tellConnection(state) {
  const text = state === 'open' ? '' : say(`connection.${state}`);
  if (notice.textContent !== text) notice.textContent = text;
}

const send = message => connection.send(message);
const frame = new Frame(send);
const device = new Device({root: document.getElementById('screen'), send, announce, onScreen: (...all) => frame.show(...all)});
const links = new Links();
const panels = new Panels({send, announce});

const connection = new Connection({
  onMessage: message => device.take(message) || links.take(message) || panels.take(message),
  onState: tellConnection,
  introduction: () => frame.introduce(),
});

// Without anybody who listens, Safari shows no row as pressed.
document.addEventListener('touchstart', () => {}, {passive: true});
