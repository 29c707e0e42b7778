// A host of a few lines: serves the page's files as the real one does, and speaks its protocol as a test says.
// For what no real screen can be brought to show.
import fs from 'node:fs';
import http from 'node:http';
import path from 'node:path';
import {performance} from 'node:perf_hooks';
import {fileURLToPath} from 'node:url';

const resources = fileURLToPath(new URL('../../../resources', import.meta.url));
const fonts = {
  '/fonts/Arial': '/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf',
  '/fonts/HelveticaNeue': '/usr/share/fonts/opentype/inter/Inter-Regular.otf',
  '/fonts/HelveticaNeue-Medium': '/usr/share/fonts/opentype/inter/Inter-Medium.otf',
  '/fonts/HelveticaNeue-UltraLight': '/usr/share/fonts/opentype/inter/Inter-Thin.otf',
};
const types = {'.html': 'text/html', '.css': 'text/css', '.js': 'text/javascript', '.svg': 'image/svg+xml', '.png': 'image/png'};
const policy =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; font-src 'self'; media-src 'self'; " +
  "connect-src 'self' ws://127.0.0.1:*; frame-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";

function fileFor(target) {
  if (fonts[target]) return fonts[target];
  if (target.startsWith('/images/')) return path.join(resources, 'QuaverlySettings.bundle', target);
  return path.join(resources, 'page', target === '/' ? 'index.html' : target);
}

export class FakeHost {
  static async start() {
    const host = new FakeHost();
    await new Promise(done => host.server.listen(0, '127.0.0.1', done));
    return host;
  }

  constructor() {
    this.received = [];
    this.picked = [];
    this.refuses = false; // nobody is let in
    this.isAway = false; // only the socket is gone
    this.answersEdits = true;
    this.server = http.createServer((request, response) => this.answer(request, response));
  }

  get address() {
    return `http://127.0.0.1:${this.server.address().port}/`;
  }

  stop() {
    this.server.closeAllConnections();
    this.server.close();
  }

  /** Opens the page with its socket at this host. */
  async show(page, nodes, more = {}) {
    this.nodes = nodes;
    this.more = more;
    await page.routeWebSocket('**/socket', socket => this.connected(socket));
    await page.goto(this.address);
    await page.locator('[data-node="1"]').waitFor();
  }

  connected(socket) {
    if (this.refuses || this.isAway) return socket.close();
    this.socket = socket;
    socket.onMessage(text => this.take(JSON.parse(text)));
  }

  take(message) {
    this.received.push(message);
    if (message.type === 'hello') this.sendTree();
    if (message.type === 'edit' && this.answersEdits) this.send({type: 'ack', node: message.node, sequence: message.sequence});
    this.onMessage?.(message);
  }

  now() {
    return performance.now();
  }

  sendTree() {
    const screen = this.screen ?? [375, 667];
    this.send({type: 'tree', now: this.now(), screen, orientation: 1, root: 1, nodes: this.nodes, ...this.more});
  }

  change(set, gone = []) {
    Object.assign(this.nodes, set);
    for (const id of gone) delete this.nodes[id];
    this.send({type: 'change', now: this.now(), set, gone});
  }

  send(message) {
    this.socket.send(JSON.stringify(message));
  }

  all(type) {
    return this.received.filter(message => message.type === type);
  }

  answer(request, response) {
    const target = new URL(request.url, this.address).pathname;
    if (request.method === 'POST') return this.takePicked(request, response);
    if (this.refuses) return response.writeHead(403).end();
    const file = fileFor(target);
    fs.readFile(file, (error, body) => {
      if (error) return response.writeHead(404).end();
      response.writeHead(200, {'Content-Type': types[path.extname(file)] ?? 'font/otf', 'Content-Security-Policy': policy});
      response.end(body);
    });
  }

  takePicked(request, response) {
    const parts = [];
    request.on('data', part => parts.push(part));
    request.on('end', () => {
      this.picked.push({url: request.url, body: Buffer.concat(parts)});
      const refusal = this.pickedRefusal;
      response.writeHead(refusal ? 422 : 204, {'Content-Type': 'text/plain'}).end(refusal);
    });
  }
}
