// What a person has typed and the host has not yet acknowledged.

export class Edits {
  constructor(send) {
    this.send = send;
    this.sequence = 0;
    this.newest = new Map(); // node → its edit
  }

  typed(node, text) {
    this.sequence += 1;
    const edit = {type: 'edit', node, text, sequence: this.sequence};
    this.newest.set(node, edit);
    this.send(edit);
  }

  acknowledge(node, sequence) {
    if (this.newest.get(node)?.sequence === sequence) this.newest.delete(node);
  }

  /** Whether the host may know less of a field than the page does. */
  waitsFor(node) {
    return this.newest.has(node);
  }

  forget(node) {
    this.newest.delete(node);
  }

  /** After a new connection: nobody knows what the old one has still delivered. */
  sendAgain() {
    for (const edit of this.newest.values()) this.send(edit);
  }
}
