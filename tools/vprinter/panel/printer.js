// The printer as a person sees it: drawing, status, facts, and the knobs for what happens to it.
import { change } from "./controls.js";
import { attempt, byId, element } from "./dom.js";

const SVG = "http://www.w3.org/2000/svg";
const INKS = ["black", "cyan", "magenta", "yellow", "photo"];
const TANK = { x: 246, step: 22, y: 92, width: 16, height: 62 };
const TROUBLE = ["paper-out", "paper-jam", "cover-open", "ink-out", "cartridge-missing", "carriage-stalled", "device-error"];
const TITLES = { "not-yet-known": "Not yet known", "paper-out": "Out of paper", "paper-jam": "Paper jam", "cover-open": "Cover open",
  "ink-out": "Out of ink", "cartridge-missing": "Cartridge missing", "carriage-stalled": "Carriage stalled",
  "device-error": "Device error", ready: "Ready", offline: "Switched off", upgrading: "New firmware" };

export const titleOf = (state) => TITLES[state] ?? state;
export const gravityOf = (state) => (TROUBLE.includes(state) ? "bad" : state === "ready" ? "" : "warn");

function shape(name, attributes) {
  const made = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  return made;
}

function drawTanks() {
  byId("tanks").replaceChildren(...INKS.flatMap((ink, place) => {
    const x = TANK.x + place * TANK.step;
    return [shape("rect", { class: "tank", x, y: TANK.y, width: TANK.width, height: TANK.height, rx: 4 }),
      shape("rect", { class: ink, id: "tank-" + ink, x: x + 1.5, width: TANK.width - 3, rx: 2 }),
      shape("rect", { class: "tank-shine", x: x + 3, y: TANK.y + 4, width: 2.5, height: TANK.height - 8, rx: 1 })];
  }));
}

function fill(id, bottom, height) {
  byId(id).setAttribute("y", bottom - height);
  byId(id).setAttribute("height", height);
}

/** The text in lines that the display holds. */
function lines(text, room) {
  const made = [""];
  for (const word of text.split(" ")) {
    const last = made[made.length - 1];
    if ((last + " " + word).length <= room || last === "") made[made.length - 1] = (last + " " + word).trim();
    else made.push(word);
  }
  return made;
}

function draw(printer) {
  const drawing = byId("drawing");
  drawing.setAttribute("class", [printer.state, gravityOf(printer.state) === "bad" ? "trouble" : "",
    printer.networkUp ? "" : "no-network"].join(" "));
  byId("display-state").textContent = titleOf(printer.state);
  const told = printer.text === titleOf(printer.state) ? printer.name : printer.text;
  const [first, second = ""] = lines(told, 22);
  byId("display-first").textContent = first.slice(0, 22);
  byId("display-second").textContent = printer.state === "upgrading" ? "" : second.slice(0, 22);
  byId("gauge").setAttribute("width", 1.52 * (printer.upgradePercent ?? 0));
  for (const { name, percent } of printer.inks) fill("tank-" + name, TANK.y + TANK.height - 1.5, (TANK.height - 3) * percent / 100);
  fill("upper-level", 267, 0.2 * printer.trays.upper);
  fill("lower-level", 305, 0.2 * printer.trays.lower);
}

function fact(name, value) {
  return [element("dt", {}, name), element("dd", {}, value)];
}

function tell(printer) {
  byId("device-name").textContent = printer.name;
  byId("device-facts").textContent = `${printer.port} · ${printer.connection === "usb" ? "USB" : "network"} · firmware ${printer.firmware}`;
  const status = byId("status");
  const text = printer.text === titleOf(printer.state) ? "" : printer.text;
  // Read aloud when it changes, and only then.
  if (status.textContent !== titleOf(printer.state) + text)
    status.replaceChildren(titleOf(printer.state), ...(text ? [element("small", {}, text)] : []));
  status.className = "status " + gravityOf(printer.state);
  const { network } = printer;
  byId("facts").replaceChildren(
    ...fact("Network", network.radio ? `${network.ssid || "no name"}, ${network.state.toLowerCase()}, signal ${network.signalStrength.toLowerCase()}` : "radio off"),
    ...fact("Address", network.address),
    ...fact("Photo tray", printer.trays.photoEngaged ? "engaged" : "not engaged"),
    ...fact("Kept by", printer.lockHolder ? `process ${printer.lockHolder}` : "nobody"),
    ...(printer.upgradePercent === undefined ? [] : fact("Upgrade", `${printer.upgradePercent} %`)));
}

// What befalls the printer; `read` takes the value from its status.
const LEVELS = [
  ...INKS.map((ink) => ({ key: "ink." + ink, label: ink[0].toUpperCase() + ink.slice(1), swatch: ink, low: 15,
    read: (printer) => printer.inks.find(({ name }) => name === ink).percent })),
  { key: "printer.upper-tray-level", label: "Upper tray", low: 0, read: (printer) => printer.trays.upper },
  { key: "printer.lower-tray-level", label: "Lower tray", low: 0, read: (printer) => printer.trays.lower },
];
const SWITCHES = [
  { key: "device.online", label: "Switched on", on: true, off: false, read: (printer) => printer.online },
  { key: "wireless.state", label: "Network in reach", on: "Connected", off: "Disconnected", read: (printer) => printer.networkUp },
];

export class Device {
  constructor(port) {
    this.port = port;
    this.updates = [];
    drawTanks();
    byId("knobs").replaceChildren(
      element("h3", {}, "What happens to it"), this.makeTrouble(), ...SWITCHES.map((row) => this.makeSwitch(row)),
      element("h3", {}, "Ink and paper"), ...LEVELS.map((row) => this.makeLevel(row)));
  }

  set(key, value) {
    return attempt(() => change(this.port, key, value));
  }

  makeTrouble() {
    const select = element("select", { id: "knob-error" });
    select.addEventListener("change", () => this.set("status.error", select.value));
    this.trouble = select;
    return element("div", { class: "knob choice" }, element("label", { for: "knob-error" }, "Trouble"), select);
  }

  makeSwitch({ key, label, on, off, read }) {
    const id = "knob-" + key;
    const input = element("input", { id, type: "checkbox", role: "switch" });
    input.addEventListener("change", () => this.set(key, input.checked ? on : off));
    this.updates.push((printer) => { input.checked = read(printer); });
    return element("div", { class: "knob flag" }, element("label", { for: id }, label), input);
  }

  makeLevel({ key, label, swatch, low, read }) {
    const id = "knob-" + key;
    const input = element("input", { id, type: "range", min: 0, max: 100, step: 1 });
    const output = element("output", { for: id });
    const row = element("div", { class: "knob" },
      element("label", { for: id }, swatch ? element("span", { class: "swatch " + swatch }) : null, label), input, output);
    let held = false;
    const tellLevel = () => { output.textContent = input.value + " %"; row.classList.toggle("low", Number(input.value) <= low); };
    input.addEventListener("input", () => { held = true; tellLevel(); });
    input.addEventListener("change", async () => { await this.set(key, Number(input.value)); held = false; });
    this.updates.push((printer) => { if (!held) { input.value = read(printer); tellLevel(); } });
    return row;
  }

  /** What the status says. */
  show(printer) {
    draw(printer);
    tell(printer);
    for (const update of this.updates) update(printer);
  }

  /** The condition that the list of troubles shows. */
  showConditions(conditions) {
    const { words, value } = conditions.find(({ key }) => key === "status.error");
    if (this.trouble.options.length === 0)
      this.trouble.replaceChildren(...words.map((word) => element("option", { value: word }, word.replaceAll("_", " "))));
    this.trouble.value = value;
  }
}
