// Faults that can be switched on and off, with what they do and what a program sees of them.
import { ask, pathOf } from "./api.js";
import { attempt, byId, element } from "./dom.js";
import { field, table } from "./lists.js";

const NUMBERS = ["number", "bytes", "milliseconds"];
const FIRST = { milliseconds: "2000", bytes: "10", number: "2" };
const plain = (text) => text.replaceAll("`", "");

export class Faults {
  constructor(port) {
    this.shown = "";
    this.path = pathOf("printers", port, "faults");
    this.rules = element("div");
    byId("faults").replaceChildren(this.rules);
    attempt(async () => {
      this.kinds = (await ask("GET", "fault-kinds")).kinds;
      if (this.rules.isConnected) byId("faults").append(this.makeForm());
    });
  }

  makeForm() {
    this.kind = element("select", {}, ...this.kinds.map(({ field: name }) => element("option", { value: name }, name)));
    this.value = element("input", { autocomplete: "off" });
    this.valueField = field("fault-value", "Value", this.value);
    this.match = element("input", { type: "text", value: "DeviceSettings.*", required: true, autocomplete: "off" });
    this.times = element("input", { type: "number", min: 1, placeholder: "always" });
    this.told = element("div", { class: "told wide", role: "status" });
    this.problem = element("p", { class: "problem wide", role: "alert" });
    const form = element("form", { class: "fields" }, field("fault-kind", "Fault", this.kind), this.valueField,
      field("fault-match", "Requests, * for anything", this.match), field("fault-times", "How often", this.times),
      this.told, element("button", { class: "main" }, "Switch on"), this.problem);
    this.kind.addEventListener("change", () => this.explain());
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      this.add();
    });
    this.explain();
    return form;
  }

  /** What the chosen fault does, and the field for its value. */
  explain() {
    const { value, meaning, client } = this.kinds.find(({ field: name }) => name === this.kind.value);
    this.valueField.hidden = value === "true";
    this.valueField.firstElementChild.textContent = plain(value);
    this.value.type = NUMBERS.includes(value) ? "number" : "text";
    this.value.value = FIRST[value] ?? "";
    this.told.replaceChildren(element("p", {}, element("strong", {}, "The printer: "), plain(meaning)),
      element("p", {}, element("strong", {}, "A program: "), plain(client)));
  }

  /** A number stays one also where a text may stand: a process. */
  chosenValue() {
    if (this.valueField.hidden) return true;
    const text = this.value.value;
    if (this.kind.value === "otherProcess") return text === "" || text === "true" ? true : Number(text);
    return this.value.type === "number" ? Number(text) : text;
  }

  async add() {
    const rule = { match: this.match.value, [this.kind.value]: this.chosenValue() };
    if (this.times.value) rule.times = Number(this.times.value);
    await attempt(() => ask("POST", this.path, rule), (text) => { this.problem.textContent = text; });
    await this.show();
  }

  async show() {
    const { faults } = await ask("GET", this.path);
    const text = JSON.stringify(faults);
    if (text === this.shown) return;
    this.shown = text;
    const focus = document.activeElement?.dataset.fault;
    this.rules.replaceChildren(faults.length === 0 ? element("p", { class: "quiet empty" }, "All goes well: no fault is switched on.") :
      table(["Fault", "Requests", "Met", "From", ""], faults.map((fault) => [
        fault.kind + (fault.delay ? `, ${fault.delay} ms` : ""), element("code", {}, fault.match), String(fault.met),
        { script: "script", control: "control file", hand: "panel" }[fault.source], this.button(fault)])));
    if (focus) this.rules.querySelector(`[data-fault="${CSS.escape(focus)}"]`)?.focus();
  }

  button({ name, kind }) {
    if (!name) return "";
    const made = element("button", { "data-fault": name, "aria-label": `Switch off ${kind}` }, "Switch off");
    made.addEventListener("click", () => attempt(async () => {
      await ask("DELETE", this.path + "/" + pathOf(name));
      await this.show();
    }));
    return made;
  }
}
