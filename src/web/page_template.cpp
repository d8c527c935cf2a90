#include "web/page_template.h"

namespace kerno {

constexpr std::string_view kStyle = R"css(
:root { color-scheme: light dark; --back: #f6f6f3; --fore: #1b1f24; --quiet: #5a6270;
  --line: #d5d8dc; --raised: #ffffff; --accent: #0b5cad; --paper: #ffffff; }
@media (prefers-color-scheme: dark) {
  :root { --back: #15181c; --fore: #e8eaed; --quiet: #a3abb8; --line: #363c45;
    --raised: #1e2228; --accent: #7db8f5; --paper: #ffffff; }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--back); color: var(--fore); overflow-wrap: anywhere;
  font: 16px/1.5 system-ui, "Noto Sans CJK JP", "Hiragino Sans", "Yu Gothic UI", sans-serif; }
main { max-width: 60rem; margin: 0 auto; padding: 1.5rem 1rem 3rem; }
h1 { margin: 0; font-size: clamp(1.4rem, 5vw, 2.2rem); line-height: 1.25;
  white-space: pre-wrap; }
h2 { margin: 2rem 0 .5rem; font-size: 1.1rem; }
.source { margin: .25rem 0 1.5rem; color: var(--quiet); }
a { color: var(--accent); }
:focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; }
.slides { list-style: none; margin: 0; padding: 0; }
.slides li + li { margin-top: 1rem; }
figure { margin: 0; }
.paper { display: flex; align-items: center; justify-content: center; height: 60vh;
  min-height: 14rem; padding: .75rem; background: var(--paper); border: 1px solid var(--line);
  border-radius: .5rem; }
.paper img { display: block; width: 100%; height: 100%; object-fit: contain; color: #1b1f24; }
figcaption { padding: .35rem .1rem; color: var(--quiet); font-size: .9rem; text-align: center; }
.turn { display: none; }
.slider .turn { display: flex; gap: .75rem; align-items: center; justify-content: center; }
.slider .slides { touch-action: pan-y pinch-zoom; }
.slider .slides li + li { margin-top: 0; }
button { font: inherit; color: inherit; background: var(--raised); border: 1px solid var(--line);
  border-radius: .5rem; min-width: 2.75rem; min-height: 2.75rem; cursor: pointer; }
.dots { display: flex; flex-wrap: wrap; justify-content: center; }
.dots button { min-width: 28px; min-height: 28px; padding: 0; background: none; border: 0;
  font-size: 0; }
.dots button::before { content: ""; display: block; width: 12px; height: 12px; margin: auto;
  border: 2px solid var(--quiet); border-radius: 50%; }
.dots button[aria-current]::before { background: var(--accent); border-color: var(--accent); }
table { width: 100%; border-collapse: collapse; }
th, td { padding: .45rem .5rem; border-bottom: 1px solid var(--line); text-align: left;
  vertical-align: top; }
thead th { color: var(--quiet); font-size: .85em; }
tbody th { font-weight: inherit; }
td { overflow-wrap: normal; }
.size { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
.hidden-text { position: absolute; width: 1px; height: 1px; overflow: hidden;
  clip-path: inset(50%); white-space: nowrap; }
@media (max-width: 30rem) {
  main { padding: 1rem .75rem 2rem; }
  .paper { height: 45vh; }
  thead { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
  tbody tr { display: grid; grid-template-columns: 1fr auto; padding: .5rem 0;
    border-bottom: 1px solid var(--line); }
  tbody th, tbody td { padding: 0 .25rem; border: 0; }
  tbody th { grid-column: 1 / -1; }
}
@media print {
  :root { --back: #fff; --fore: #000; --quiet: #444; --line: #bbb; --accent: #000; }
  body { font-size: 10pt; }
  main { max-width: none; padding: 0; }
  h1 { font-size: 13pt; }
  h2 { margin: 3mm 0 1mm; }
  .source { margin: 0 0 2mm; }
  h1, .source { display: -webkit-box; -webkit-box-orient: vertical; -webkit-line-clamp: 3;
    overflow: hidden; }
  table { font-size: 8pt; line-height: 1.25; }
  figcaption { display: none; }
  .slider .turn { display: none; }
  .slides { display: flex; flex-wrap: wrap; gap: 4mm; }
  .slides li { flex: 1 1 40%; }
  .slides li + li { margin-top: 0; }
  .paper { height: 70mm; min-height: 0; border-radius: 0; }
  .slider .paper { height: 95mm; }
  th, td { padding: .6mm 2mm; }
  a { text-decoration: none; }
}
@media (prefers-reduced-motion: no-preference) {
  .slider li:not([hidden]) { animation: appear .18s ease-out; }
  @keyframes appear { from { opacity: 0; } }
}
)css";

constexpr std::string_view kScript = R"js(
(() => {
  "use strict";
  const section = document.getElementById("pictures");
  if (!section) return;
  const slides = [...section.querySelectorAll(".slides > li")];
  for (const image of section.querySelectorAll("img[data-else]")) {
    const fall = () => {
      image.closest("picture").querySelector("source")?.remove();
      image.src = image.dataset.else;
    };
    if (image.complete && image.naturalWidth === 0) fall();
    else image.addEventListener("error", fall, { once: true });
  }
  if (slides.length < 2) return;
  const dots = [...section.querySelectorAll(".dots button")];
  const state = section.querySelector("[role=status]");
  let shown = 0;
  const show = (index) => {
    shown = (index + slides.length) % slides.length;
    slides.forEach((slide, i) => { slide.hidden = i !== shown; });
    dots.forEach((dot, i) => {
      if (i === shown) dot.setAttribute("aria-current", "true");
      else dot.removeAttribute("aria-current");
    });
    state.textContent = slides[shown].dataset.label;
  };
  const moves = { ArrowLeft: () => show(shown - 1), ArrowRight: () => show(shown + 1),
    Home: () => show(0), End: () => show(slides.length - 1) };
  document.addEventListener("keydown", (event) => {
    const plain = !event.altKey && !event.ctrlKey && !event.metaKey && !event.shiftKey;
    if (!plain || event.defaultPrevented || !Object.hasOwn(moves, event.key)) return;
    const end = event.key === "Home" || event.key === "End";
    if (end && !section.contains(event.target)) return;
    event.preventDefault();
    moves[event.key]();
  });
  section.querySelector(".previous").addEventListener("click", moves.ArrowLeft);
  section.querySelector(".next").addEventListener("click", moves.ArrowRight);
  dots.forEach((dot, i) => dot.addEventListener("click", () => show(i)));
  let touch = null;
  const list = section.querySelector(".slides");
  list.addEventListener("touchstart", (event) => {
    const one = event.touches.length === 1 ? event.touches[0] : null;
    touch = one && { x: one.clientX, y: one.clientY };
  }, { passive: true });
  list.addEventListener("touchend", (event) => {
    if (!touch) return;
    const x = event.changedTouches[0].clientX - touch.x;
    const y = event.changedTouches[0].clientY - touch.y;
    touch = null;
    if (Math.abs(x) > 40 && Math.abs(x) > 2 * Math.abs(y)) show(shown + (x < 0 ? 1 : -1));
  });
  section.classList.add("slider");
  show(0);
  state.textContent = "";
})();
)js";

const std::string_view kPageStyle = kStyle;
const std::string_view kPageScript = kScript;
const std::string_view kPageStyleHash = "Hlizharh4/dmnLXH3BgGC6xYHVGjFCERLDCUl49lh4M=";
const std::string_view kPageScriptHash = "JJP7fTzqtp8SrfmlnVIf5g670SMQaxzwP1C57DuzlGw=";

}  // namespace kerno
