// A control for a value of the printer: switch, list, number, text. Shared by settings, conditions and knobs.
import { ask, pathOf } from "./api.js";
import { attempt, element } from "./dom.js";

/** What a control says of its value: as the interface takes it. */
function valueOf(input, setting) {
  if (setting.type === "bool") return input.checked;
  if ("lowest" in setting) return input.value.trim() === "" ? NaN : Number(input.value);
  return input.value;
}

export function show(input, setting) {
  if (setting.type === "bool") input.checked = setting.value;
  else if (setting.masked || setting.value === undefined) return;
  else input.value = setting.value;
}

export function change(printer, key, value) {
  return ask("PUT", pathOf("printers", printer, "settings", key), { value });
}

function makeInput(setting, id) {
  if (setting.words) {
    return element("select", { id }, ...setting.words.map((word) => element("option", { value: word }, word.replaceAll("_", " "))));
  }
  if (setting.type === "bool") return element("input", { id, type: "checkbox", role: "switch" });
  if ("lowest" in setting) return element("input", { id, type: "number", min: setting.lowest, max: setting.highest });
  const kind = setting.masked ? "password" : "text";
  return element("input", { id, type: kind, maxLength: setting.maxLength ?? 15, autocomplete: "off",
    placeholder: setting.masked ? "not shown" : "" });
}

/** The control, which sets the value as soon as it is chosen; `problem` is told what is wrong. */
export function control(printer, setting, id, problem) {
  const input = makeInput(setting, id);
  show(input, setting);
  input.addEventListener("change", async () => {
    const taken = await attempt(() => change(printer, setting.key, valueOf(input, setting)), (text) => {
      problem.textContent = text;
      if (text) input.setAttribute("aria-invalid", "true");
      else input.removeAttribute("aria-invalid");
    });
    if (taken && setting.masked) input.value = "";
  });
  return input;
}
