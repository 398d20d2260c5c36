// The search page: finds sections by their words. sections.js, made with the site, has one
// [address, title, title of the page, text] for each.
"use strict";

// The words of a text, and the parts of names: "integerForKey" is found by "integer" as well.
function wordsOf(text) {
  return text.split(/[^\p{L}\p{N}_]+/u).filter(Boolean);
}

function wordsAndParts(text) {
  return wordsOf(text).flatMap((word) => {
    const parts = word.split(/(?<=\p{Ll})(?=\p{Lu})/u);
    return parts.length > 1 ? [word, ...parts] : [word];
  });
}

const index = lunr(function () {
  this.tokenizer = (text) =>
    wordsAndParts(String(text ?? "")).map((word) => new lunr.Token(word.toLowerCase(), {}));
  this.ref("number");
  this.field("title", { boost: 10 });
  this.field("text");
  sections.forEach(([, title, , text], number) => this.add({ number, title, text }));
});

// A whole word counts more than the beginning of one, and that more than any part.
function askFor(query, word) {
  const lower = word.toLowerCase();
  const { LEADING, TRAILING } = lunr.Query.wildcard;
  query.term(lower, { boost: 100 });
  query.term(lower, { boost: 10, usePipeline: false, wildcard: TRAILING });
  if (word.length > 2) query.term(lower, { usePipeline: false, wildcard: LEADING | TRAILING });
}

// The sections that have every one of the words, the best first.
function found(text) {
  let scores = null;
  for (const word of wordsOf(text)) {
    const hits = new Map(index.query((query) => askFor(query, word)).map((hit) => [hit.ref, hit.score]));
    scores = scores === null
      ? hits
      : new Map([...scores].filter(([ref]) => hits.has(ref)).map(([ref, sum]) => [ref, sum + hits.get(ref)]));
  }
  return [...(scores ?? [])].sort((a, b) => b[1] - a[1]).map(([ref]) => sections[ref]);
}

// What stands around the first of the words in the text.
function excerpt(text, words) {
  const lower = text.toLowerCase();
  const places = words.map((word) => lower.indexOf(word.toLowerCase())).filter((place) => place >= 0);
  const start = Math.max(0, Math.min(...places, text.length) - 60);
  const from = places.length > 0 && start > 0 ? text.indexOf(" ", start) + 1 : 0;
  return (from > 0 ? "… " : "") + text.slice(from, from + 160) + (from + 160 < text.length ? " …" : "");
}

function element(tag, text) {
  const made = document.createElement(tag);
  made.textContent = text;
  return made;
}

function entry([address, title, page, text], words) {
  const link = element("a", title);
  link.href = address;
  const item = document.createElement("li");
  item.append(link);
  if (page !== title) item.append(element("span", page));
  item.append(element("p", excerpt(text, words)));
  return item;
}

function show(text) {
  const hits = found(text);
  const count = hits.length === 1 ? "1 section" : `${hits.length} sections`;
  document.getElementById("search-count").textContent = wordsOf(text).length > 0 ? count : "";
  document.getElementById("search-results").replaceChildren(
    ...hits.slice(0, 50).map((section) => entry(section, wordsOf(text))));
}

const box = document.getElementById("search-words");
box.addEventListener("input", () => show(box.value));
box.value = new URLSearchParams(location.search).get("q") ?? "";
show(box.value);
