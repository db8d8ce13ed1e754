// The address book and the access points.
import { ask, pathOf } from "./api.js";
import { attempt, byId, element } from "./dom.js";

const LISTS = { "speed-dial": { title: "Speed dial", records: 60 }, "one-touch": { title: "One-touch", records: 5 } };

export function table(headings, rows) {
  return element("div", { class: "table", tabIndex: 0, role: "group", "aria-label": headings.join(", ") }, element("table", {},
    element("thead", {}, element("tr", {}, ...headings.map((text) => element("th", { scope: "col" }, text)))),
    element("tbody", {}, ...rows.map((cells) => element("tr", {}, ...cells.map((cell) => element("td", {}, cell)))))));
}

export function field(id, label, input, more = "") {
  input.id = id;
  return element("div", { class: more }, element("label", { for: id }, label), input);
}

export class Lists {
  constructor(port) {
    this.port = port;
    this.shown = {};
    this.records = element("div");
    this.points = element("div");
    byId("book").replaceChildren(this.records, this.makeForm());
    const search = element("button", { class: "main" }, "Search");
    search.addEventListener("click", () => this.search(search));
    byId("wireless").replaceChildren(
      element("div", { class: "head" }, element("p", { class: "quiet" }, "What the last search found; a client's search shows here too."),
        element("div", { class: "tools" }, search)), this.points);
  }

  makeForm() {
    this.list = element("select", {}, ...Object.entries(LISTS).map(([value, { title }]) => element("option", { value }, title)));
    this.number = element("input", { type: "number", min: 0, max: 59, value: 0, required: true });
    this.type = element("select", {}, ...["fax", "email", "none"].map((value) => element("option", { value }, value)));
    this.name = element("input", { type: "text", maxLength: 39, autocomplete: "off" });
    this.address = element("input", { type: "text", maxLength: 49, autocomplete: "off" });
    const problem = element("p", { class: "problem wide", role: "alert" });
    const form = element("form", { class: "fields" }, field("book-list", "List", this.list), field("book-number", "Record", this.number),
      field("book-type", "Type", this.type), field("book-name", "Name", this.name), field("book-address", "Number or address", this.address),
      element("button", { class: "main" }, "Save record"), problem);
    this.list.addEventListener("change", () => { this.number.max = LISTS[this.list.value].records - 1; });
    form.addEventListener("submit", async (event) => {
      event.preventDefault();
      const taken = await attempt(
        () => this.save(this.list.value, this.number.value, { type: this.type.value, name: this.name.value, address: this.address.value }),
        (text) => { problem.textContent = text; });
      if (taken) this.name.value = this.address.value = "";
    });
    return form;
  }

  async save(list, number, record) {
    const taken = await ask("PUT", pathOf("printers", this.port, "addressbook", list, number), record);
    await this.show();
    return taken;
  }

  edit(list, record) {
    this.list.value = list;
    for (const name of ["number", "type", "name", "address"]) this[name].value = record[name];
    this.name.focus();
  }

  button(text, about, act) {
    const made = element("button", {}, text);
    made.setAttribute("aria-label", `${text} ${about}`);
    made.addEventListener("click", act);
    return made;
  }

  async show() {
    await this.showOnce("book", pathOf("printers", this.port, "addressbook"), (book) => {
      this.records.replaceChildren(...Object.entries(LISTS).flatMap(([list, { title, records }]) => [
        element("h2", {}, title + " ", element("span", { class: "quiet" }, `${book[list].length} of ${records} records`)),
        book[list].length === 0 ? element("p", { class: "quiet empty" }, "No record is in use.") :
          table(["Record", "Type", "Name", "Number or address", ""], book[list].map((record) => [
            String(record.number), record.type, record.name, record.address,
            element("span", {}, this.button("Edit", record.name, () => this.edit(list, record)), " ",
              this.button("Delete", record.name,
                () => attempt(() => this.save(list, record.number, { type: "none", name: "", address: "" }))))]))]));
    });
    await this.showOnce("points", pathOf("printers", this.port, "access-points"), ({ accessPoints }) => {
      this.points.replaceChildren(accessPoints.length === 0 ? element("p", { class: "quiet empty" }, "Nothing has been found yet.") :
        table(["Name", "Address", "Channel", "Signal", "Encryption"], accessPoints.map((point) => [
          point.ssid || "(hidden)", element("code", {}, point.macAddress), String(point.channel), `${point.signalStrength} %`,
          ["open", "WEP", "WPA", "WPA2"][point.encryption] ?? String(point.encryption)])));
    });
  }

  /** Whoever has the focus in a list keeps it while nothing has changed. */
  async showOnce(name, path, draw) {
    const told = await ask("GET", path);
    const text = JSON.stringify(told);
    if (this.shown[name] === text) return;
    this.shown[name] = text;
    draw(told);
  }

  async search(button) {
    const begun = await attempt(() => ask("POST", pathOf("printers", this.port, "access-points", "search")));
    if (!begun) return;
    button.disabled = true;
    const timer = setInterval(() => attempt(() => this.show()), 500);
    setTimeout(() => { clearInterval(timer); button.disabled = false; attempt(() => this.show()); }, begun.seconds * 1000 + 300);
  }
}
