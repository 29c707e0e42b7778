// The one connection to the host. It comes back by itself, and says so only when that takes a moment.

const shortestPause = 100;
const longestPause = 2000;
const quiet = 600; // how long the connection may be gone before anybody is told

/** A name for this page, for as long as it is open. */
const client = Array.from(crypto.getRandomValues(new Uint8Array(8)), byte => byte.toString(16)).join('');

export class Connection {
  /**
   * `onMessage` gets what the host sends. `introduction` gives what the page says first, every time.
   * `onState` is told 'open', 'lost' or 'refused'.
   */
  constructor({onMessage, onState, introduction}) {
    this.onMessage = onMessage;
    this.onState = onState;
    this.introduction = introduction;
    this.pause = shortestPause;
    this.open();
    window.addEventListener('online', () => this.openNow());
    document.addEventListener('visibilitychange', () => this.openNow());
  }

  /** Sends a message; false when there is nobody to take it. */
  send(message) {
    if (this.socket?.readyState !== WebSocket.OPEN) return false;
    this.socket.send(JSON.stringify(message));
    return true;
  }

  open() {
    const socket = new WebSocket(`ws://${location.host}/socket`);
    this.socket = socket;
    socket.onopen = () => this.opened();
    socket.onmessage = event => this.received(event.data);
    socket.onclose = () => this.closed();
  }

  openNow() {
    if (document.hidden || !this.retrying) return;
    clearTimeout(this.retrying);
    this.retrying = null;
    this.open();
  }

  opened() {
    this.send({type: 'hello', client, ...this.introduction()});
  }

  received(text) {
    clearTimeout(this.complaint);
    this.complaint = null;
    this.isGone = false;
    this.pause = shortestPause;
    this.onState('open');
    this.onMessage(JSON.parse(text));
  }

  closed() {
    if (this.isGone) this.complain();
    else this.complaint ??= setTimeout(() => this.complain(), quiet);
    this.retrying = setTimeout(() => {
      this.retrying = null;
      this.open();
    }, this.pause);
    this.pause = Math.min(this.pause * 2, longestPause);
  }

  /** A socket does not tell a server that is gone from one that refuses; a request does. */
  async complain() {
    this.isGone = true;
    const answer = await fetch('/', {method: 'HEAD', cache: 'no-store'}).catch(() => null);
    if (this.isGone) this.onState(answer?.status === 403 ? 'refused' : 'lost');
  }
}
