const byId = (id) => document.getElementById(id);
const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));
const now = () => performance.timeOrigin + performance.now();
/** Resolves when the page is visible: a hidden one asks for nothing. */
const visible = () => new Promise((resolve) => {
  if (!document.hidden) return resolve();
  const look = () => {
    if (document.hidden) return;
    document.removeEventListener("visibilitychange", look);
    resolve();
  };
  document.addEventListener("visibilitychange", look);
});

/** What scripts and tests may look at. */
const glasspane = { state: null, picturesDrawn: 0, picturesPerSecond: 0, delay: { median: 0, p90: 0 } };
window.glasspane = glasspane;

// ---- The picture: asked for one by one, so that this page sets the pace and nothing queues up. ----

class Screen {
  constructor() {
    this.canvas = byId("picture");
    this.context = this.canvas.getContext("2d", { alpha: false });
    new ResizeObserver(() => this.fit()).observe(byId("stage"));
  }

  /** Draws a picture that may be upside down, as the server sends whole frames. */
  draw(bitmap, isUpsideDown) {
    if (this.canvas.width !== bitmap.width || this.canvas.height !== bitmap.height) {
      this.canvas.width = bitmap.width;
      this.canvas.height = bitmap.height;
      this.fit();
    }
    this.context.setTransform(1, 0, 0, isUpsideDown ? -1 : 1, 0, isUpsideDown ? bitmap.height : 0);
    this.context.drawImage(bitmap, 0, 0);
  }

  /** As large as the window allows; never larger than twice its pixels. */
  fit() {
    const stage = byId("stage");
    const { width, height } = this.canvas;
    this.scale = Math.min(stage.clientWidth / width, stage.clientHeight / height, 2);
    byId("screen").style.width = `${Math.max(1, Math.floor(width * this.scale))}px`;
    byId("screen").style.height = `${Math.max(1, Math.floor(height * this.scale))}px`;
    pointer.place();
  }
}

class Pictures {
  constructor() {
    this.last = 0;
    this.hasAny = false;
    this.delays = [];
    this.drawnBefore = 0;
    this.countedAt = now();
    /** This machine's clock less the gateway's; 0 where they are the same. */
    this.clockLead = ["localhost", "127.0.0.1", "[::1]"].includes(location.hostname) ? 0 : Infinity;
    setInterval(() => this.count(), 1000);
  }

  async run() {
    let drawing = Promise.resolve();
    for (;;) {
      await visible();
      try {
        const response = await fetch(`picture.jpg?after=${this.last}`, { cache: "no-store" });
        if (response.status === 200) {
          const blob = await response.blob();
          await drawing; // The next one is on its way while this one is decoded.
          drawing = this.show(blob, response.headers);
        } else if (response.status !== 204) {
          await pause(1000);
        }
      } catch {
        this.last = 0;
        await pause(500);
      }
    }
  }

  async show(blob, headers) {
    this.last = Number(headers.get("Picture-Number"));
    if (this.clockLead !== 0)
      this.clockLead = Math.min(this.clockLead, now() - Number(headers.get("Sent-Time")));
    try {
      const bitmap = await createImageBitmap(blob);
      screen.draw(bitmap, headers.get("Picture-Upside-Down") === "1");
      bitmap.close();
    } catch {
      return; // Broken on the way; the next one repairs it.
    }
    this.delays.push(now() - this.clockLead - Number(headers.get("Picture-Time")));
    ++glasspane.picturesDrawn;
    if (!this.hasAny) {
      this.hasAny = true;
      status.show();
    }
  }

  count() {
    const time = now();
    glasspane.picturesPerSecond =
      (glasspane.picturesDrawn - this.drawnBefore) * 1000 / (time - this.countedAt);
    this.drawnBefore = glasspane.picturesDrawn;
    this.countedAt = time;
    const delays = this.delays.sort((a, b) => a - b);
    const part = (share) => delays.length ? delays[Math.floor((delays.length - 1) * share)] : 0;
    glasspane.delay = { median: part(0.5), p90: part(0.9) };
    this.delays = [];
    figures.show();
  }
}

class Pointer {
  constructor() {
    this.image = byId("pointer");
    this.images = new Map(); // By the shape's id.
    this.at = null;
  }

  move(at) {
    this.at = at;
    this.image.hidden = !at;
    if (!at) return;
    const image = this.imageOf(at.shape);
    if (image !== this.image) {
      this.image.replaceWith(image);
      this.image = image;
    }
    image.hidden = false;
    this.place();
  }

  /** Shapes come and go quickly: each is kept as it was loaded. */
  imageOf(shape) {
    if (this.images.size > 256) this.images.clear();
    let image = this.images.get(shape);
    if (!image) {
      image = new Image();
      image.id = "pointer";
      image.alt = "";
      image.src = `pointer.png?id=${shape}`;
      this.images.set(shape, image);
    }
    return image;
  }

  place() {
    if (!this.at || !screen.scale) return;
    const { scale } = screen;
    this.image.style.transform = `translate(${this.at.x * scale}px, ${this.at.y * scale}px) scale(${scale})`;
  }
}

// ---- What is going on ----

class Status {
  constructor() {
    this.isGatewayHere = true;
  }

  /** The kind, a few words for the top, and a line over the picture where there is none to be seen. */
  describe() {
    const state = glasspane.state;
    if (!this.isGatewayHere) return ["gone", "The gateway is gone; trying again …", true];
    if (!state) return ["wait", "Connecting …", true];
    if (!state.connected && state.failure) return ["gone", `Trying again: ${state.failure}`, true];
    if (!state.connected) return ["wait", `Connecting to ${state.server} …`, true];
    if (state.muted) return ["muted", "The source is paused", true];
    if (!pictures.hasAny) return ["wait", "Waiting for the first picture …", true];
    return ["live", "Live", false];
  }

  show() {
    const [kind, text, isNoticed] = this.describe();
    const line = byId("status");
    line.dataset.kind = kind;
    const short = kind === "gone" ? "Disconnected" : text;
    if (line.textContent !== short) line.textContent = short;
    byId("notice").textContent = text;
    byId("notice").hidden = !isNoticed;
    byId("screen").classList.toggle("stale", isNoticed);
    glasspane.notice = isNoticed ? text : "";
  }
}

class Events {
  constructor() {
    document.addEventListener("visibilitychange", () => this.listen());
  }

  listen() {
    this.source?.close();
    this.source = null;
    clearTimeout(this.retry);
    if (document.hidden) return;
    this.source = new EventSource("events");
    this.source.addEventListener("state", (event) => this.take(JSON.parse(event.data)));
    this.source.addEventListener("pointer", (event) => pointer.move(JSON.parse(event.data)));
    this.source.addEventListener("error", () => {
      status.isGatewayHere = false;
      status.show();
      pointer.move(null);
      this.source.close();
      this.retry = setTimeout(() => this.listen(), 1000);
    });
  }

  take(state) {
    glasspane.state = state;
    status.isGatewayHere = true;
    document.title = `${state.server} – Glasspane`;
    byId("server").textContent = state.server;
    byId("sound").disabled = !state.sound;
    status.show();
    figures.show();
  }
}

class FiguresPanel {
  show() {
    if (byId("figures").hidden || !glasspane.state) return;
    const state = glasspane.state;
    const ms = (number) => `${number.toFixed(1)} ms`;
    const set = (name, text) => { byId(`figure-${name}`).textContent = text; };
    set("size", `${state.width} × ${state.height}`);
    set("shown", `${glasspane.picturesPerSecond.toFixed(0)} pictures/s`);
    set("delay", `${ms(glasspane.delay.median)}, 90 % within ${ms(glasspane.delay.p90)}`);
    set("rate", `${state.pictures_per_second.toFixed(0)} pictures/s, ` +
                `${(state.bytes_per_second / 1e6).toFixed(2)} MB/s`);
    set("call", `${ms(state.delay_ms.median)}, 90 % within ${ms(state.delay_ms.p90)}`);
    set("failures", String(state.failures));
    set("drift", `${state.clock_drift_ppm} ppm, sound ${state.sound_drift_ppm} ppm`);
  }
}

// ---- Sound: begins with a click, as browsers demand ----

class Sound {
  static kRate = 44100;
  static kHead = 44; // Bytes before the samples.
  static kAhead = 0.06; // Seconds that are kept in store against jitter,
  static kFarthest = 0.25; // and beyond which some is left out.

  constructor() {
    byId("volume").addEventListener("input", () => this.setVolume());
  }

  toggle() {
    if (byId("sound").disabled) return;
    if (this.context) this.stop(); else this.start();
    byId("sound").setAttribute("aria-pressed", String(Boolean(this.context)));
    byId("volume-label").hidden = !this.context;
  }

  start() {
    this.context = new AudioContext({ sampleRate: Sound.kRate, latencyHint: "interactive" });
    this.gain = this.context.createGain();
    this.gain.connect(this.context.destination);
    this.setVolume();
    this.abort = new AbortController();
    this.run(this.abort.signal);
  }

  stop() {
    this.abort.abort();
    this.context.close();
    this.context = null;
  }

  setVolume() {
    if (this.gain) this.gain.gain.value = Number(byId("volume").value) ** 2;
  }

  async run(signal) {
    while (!signal.aborted) {
      try {
        const response = await fetch("audio.wav", { signal, cache: "no-store" });
        if (response.ok) await this.play(response.body.getReader(), signal);
      } catch { /* It comes back, or it was stopped. */ }
      if (!signal.aborted) await pause(1000);
    }
  }

  async play(reader, signal) {
    let rest = new Uint8Array(0);
    let toSkip = Sound.kHead;
    this.next = 0;
    for (;;) {
      const { done, value } = await reader.read();
      if (done || signal.aborted) return;
      const skipped = Math.min(toSkip, value.length);
      toSkip -= skipped;
      const bytes = new Uint8Array(rest.length + value.length - skipped);
      bytes.set(rest);
      bytes.set(value.subarray(skipped), rest.length);
      const whole = bytes.length - bytes.length % 4;
      if (whole > 0) this.schedule(new DataView(bytes.buffer, 0, whole));
      rest = bytes.slice(whole);
    }
  }

  schedule(samples) {
    const frames = samples.byteLength / 4;
    const time = this.context.currentTime;
    if (this.next < time) this.next = time + Sound.kAhead; // The start, or a gap.
    if (this.next > time + Sound.kFarthest) return;
    const buffer = this.context.createBuffer(2, frames, Sound.kRate);
    for (let channel = 0; channel < 2; ++channel) {
      const out = buffer.getChannelData(channel);
      for (let i = 0; i < frames; ++i) out[i] = samples.getInt16(i * 4 + channel * 2, true) / 32768;
    }
    const source = this.context.createBufferSource();
    source.buffer = buffer;
    source.connect(this.gain);
    source.start(this.next);
    this.next += buffer.duration;
    glasspane.soundSeconds = (glasspane.soundSeconds || 0) + buffer.duration;
  }
}

// ---- The choice of a source ----

class Sources {
  async open() {
    byId("sources").showModal();
    await this.list("Asking the server …");
  }

  async list(note) {
    byId("sources-note").textContent = note;
    try {
      const answer = await (await fetch("sources")).json();
      if (answer.error) throw new Error(answer.error);
      byId("sources-list").replaceChildren(...answer.sources.map((source) => this.item(source)));
      byId("sources-note").textContent = answer.sources.length ? "" : "The server offers none.";
    } catch (error) {
      byId("sources-list").replaceChildren();
      byId("sources-note").textContent = `There is no choice: ${error.message}.`;
    }
  }

  item(source) {
    const isWindow = source.kind === "window";
    const button = document.createElement("button");
    button.type = "button";
    button.setAttribute("aria-pressed", String(source.checked));
    button.append(source.title || (isWindow ? "Window without a title" : `Screen ${source.screen + 1}`));
    const more = isWindow ? source.application : source.kind === "region" ? "region" : "whole screen";
    if (more) {
      const small = document.createElement("small");
      small.textContent = ` – ${more}`;
      button.append(small);
    }
    button.addEventListener("click", () => this.choose(source));
    const item = document.createElement("li");
    item.append(button);
    return item;
  }

  async choose(source) {
    const wish = source.kind === "window" ? { window: source.title }
      : { screen: source.screen, region: source.kind === "region" };
    byId("sources-note").textContent = "Choosing …";
    try {
      const response = await fetch("source", {
        method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(wish),
      });
      const answer = await response.json();
      if (answer.error) throw new Error(answer.error);
      byId("sources").close();
    } catch (error) {
      byId("sources-note").textContent = `That didn't work: ${error.message}.`;
    }
  }
}

// ---- Controls ----

function toggleFigures() {
  const panel = byId("figures");
  panel.hidden = !panel.hidden;
  byId("details").setAttribute("aria-pressed", String(!panel.hidden));
  figures.show();
}

function toggleFullScreen() {
  if (document.fullscreenElement) document.exitFullscreen();
  else byId("stage").requestFullscreen().catch(() => {});
}

function useKeys(event) {
  if (event.ctrlKey || event.altKey || event.metaKey || byId("sources").open) return;
  const actions = { f: toggleFullScreen, m: () => sound.toggle(), s: () => sources.open(), i: toggleFigures };
  const action = actions[event.key.toLowerCase()];
  if (action) {
    event.preventDefault();
    action();
  }
}

const pointer = new Pointer();
const screen = new Screen();
const figures = new FiguresPanel();
const pictures = new Pictures();
const status = new Status();
const events = new Events();
const sound = new Sound();
const sources = new Sources();

byId("sound").addEventListener("click", () => sound.toggle());
byId("choose").addEventListener("click", () => sources.open());
byId("details").addEventListener("click", toggleFigures);
byId("full").addEventListener("click", toggleFullScreen);
byId("picture").addEventListener("dblclick", toggleFullScreen);
document.addEventListener("fullscreenchange", () =>
  byId("full").setAttribute("aria-pressed", String(Boolean(document.fullscreenElement))));
document.addEventListener("keydown", useKeys);
events.listen();
pictures.run();
