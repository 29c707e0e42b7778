// Where the device stands: in a frame of a phone's size on a desk, in the whole window on a phone.

import {say} from './words.js';

const upright = {width: 375, height: 667, orientation: 1};
const turned = {width: 667, height: 375, orientation: 3};

const phoneWindow = matchMedia('(max-width: 600px), (max-height: 500px) and (pointer: coarse)');
const handheld = matchMedia('(pointer: coarse)');

const bezel = 2 * 12;     // what the frame is wider and higher than the screen
const around = 2 * 24;    // the least room around the frame
const belowFrame = 60;    // for the button that turns it
const panelsWidth = 340;

const orientations = {'portrait-primary': 1, 'portrait-secondary': 2, 'landscape-primary': 3, 'landscape-secondary': 4};

/** How a phone is held. A desk's screen lies on its side all day, there the window's shape decides. */
function orientationOf(width, height) {
  const held = handheld.matches ? orientations[screen.orientation?.type] : undefined;
  return held ?? (width > height ? 3 : 1);
}

export class Frame {
  constructor(send) {
    this.send = send;
    this.isTurned = false;
    this.size = upright;
    this.frame = document.getElementById('frame');
    this.screen = document.getElementById('screen');
    this.panels = document.getElementById('panels');
    this.frame.setAttribute('role', 'group');
    this.frame.setAttribute('aria-label', say('device'));
    this.makeButtons();
    this.showTime();
    for (const target of [window, window.visualViewport, screen.orientation]) {
      target?.addEventListener(target === screen.orientation ? 'change' : 'resize', () => this.consider());
    }
    this.fit();
  }

  /** What the host is told first. */
  introduce() {
    this.told = this.wanted();
    return this.told;
  }

  /** The size that the device has now: whichever page spoke last decided it. */
  show(width, height) {
    this.size = {width, height};
    this.screen.style.width = `${width}px`;
    this.screen.style.height = `${height}px`;
    this.fit();
  }

  wanted() {
    if (!phoneWindow.matches) return this.isTurned ? turned : upright;
    const width = Math.round(innerWidth);
    const height = Math.round(this.windowHeight());
    return {width, height, orientation: orientationOf(width, height)};
  }

  /** What the keyboard leaves. Who zooms in does not make the device smaller. */
  windowHeight() {
    const viewport = window.visualViewport;
    return viewport && viewport.scale === 1 ? Math.min(viewport.height, innerHeight) : innerHeight;
  }

  /** Tells the host once per frame, when there is something to tell. */
  consider() {
    this.considering ??= requestAnimationFrame(() => {
      this.considering = null;
      this.fit();
      const wanted = this.wanted();
      if (JSON.stringify(wanted) === JSON.stringify(this.told)) return;
      if (this.send({type: 'screen', ...wanted})) this.told = wanted;
    });
  }

  fit() {
    const fills = phoneWindow.matches;
    const beside = !fills && innerWidth >= this.size.width + bezel + around + panelsWidth;
    document.body.classList.toggle('fills', fills);
    document.body.classList.toggle('upright', this.size.height >= this.size.width);
    this.standPanels(beside);
    const extra = fills ? 0 : bezel;
    const roomWide = innerWidth - (fills ? 0 : around) - (beside ? panelsWidth : 0);
    const roomHigh = this.windowHeight() - (fills ? 0 : around + belowFrame);
    const scale = Math.min(1, roomWide / (this.size.width + extra), roomHigh / (this.size.height + extra));
    this.frame.style.scale = scale;
    // What scaling leaves free is given back.
    this.frame.style.marginInline = `${((scale - 1) * (this.size.width + extra)) / 2}px`;
    this.frame.style.marginBlock = `${((scale - 1) * (this.size.height + extra)) / 2}px`;
  }

  /** Beside the device, or behind a button. */
  standPanels(beside) {
    document.body.classList.toggle('beside', beside);
    const kind = beside ? null : 'auto';
    if (this.panels.popover !== kind) this.panels.popover = kind;
  }

  makeButtons() {
    const turn = document.getElementById('turn');
    turn.textContent = say('turn');
    turn.title = say('turn.purpose');
    turn.addEventListener('click', () => {
      this.isTurned = !this.isTurned;
      this.consider();
    });
  }

  showTime() {
    const bar = document.getElementById('status-bar');
    const tell = () => {
      const now = new Date();
      bar.dataset.time = now.toLocaleTimeString([], {hour: '2-digit', minute: '2-digit'});
      setTimeout(tell, 60000 - (now % 60000));
    };
    tell();
  }
}
