// The page: which printer is looked at, and what is asked again when something has happened.
import { ask, pathOf, watch } from "./api.js";
import { attempt, byId, element } from "./dom.js";
import { Faults } from "./faults.js";
import { Lists } from "./lists.js";
import { Device, gravityOf, titleOf } from "./printer.js";
import { Settings } from "./settings.js";
import { Traffic } from "./traffic.js";

const STATUS_EVERY = 2000;  // ms; for what no exchange tells: a lock whose holder died, an upgrade's progress
const AT_MOST_EVERY = 250;  // ms between two questions of one kind

const page = { port: "", device: null, settings: null, lists: null, faults: null };

/** Runs `act` soon, and never twice within AT_MOST_EVERY. */
function throttled(act) {
  let last = 0;
  let waiting = false;
  return () => {
    if (waiting) return;
    waiting = true;
    setTimeout(async () => {
      waiting = false;
      last = performance.now();
      await attempt(act, () => {});
    }, Math.max(0, last + AT_MOST_EVERY - performance.now()));
  };
}

async function showStatus() {
  const { printers } = await ask("GET", "printers");
  drawPrinters(printers);
  page.device?.show(printers.find(({ port }) => port === page.port));
  await page.faults?.show();
}

async function showValues() {
  const { port } = page;
  const values = await ask("GET", pathOf("printers", port, "settings"));
  if (port !== page.port) return;
  page.settings.show(values);
  page.device.showConditions(values.conditions);
  await page.lists.show();
}

const statusSoon = throttled(showStatus);
const valuesSoon = throttled(showValues);

function choose(port) {
  page.port = port;
  page.device = new Device(port);
  page.settings = new Settings(port);
  page.lists = new Lists(port);
  page.faults = new Faults(port);
  document.title = `${port} · Kestrel virtual printer`;
  statusSoon();
  valuesSoon();
}

function drawPrinters(printers) {
  if (!page.port) choose(printers[0].port);
  const nav = byId("printers");
  nav.hidden = printers.length < 2;
  for (const { port, state } of printers) {
    let button = nav.querySelector(`[data-port="${CSS.escape(port)}"]`);
    if (!button) {
      button = element("button", { "data-port": port }, element("span", { class: "dot" }), port, element("span", { class: "sr" }));
      button.addEventListener("click", () => choose(port));
      nav.append(button);
    }
    button.setAttribute("aria-current", String(port === page.port));
    button.querySelector(".dot").className = "dot " + gravityOf(state);
    button.querySelector(".sr").textContent = ", " + titleOf(state);
  }
}

function setUpTabs() {
  const tabs = [...document.querySelectorAll("[role=tab]")];
  const select = (chosen) => {
    for (const tab of tabs) {
      tab.setAttribute("aria-selected", String(tab === chosen));
      tab.tabIndex = tab === chosen ? 0 : -1;
      byId(tab.getAttribute("aria-controls")).hidden = tab !== chosen;
    }
  };
  for (const [place, tab] of tabs.entries()) {
    tab.addEventListener("click", () => select(tab));
    tab.addEventListener("keydown", (event) => {
      const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
      if (!step) return;
      const next = tabs[(place + step + tabs.length) % tabs.length];
      select(next);
      next.focus();
    });
  }
}

/** Until the panel answers: with a token, if it asks for one. */
async function enter() {
  for (;;) {
    try {
      return await showStatus();
    } catch (problem) {
      if (problem.status === 401) await tellToken();
      else await new Promise((resolve) => setTimeout(resolve, 1000));
    }
  }
}

function tellToken() {
  const door = byId("door");
  if (!door.open) door.showModal();
  return new Promise((resolve) => {
    door.querySelector("form").addEventListener("submit", async (event) => {
      event.preventDefault();
      const known = await attempt(() => ask("POST", "session", { token: byId("token").value }),
        (text) => { byId("door-problem").textContent = text; });
      if (known) door.close();
      resolve();
    }, { once: true });
  });
}

function showLine(isThere) {
  byId("line").replaceChildren(element("span", { class: isThere ? "dot" : "dot bad" }), isThere ? "live" : "no connection");
  if (isThere) {
    statusSoon();
    valuesSoon();
  }
}

setUpTabs();
await enter();
const traffic = new Traffic();
watch((event) => {
  if (event.exchanges.length || event.missed) traffic.add(event.exchanges, event.missed);
  if (page.port in event.revisions) valuesSoon();
  statusSoon();
}, showLine);
setInterval(statusSoon, STATUS_EVERY);
