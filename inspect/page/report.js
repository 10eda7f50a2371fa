"use strict";
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const words = ["nothing written", "filler", "data", "value"];
  const hex = (n) => "0x" + n.toString(16).toUpperCase().padStart(8, "0");
  const bytesIn = (text) => Uint8Array.from(atob(text), (c) => c.charCodeAt(0));

  /** The index of the last entry that begins at or below the address, or -1. */
  function lastFrom(list, address, begin) {
    let low = 0, high = list.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (begin(list[middle]) <= address) low = middle + 1; else high = middle;
    }
    return low - 1;
  }

  /** One image: [start, length, kind, origin] a range, [start, length, bytes] a chunk. */
  class Image {
    constructor(record) {
      Object.assign(this, record);
      this.chunks = this.chunks.map(([start, length, text]) => ({start, length, bytes: bytesIn(text)}));
    }
    rangeAt(address) {
      const range = this.ranges[lastFrom(this.ranges, address, (r) => r[0])];
      return range && address < range[0] + range[1] ? range : null;
    }
    byteAt(address) {
      const chunk = this.chunks[lastFrom(this.chunks, address, (c) => c.start)];
      if (!chunk || address >= chunk.start + chunk.length) return null;
      return chunk.bytes[(address - chunk.start) % chunk.bytes.length];
    }
    /** What is at an address, in words. */
    describe(address) {
      if (address < this.start || address >= this.start + this.length)
        return hex(address) + ": outside the image";
      const range = this.rangeAt(address);
      const byte = this.byteAt(address);
      let text = hex(address) + ": ";
      if (byte !== null) text += byte.toString(16).toUpperCase().padStart(2, "0") + ", ";
      if (!range) return text + words[0];
      const [file, line, first, last] = this.origins[range[3]];
      text += words[range[2]] + " of ";
      if (file) text += file + fileLine(this.lines[range[3]], address, first, last) + ", read by ";
      const place = (data.places && data.places[line]) || "line " + line;
      return text + place + ": " + (data.statements[line] || "");
    }
  }

  /** The line of the input file that gave an address: [start, length, line, bytes a line] each. */
  function fileLine(pieces, address, first, last) {
    if (!first) return "";
    const piece = pieces && pieces[lastFrom(pieces, address, (p) => p[0])];
    if (piece && address < piece[0] + piece[1])
      return " line " + (piece[2] + Math.floor((address - piece[0]) / piece[3]));
    return first === last ? " line " + first : " lines " + first + " to " + last;
  }

  /** The picture of an image, which can be zoomed and pointed at. */
  class View {
    constructor(image, index) {
      this.image = image;
      this.svg = document.getElementById("map-" + index);
      this.output = document.getElementById("at-" + index);
      this.input = document.getElementById("go-" + index);
      this.table = document.getElementById("ranges-" + index);
      this.show(image.start, image.length);
      this.cursor = image.start;
      const at = (event) => {
        const box = this.svg.getBoundingClientRect();
        const part = Math.min(Math.max((event.clientX - box.left) / box.width, 0), 0.999999);
        return this.from + Math.floor(part * this.span);
      };
      this.svg.addEventListener("pointermove", (event) => this.point(at(event)));
      this.svg.addEventListener("pointerdown", (event) => this.point(at(event)));
      this.svg.addEventListener("dblclick", (event) => this.zoom(0.25, at(event)));
      this.svg.addEventListener("wheel", (event) => {
        if (!event.ctrlKey) return;
        event.preventDefault();
        this.zoom(event.deltaY < 0 ? 0.5 : 2, at(event));
      }, {passive: false});
      this.svg.addEventListener("keydown", (event) => this.press(event));
      this.input.addEventListener("change", () => this.goTo(Number(this.input.value)));
      for (const button of document.querySelectorAll('[data-map="' + index + '"]'))
        button.addEventListener("click", () => this.act(button.dataset.act));
      this.point(this.cursor);
    }
    act(name) {
      if (name === "all") this.show(this.image.start, this.image.length);
      else this.zoom(name === "in" ? 0.5 : 2, this.cursor);
    }
    show(from, span) {
      this.span = Math.max(Math.min(span, this.image.length), Math.min(16, this.image.length));
      const last = this.image.start + this.image.length - this.span;
      this.from = Math.max(Math.min(from, last), this.image.start);
      this.draw();
    }
    zoom(factor, address) {
      const part = (address - this.from) / this.span;
      const span = Math.ceil(this.span * factor);
      // Rounded so that the address stays in view.
      this.show(Math.ceil(address - part * span), span);
    }
    press(event) {
      const step = event.shiftKey ? 1 : Math.max(1, Math.floor(this.span / 100));
      const end = this.image.start + this.image.length - 1;
      const moves = {ArrowLeft: -step, ArrowDown: -step, ArrowRight: step, ArrowUp: step,
                     PageDown: -step * 10, PageUp: step * 10};
      if (event.key in moves) this.goTo(this.cursor + moves[event.key]);
      else if (event.key === "Home") this.goTo(this.image.start);
      else if (event.key === "End") this.goTo(end);
      else if (event.key === "+") this.act("in");
      else if (event.key === "-") this.act("out");
      else if (event.key === "0") this.act("all");
      else return;
      event.preventDefault();
    }
    /** Moves the cursor, and the picture if the address is not in it. */
    goTo(address) {
      if (!Number.isFinite(address)) {
        this.output.textContent = "An address is a number such as " + hex(this.image.start) + ".";
        return;
      }
      const end = this.image.start + this.image.length - 1;
      const inside = Math.min(Math.max(address, this.image.start), end);
      if (inside < this.from || inside >= this.from + this.span)
        this.show(inside - Math.floor(this.span / 2), this.span);
      this.point(inside);
      if (inside !== address) this.output.textContent = this.image.describe(address);
    }
    point(address) {
      this.cursor = address;
      const text = this.image.describe(address);
      this.output.textContent = text;
      this.title.textContent = text;
      this.svg.setAttribute("aria-valuenow", address);
      this.svg.setAttribute("aria-valuetext", text);
      const x = (address + 0.5 - this.from) / this.span * 1000;
      this.mark.setAttribute("d", "M" + x + " 0V100");
      const range = this.image.rangeAt(address);
      light(range && this.image.origins[range[3]][1]);
    }
    /** Draws what is in view: neighbours of one kind as one box. What the script wrote is often short
        and what one looks for, so it is never narrower than three pixels and on top. */
    draw() {
      const make = (name) => document.createElementNS("http://www.w3.org/2000/svg", name);
      const {ranges} = this.image;
      const end = this.from + this.span;
      const scale = 1000 / this.span;
      this.svg.replaceChildren();
      this.title = make("title");
      const values = make("g");
      this.svg.append(this.title);
      let box = null;
      for (let i = Math.max(0, lastFrom(ranges, this.from, (r) => r[0])); i < ranges.length; ++i) {
        const [start, length, kind] = ranges[i];
        if (start >= end) break;
        if (start + length <= this.from) continue;
        const narrowest = kind === 3 ? 3 : 1;
        const left = Math.min(Math.max(0, (start - this.from) * scale), 1000 - narrowest);
        const right = Math.min(1000, Math.max((start + length - this.from) * scale, left + narrowest));
        if (box && box.kind === kind && left - box.right < 0.5) {
          box.right = Math.max(box.right, right);
        } else {
          box = {left, right, kind, rect: make("rect")};
          (kind === 3 ? values : this.svg).append(box.rect);
        }
        box.rect.setAttribute("class", "k" + box.kind);
        box.rect.setAttribute("x", box.left);
        box.rect.setAttribute("y", 8);
        box.rect.setAttribute("height", 84);
        box.rect.setAttribute("width", box.right - box.left);
      }
      this.svg.append(values);
      this.mark = make("path");
      this.mark.setAttribute("class", "cursor");
      this.svg.append(this.mark);
      document.getElementById("view-" + this.svg.id.slice(4)).textContent =
        hex(this.from) + " to " + hex(end - 1);
      if (this.cursor !== undefined) this.point(this.cursor);
    }
  }

  /** Marks the line of the script that made what the cursor is on. */
  function light(line) {
    for (const lit of document.querySelectorAll(".script .lit")) lit.classList.remove("lit");
    const item = line && document.getElementById("line-" + line);
    if (item) item.classList.add("lit");
  }

  const views = data.images.map((record, index) =>
    record.length ? new View(new Image(record), index) : null);
  // A link to a range moves the cursor of its image there.
  document.addEventListener("click", (event) => {
    const link = event.target.closest("a[data-go]");
    if (!link) return;
    const [index, start, length] = link.dataset.go.split(",").map(Number);
    views[index].show(start - length, 3 * length);
    views[index].point(start);
  });
})();
