// Zooms the trace of a report and reads its values under the pointer. The page is complete without it.
(function () {
  "use strict";
  const plot = document.querySelector(".chart .plot");
  const text = document.getElementById("samples");
  if (!plot || !text) {
    return;
  }
  const given = (name) => Number(plot.dataset[name]);
  const svg = plot.querySelector("svg");
  const path = svg.querySelector(".trace");
  const gridLines = svg.querySelector(".grid");
  const unitName = plot.querySelector(".xunit"); // only where distances are known
  const [width, height] = svg.getAttribute("viewBox").split(" ").slice(2).map(Number);
  const counts = decode(text.textContent.trim());
  const perStep = given("perStep");
  const steps = Math.floor(counts.length / perStep);
  const first = given("first");
  const step = given("step");
  const whole = { start: first, end: first + Math.max(1, steps - 1) * step, low: given("low"), high: given("high") };
  const asWritten = { start: given("start"), end: given("end"), low: whole.low, high: whole.high };
  const shortest = Math.min(20 * step, asWritten.end - asWritten.start);
  let view = { ...asWritten };

  function decode(base64) {
    const bytes = Uint8Array.from(atob(base64), (character) => character.charCodeAt(0));
    const view = new DataView(bytes.buffer);
    return Uint16Array.from({ length: bytes.length >> 1 }, (_, i) => view.getUint16(2 * i, true));
  }

  const level = (count) => (65535 - count) * given("db");
  const left = (distance) => ((distance - view.start) / (view.end - view.start)) * 100;
  const top = (decibels) => ((view.high - decibels) / (view.high - view.low)) * 100;
  const stepAt = (distance) => Math.min(steps - 1, Math.max(0, Math.round((distance - first) / step)));

  // The strongest and the weakest count of the steps from <= i < to.
  function extremes(from, to) {
    let strongest = 65535;
    let weakest = 0;
    for (let i = from * perStep; i < to * perStep; ++i) {
      strongest = Math.min(strongest, counts[i]);
      weakest = Math.max(weakest, counts[i]);
    }
    return [strongest, weakest];
  }

  function line() {
    const from = Math.max(0, Math.floor((view.start - first) / step));
    const to = Math.min(steps, Math.ceil((view.end - first) / step) + 1);
    const stretch = Math.max(1, Math.ceil((to - from) / 1000));
    const points = [];
    for (let i = from; i < to; i += stretch) {
      const last = Math.min(to, i + stretch);
      const x = ((left(first + (i + (last - 1 - i) / 2) * step) / 100) * width).toFixed(1);
      const ends = extremes(i, last);
      for (const count of ends[0] === ends[1] ? [ends[0]] : ends) {
        points.push(x + " " + ((top(level(count)) / 100) * height).toFixed(1));
      }
    }
    return points.length ? "M" + points.join("L") : "";
  }

  // Round values from low to high, about so many.
  function ticks(low, high, about) {
    const rough = (high - low) / about;
    const power = Math.pow(10, Math.floor(Math.log10(rough)));
    const size = [1, 2, 5, 10].find((factor) => factor * power >= rough * 0.999) * power;
    const decimals = Math.max(0, -Math.floor(Math.log10(size) + 1e-9));
    const found = [];
    for (let k = Math.ceil(low / size - 1e-9); k * size <= high + size * 1e-9; ++k) {
      found.push({ value: k * size, label: shown(k * size, decimals) });
    }
    return found;
  }

  function shown(value, decimals) {
    const [digits, rest] = Math.abs(value).toFixed(decimals).split(".");
    const grouped = digits.length < 5 ? digits : digits.replace(/\B(?=(\d{3})+$)/g, "\u202f");
    const number = rest ? grouped + "." + rest : grouped;
    return value < 0 && /[1-9]/.test(number) ? "\u2212" + number : number;
  }

  function label(kind, side, percent, words) {
    const span = document.createElement("span");
    span.className = kind;
    span.style[side] = percent + "%";
    span.textContent = words;
    plot.append(span);
  }

  function gridLine(ends) {
    const element = document.createElementNS("http://www.w3.org/2000/svg", "line");
    element.setAttribute("vector-effect", "non-scaling-stroke");
    for (const name in ends) {
      element.setAttribute(name, ends[name] + "%");
    }
    gridLines.append(element);
  }

  function distanceAxis() {
    const unit = view.end - view.start >= 2000 ? 1000 : 1;
    unitName.textContent = unit === 1 ? "m" : "km";
    ticks(view.start / unit, view.end / unit, plot.clientWidth < 500 ? 5 : 10).forEach((tick) => {
      const place = left(tick.value * unit);
      label("x", "left", place, tick.label);
      gridLine({ x1: place, x2: place, y1: 0, y2: 100 });
    });
  }

  function axes() {
    plot.querySelectorAll(".x, .y").forEach((old) => old.remove());
    gridLines.replaceChildren();
    if (unitName) {
      distanceAxis();
    }
    ticks(view.low, view.high, 8).forEach((tick) => {
      const place = top(tick.value);
      label("y", "top", place, tick.label);
      gridLine({ x1: 0, x2: 100, y1: place, y2: place });
    });
  }

  function draw() {
    path.setAttribute("d", line());
    axes();
    plot.querySelectorAll(".mark").forEach((mark) => {
      const place = left(Number(mark.dataset.at));
      mark.style.left = place + "%";
      mark.hidden = place < 0 || place > 100;
    });
    cursor.hidden = true;
    reset.disabled = view.start === asWritten.start && view.end === asWritten.end
      && view.low === asWritten.low && view.high === asWritten.high;
  }

  // Shows a stretch of the record, moved into it where it reaches beyond.
  function show(start, length) {
    const size = Math.min(whole.end - whole.start, Math.max(shortest, length));
    view.start = Math.min(whole.end - size, Math.max(whole.start, start));
    view.end = view.start + size;
    fitLevels();
    draw();
  }

  // A short stretch is shown with the levels that it has.
  function fitLevels() {
    const isWhole = view.end - view.start >= asWritten.end - asWritten.start;
    const [strongest, weakest] = extremes(stepAt(view.start), stepAt(view.end) + 1);
    const margin = Math.max(0.05, (level(strongest) - level(weakest)) * 0.05);
    view.low = isWhole ? whole.low : Math.max(whole.low, level(weakest) - margin);
    view.high = isWhole ? whole.high : level(strongest) + margin;
  }

  function zoom(factor, at) {
    const length = (view.end - view.start) * factor;
    show(at - (at - view.start) * factor, length);
  }

  const middle = () => (view.start + view.end) / 2;
  const distanceAt = (event) => {
    const box = svg.getBoundingClientRect();
    return view.start + ((event.clientX - box.left) / box.width) * (view.end - view.start);
  };

  function read(distance) {
    const at = stepAt(distance);
    const place = left(first + at * step);
    cursor.hidden = place < 0 || place > 100;
    cursor.style.left = place + "%";
    const where = unitName ? shown(first + at * step, 1) + " m · " : "";
    output.textContent = where + shown(level(counts[at * perStep]), 3) + " dB";
  }

  const cursor = document.createElement("span");
  cursor.className = "cursor";
  cursor.hidden = true;
  plot.append(cursor);
  const output = document.createElement("output");
  const tools = document.createElement("div");
  tools.className = "tools";

  function button(words, name, action) {
    const made = document.createElement("button");
    made.type = "button";
    made.textContent = words;
    made.setAttribute("aria-label", name);
    made.addEventListener("click", action);
    tools.append(made);
    return made;
  }

  button("+", "Zoom in", () => zoom(0.5, middle()));
  button("\u2212", "Zoom out", () => zoom(2, middle()));
  const reset = button("Reset", "Show the fibre as a whole", () => {
    view = { ...asWritten };
    draw();
  });
  reset.disabled = true;
  tools.append(output);
  plot.after(tools);

  const fingers = new Map();
  plot.style.touchAction = "pan-y";
  plot.addEventListener("pointerdown", (event) => {
    fingers.set(event.pointerId, event.clientX);
    plot.setPointerCapture(event.pointerId);
    read(distanceAt(event));
  });
  plot.addEventListener("pointermove", (event) => {
    const before = fingers.get(event.pointerId);
    if (before === undefined) {
      read(distanceAt(event));
      return;
    }
    const perPixel = (view.end - view.start) / svg.getBoundingClientRect().width;
    if (fingers.size === 1) {
      show(view.start - (event.clientX - before) * perPixel, view.end - view.start);
    } else {
      const other = [...fingers].find(([id]) => id !== event.pointerId)[1];
      const apart = Math.max(10, Math.abs(event.clientX - other));
      zoom(Math.max(10, Math.abs(before - other)) / apart, distanceAt({ clientX: other }));
    }
    fingers.set(event.pointerId, event.clientX);
    read(distanceAt(event));
  });
  ["pointerup", "pointercancel"].forEach((name) =>
    plot.addEventListener(name, (event) => fingers.delete(event.pointerId)));
  plot.addEventListener("pointerleave", () => {
    cursor.hidden = true;
  });
  plot.addEventListener("wheel", (event) => {
    if (event.ctrlKey || view.end - view.start < asWritten.end - asWritten.start || event.deltaY < 0) {
      event.preventDefault(); // otherwise the page scrolls on past the chart
      zoom(event.deltaY < 0 ? 0.8 : 1.25, distanceAt(event));
    }
  }, { passive: false });
})();
