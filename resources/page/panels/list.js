// A list of items, the newest first, each in an element of its own that stays while the item changes.

export class ItemList {
  /** `Item` is made with an item's id and has an `element` and `show(item)`. */
  constructor(list, makeItem) {
    this.list = list;
    this.makeItem = makeItem;
    this.items = new Map();
  }

  get size() {
    return this.items.size;
  }

  /** The id of the oldest; undefined without items. */
  get oldest() {
    return this.size ? Math.min(...this.items.keys()) : undefined;
  }

  take(items, isWhole) {
    if (isWhole) this.keepOnly(new Set(items.map(({id}) => id)));
    for (const item of items) this.put(item);
  }

  keepOnly(ids) {
    for (const [id, item] of this.items) {
      if (ids.has(id)) continue;
      item.element.remove();
      this.items.delete(id);
    }
  }

  put(item) {
    let shown = this.items.get(item.id);
    if (!shown) {
      shown = this.makeItem(item.id);
      shown.element.dataset.id = item.id;
      this.items.set(item.id, shown);
      this.list.insertBefore(shown.element, this.firstOlderThan(item.id));
    }
    shown.show(item);
  }

  firstOlderThan(id) {
    let element = this.list.lastElementChild;
    let older = null;
    while (element && Number(element.dataset.id) < id) {
      older = element;
      element = element.previousElementSibling;
    }
    return older;
  }
}
