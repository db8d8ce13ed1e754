"use strict";
// Texts of the file reach the page as text alone: textContent, never markup.
const log = JSON.parse(document.getElementById("log").textContent);
const byId = (id) => document.getElementById(id);
const make = (name, text, className) => {
  const element = document.createElement(name);
  if (text !== undefined) element.textContent = text;
  if (className) element.className = className;
  return element;
};
const kMostRows = 5000; // a browser takes its time over more
const isBad = (exchange) => Boolean(exchange.error || exchange.remark);

function row(exchange, index) {
  const line = make("tr", undefined, isBad(exchange) ? "bad" : "");
  line.id = "x" + (index + 1);
  line.append(make("td", index + 1, "number"), make("td", exchange.time.slice(11, 23)), make("td", exchange.printer),
    make("td", exchange.client, "number"));
  const words = make("td", exchange.words);
  for (const message of [exchange.request, exchange.reply ?? "(nothing)"]) {
    words.append(make("br"), make("code", message, "faint"));
  }
  for (const problem of [exchange.error, exchange.remark]) {
    if (problem) words.append(make("br"), problem);
  }
  line.append(words, make("td", exchange.ms.toFixed(3), "number"));
  return line;
}

// Latencies over the time, on a logarithmic scale: a time-out and a fast reply both have their place.
function plot(shown) {
  const svg = byId("plot");
  const draw = (name, attributes, text) => {
    const element = document.createElementNS("http://www.w3.org/2000/svg", name);
    for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
    if (text !== undefined) element.textContent = text;
    svg.append(element);
    return element;
  };
  svg.replaceChildren();
  const width = 1000, height = 190, left = 60;
  const times = log.exchanges.map((exchange) => Date.parse(exchange.time) || 0);
  const first = times.reduce((a, b) => Math.min(a, b), Infinity);
  const span = Math.max(times.reduce((a, b) => Math.max(a, b), -Infinity) - first, 1);
  const place = (ms) => height - 10 - (Math.log10(Math.min(Math.max(ms, 0.001), 1e5)) + 3) / 8 * (height - 20);
  for (let power = -3; power <= 5; power += 2) {
    const y = place(10 ** power);
    draw("line", { x1: left, x2: width, y1: y, y2: y });
    draw("text", { x: 4, y: y + 4 }, 10 ** power + " ms");
  }
  for (const index of shown) {
    const exchange = log.exchanges[index];
    const dot = draw("circle", {
      cx: left + 5 + (times[index] - first) / span * (width - left - 10), cy: place(exchange.ms), r: 3,
      class: isBad(exchange) ? "bad" : "" });
    dot.append(Object.assign(document.createElementNS("http://www.w3.org/2000/svg", "title"),
      { textContent: `${index + 1}: ${exchange.words}, ${exchange.ms} ms` }));
    dot.addEventListener("click", () => { location.hash = "x" + (index + 1); });
  }
}

function show() {
  const wanted = byId("filter").value.toLowerCase();
  const shown = [];
  log.exchanges.forEach((exchange, index) => {
    const text = [exchange.words, exchange.request, exchange.reply, exchange.error, exchange.remark, exchange.printer];
    if (text.join(" ").toLowerCase().includes(wanted)) shown.push(index);
  });
  byId("rows").replaceChildren(...shown.slice(0, kMostRows).map((index) => row(log.exchanges[index], index)));
  byId("shown").textContent = `${shown.length} found` + (shown.length > kMostRows ? `, the first ${kMostRows} listed` : "");
  plot(shown);
}

byId("facts").textContent = `${log.kind}, ${log.count} exchanges, ${log.failed} of them failed or remarked upon`;
byId("filter").addEventListener("input", show);
show();
