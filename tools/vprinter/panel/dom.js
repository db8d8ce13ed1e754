// Small functions for the page's elements.

/** An element with properties ("class", "for" and names with a dash are attributes) and children. */
export function element(name, properties = {}, ...children) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (value === undefined || value === null) continue;
    if (key === "class" || key === "for" || key === "role" || key.includes("-")) made.setAttribute(key, value);
    else made[key] = value;
  }
  made.append(...children.filter((child) => child !== null && child !== undefined));
  return made;
}

export const byId = (id) => document.getElementById(id);

/** An error that belongs to no field. It goes when the next thing succeeds. */
export function say(text) {
  byId("said").textContent = text;
}

/** Makes a change; what is wrong with it is shown by `show`, or for the whole page. */
export async function attempt(change, show = say) {
  try {
    const answer = await change();
    show("");
    return answer;
  } catch (problem) {
    show(problem.message);
    return undefined;
  }
}
