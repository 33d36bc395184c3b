"use strict";

// Finds functions by name, by the words of their texts, and by what people call what they do.

const field = document.querySelector("#search input");
const found = document.querySelector("#found");
const page = document.querySelector("#page");
const tooCommon = new Set(["a", "an", "and", "at", "by", "for", "from", "i", "in", "into", "is", "it", "of", "on", "or", "the", "to", "with", "want"]);

// The longest first: "no bleed at the edge" before "no bleed".
const phrases = Object.entries(gallery.intents)
    .filter(([intent]) => intent.includes(" "))
    .sort(([a], [b]) => b.length - a.length);

/** What is asked for: alternatives for each word or phrase of the question. */
function wishes(question) {
    let rest = question.toLowerCase().trim();
    const all = [];
    for (const [intent, words] of phrases) {
        if (rest.includes(intent)) {
            rest = rest.replace(intent, " ");
            all.push([intent, ...words]);
        }
    }
    for (const word of rest.split(/[\s,;]+/)) {
        if (word && !tooCommon.has(word))
            all.push([word, ...(gallery.intents[word] || gallery.intents[word.replace(/(s|ing|ed)$/, "")] || [])]);
    }
    return all;
}

/** How well a word is met by a text: where it stands at the beginning of a word, better. */
function met(text, word) {
    const at = text.indexOf(word);
    if (at < 0)
        return 0;
    return new RegExp("(^|[^a-z0-9])" + word.replace(/[^a-z0-9 ]/g, "\\$&")).test(text) ? 1 : 0.3;
}

function score(entry, wish) {
    const name = entry.name.toLowerCase();
    let best = name === wish[0] ? 100 : name.startsWith(wish[0]) ? 40 : name.includes(wish[0]) ? 20 : 0;
    wish.forEach((word, index) => {
        const share = 1 / (1 + index * 0.25);
        const parts = met(entry.sentence.toLowerCase(), word) * 12 + met(entry.words, word) * 8 + met(entry.text, word) * 4 +
            met(entry.group, word) * (word.includes(" ") ? 30 : 2);
        best = Math.max(best, parts * share);
    });
    return best;
}

/** The functions that meet a question, the best first. */
function search(question) {
    const all = wishes(question);
    return gallery.functions
        .map((entry) => {
            const scores = all.map((wish) => score(entry, wish));
            const isAll = scores.every((one) => one > 0);
            return { entry, score: scores.reduce((sum, one) => sum + one, 0) * (isAll ? 3 : 1) };
        })
        .filter((one) => one.score > 0)
        .sort((a, b) => b.score - a.score)
        .slice(0, 60)
        .map((one) => one.entry);
}

function element(name, text, to) {
    const made = document.createElement(name);
    made.textContent = text;
    to.append(made);
    return made;
}

function card(entry) {
    const link = document.createElement("a");
    link.className = "card";
    link.href = entry.page;
    const picture = element("img", "", link);
    picture.src = "pictures/" + entry.picture;
    picture.alt = "";
    picture.loading = "lazy";
    element("strong", entry.name, link);
    element("span", entry.sentence, link);
    return link;
}

function show() {
    const question = field.value.trim();
    found.hidden = !question;
    page.hidden = Boolean(question);
    if (!question)
        return;
    const entries = search(question);
    found.replaceChildren(...entries.map(card));
    if (!entries.length)
        element("p", "Nothing is found by these words.", found);
}

field.addEventListener("input", show);
document.querySelector("#search").addEventListener("submit", (event) => {
    event.preventDefault();
    const first = found.querySelector("a");
    if (first)
        location.href = first.href;
});
document.addEventListener("keydown", (event) => {
    if (event.key === "/" && document.activeElement !== field) {
        event.preventDefault();
        field.focus();
    } else if (event.key === "Escape") {
        field.value = "";
        show();
    }
});
const asked = new URLSearchParams(location.search).get("q");
if (asked) {
    field.value = asked;
    show();
}
async function copyText(text) {
    try {
        await navigator.clipboard.writeText(text);
    } catch {
        const area = document.createElement("textarea");
        area.value = text;
        document.body.append(area);
        area.select();
        document.execCommand("copy");
        area.remove();
    }
}
for (const button of document.querySelectorAll(".copy")) {
    button.addEventListener("click", async () => {
        await copyText(document.getElementById(button.dataset.copies).textContent);
        button.textContent = "Copied";
        setTimeout(() => (button.textContent = "Copy"), 1200);
    });
}
