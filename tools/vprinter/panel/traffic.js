// What passes, newest first: a bounded list, drawn at most ten times a second.
import { byId, element } from "./dom.js";

const KEPT = 500;   // exchanges
const SHOWN = 120;  // lines in the page

const localTime = (utc) => {
  const time = new Date(utc);
  return time.toLocaleTimeString([], { hour12: false }) + "." + String(time.getMilliseconds()).padStart(3, "0");
};

function hexLines(hex) {
  const lines = [];
  for (let at = 0; at < hex.length; at += 32) {
    const bytes = hex.slice(at, at + 32).match(/../g);
    const text = bytes.map((byte) => parseInt(byte, 16)).map((code) => (code > 31 && code < 127 ? String.fromCharCode(code) : ".")).join("");
    lines.push(`${(at / 2).toString(16).padStart(4, "0")}  ${bytes.join(" ").padEnd(47)}  ${text}`);
  }
  return lines.join("\n");
}

function detail(exchange) {
  const cut = exchange.replyBytes * 2 > exchange.bytes.length ? `, the first ${exchange.bytes.length / 2}` : "";
  const decoded = exchange.decoded.flatMap(({ key, name, value }) => [element("dt", {}, name ?? key), element("dd", {}, value || "(empty)")]);
  return element("div", { class: "detail" },
    element("div", { class: "wide" }, element("h3", {}, "Request"), exchange.request),
    element("div", {}, element("h3", {}, "Reply in words"),
      decoded.length ? element("dl", {}, ...decoded) : element("p", {}, exchange.reply || "(nothing)")),
    element("div", {}, element("h3", {}, `Reply in bytes (${exchange.replyBytes}${cut})`),
      element("pre", { tabIndex: 0, role: "group", "aria-label": "Bytes" }, hexLines(exchange.bytes) || "(none)")));
}

function line(exchange) {
  const number = Number(exchange.reply.split(",")[0]);
  const button = element("button", { "aria-expanded": "false" },
    element("span", { class: "when" }, localTime(exchange.time)), element("span", { class: "port" }, exchange.printer),
    element("span", { class: "asked" }, exchange.request), element("span", { class: "answer" }, exchange.reply || "(nothing)"),
    element("span", { class: "took" }, exchange.ms.toFixed(exchange.ms < 10 ? 3 : 0) + " ms"),
    exchange.remark ? element("span", { class: "remark" }, exchange.remark) : null);
  const made = element("li", { class: "exchange" + (number >= 1000 ? " refused" : "") }, button);
  button.addEventListener("click", () => {
    const open = made.querySelector(".detail");
    if (open) open.remove();
    else made.append(detail(exchange));
    button.setAttribute("aria-expanded", String(!open));
  });
  return made;
}

export class Traffic {
  constructor() {
    this.kept = [];
    this.fresh = [];
    this.total = 0;
    this.missed = 0;
    this.paused = false;
    this.filter = "";
    this.list = byId("exchanges");
    byId("traffic-filter").addEventListener("input", (event) => { this.filter = event.target.value.toLowerCase(); this.redraw(); });
    byId("traffic-clear").addEventListener("click", () => { this.kept = []; this.total = this.missed = 0; this.redraw(); });
    const pause = byId("traffic-pause");
    pause.addEventListener("click", () => {
      this.paused = !this.paused;
      pause.setAttribute("aria-pressed", String(this.paused));
      pause.textContent = this.paused ? "Go on" : "Pause";
      if (!this.paused) this.redraw();
    });
    this.redraw();
  }

  add(exchanges, missed) {
    this.total += exchanges.length + missed;
    this.missed += missed;
    this.kept.push(...exchanges);
    if (this.kept.length > KEPT) this.kept.splice(0, this.kept.length - KEPT);
    if (!this.paused) this.draw(exchanges.filter((exchange) => this.passes(exchange)));
    this.count();
  }

  passes({ request, reply, printer, decoded, remark = "" }) {
    if (!this.filter) return true;
    const names = decoded.map(({ name = "" }) => name).join(" ");
    return `${printer} ${request} ${reply} ${names} ${remark}`.toLowerCase().includes(this.filter);
  }

  draw(exchanges) {
    this.list.prepend(...exchanges.slice(-SHOWN).map(line).reverse());
    // What somebody has opened stays as long as it can.
    while (this.list.childElementCount > SHOWN) this.list.lastElementChild.remove();
    byId("no-traffic").hidden = this.list.childElementCount > 0;
  }

  redraw() {
    this.list.replaceChildren();
    this.draw(this.kept.filter((exchange) => this.passes(exchange)));
    this.count();
  }

  count() {
    const missed = this.missed ? `, ${this.missed.toLocaleString()} too fast to be shown` : "";
    byId("traffic-count").textContent = this.total ? `${this.total.toLocaleString()} exchanges${missed}` : "";
  }
}
