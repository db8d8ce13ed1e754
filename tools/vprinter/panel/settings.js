// Every setting with its control, in groups that can be searched.
import { change, control, show } from "./controls.js";
import { attempt, byId, element } from "./dom.js";

const TITLES = { ip: "IP addresses", panel: "Panel and sounds", printer: "Paper" };
const CONDITIONS = "Condition";

const groupOf = (key) => {
  const name = key.split(".")[0];
  return TITLES[name] ?? name[0].toUpperCase() + name.slice(1);
};

export class Settings {
  constructor(port) {
    this.port = port;
    this.rows = new Map();
    this.groups = new Map();
    this.list = element("div", { class: "scroll" });
    this.none = element("p", { class: "quiet empty", hidden: true }, "No setting has this in its name.");
    const search = element("input", { id: "settings-search", type: "search", placeholder: "Find a setting" });
    search.addEventListener("input", () => this.filter(search.value.toLowerCase()));
    byId("settings").replaceChildren(
      element("div", { class: "search" }, element("label", { class: "sr", for: "settings-search" }, "Find a setting"), search),
      this.none, this.list);
  }

  show({ settings, conditions }) {
    for (const setting of settings) this.showOne(setting, groupOf(setting.key));
    for (const setting of conditions) this.showOne({ ...setting, writable: true, about: "" }, CONDITIONS);
  }

  showOne(setting, group) {
    const row = this.rows.get(setting.key);
    if (!row) return this.add(setting, group);
    if (row.value === setting.value) return;
    row.value = setting.value;
    if (document.activeElement !== row.input) show(row.input, setting);
    row.line.classList.add("changed");
    setTimeout(() => row.line.classList.remove("changed"), 400);
  }

  add(setting, name) {
    if (!this.groups.has(name)) {
      const group = element("section", { class: "group" }, element("h3", {}, name));
      this.groups.set(name, group);
      this.list.append(group);
    }
    const id = "setting-" + setting.key;
    const problem = element("p", { class: "problem", id: id + "-problem", role: "alert" });
    const input = setting.words || "value" in setting ? control(this.port, setting, id, problem) : null;
    if (!input) return;
    input.setAttribute("aria-describedby", problem.id);
    const isAct = !("value" in setting);
    const isFixed = setting.key === "printer.photo-tray-state";
    input.disabled = isFixed;
    const line = element("div", { class: "row" },
      element("div", {}, element("label", { for: id }, setting.about || setting.key),
        element("span", { class: "key mono" }, setting.about ? setting.key : ""),
        setting.writable ? null : element("span", { class: "tag" }, "read only for clients")),
      element("div", { class: "control" }, input, isAct ? this.button(setting, input, problem) : null), problem);
    this.groups.get(name).append(line);
    this.rows.set(setting.key, { line, input, value: setting.value, text: `${setting.key} ${setting.about}`.toLowerCase() });
  }

  /** For what is done rather than kept: choosing alone does nothing. */
  button(setting, input, problem) {
    const fresh = input.cloneNode(true);
    const button = element("button", {}, "Do it");
    button.setAttribute("aria-label", `${setting.about}: do it`);
    queueMicrotask(() => input.replaceWith(fresh));
    button.addEventListener("click", () =>
      attempt(() => change(this.port, setting.key, fresh.value), (text) => { problem.textContent = text; }));
    return button;
  }

  filter(wanted) {
    let any = false;
    for (const { line, text } of this.rows.values()) {
      line.hidden = !text.includes(wanted);
      any ||= !line.hidden;
    }
    for (const group of this.groups.values()) group.hidden = !group.querySelector(".row:not([hidden])");
    this.none.hidden = any;
  }
}
