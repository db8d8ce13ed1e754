// The interface behind the panel, and the stream of what happens.

export class Refused extends Error {
  constructor(status, error) {
    super(error.advice ? `${error.text}: ${error.advice}` : error.text);
    this.status = status;
  }
}

export async function ask(method, path, body) {
  const options = { method, headers: {} };
  if (method !== "GET") {
    options.headers["Content-Type"] = "application/json";
    // Never empty: a browser gives no length of nothing.
    options.body = JSON.stringify(body ?? {});
  }
  const answer = await fetch("/api/" + path, options);
  const told = await answer.json();
  if (!answer.ok) throw new Refused(answer.status, told.error);
  return told;
}

export const pathOf = (...parts) => parts.map(encodeURIComponent).join("/");

/** Calls `onEvent` with each event, and `onLine` with whether the stream is there. The browser connects again by itself. */
export function watch(onEvent, onLine) {
  const source = new EventSource("/api/events");
  source.onopen = () => onLine(true);
  source.onerror = () => {
    onLine(false);
    // A stream that was refused is not tried again by the browser.
    if (source.readyState === EventSource.CLOSED) setTimeout(() => watch(onEvent, onLine), 2000);
  };
  source.onmessage = (event) => onEvent(JSON.parse(event.data));
}
