"use strict";

// Finds functions by name, by the words of their texts, and by what people call what they do.

const field = document.querySelector("#search input");
const found = document.querySelector("#found");
const page = document.querySelector("#page");
const tooCommon = new Set(["a", "an", "and", "at", "by", "do", "for", "from", "how", "i", "in", "into", "is", "it", "its", "my", "of", "on", "or", "the", "to", "want", "with"]);
// What all functions do with all they work on says nothing about one of them.
const saidOfAll = new Set(["draw", "function", "image", "images", "make", "paint", "photo", "photograph", "photos", "picture", "pictures", "show", "two"]);

// The longest first: "no bleed at the edge" before "no bleed".
const phrases = Object.entries(gallery.intents)
    .filter(([intent]) => intent.includes(" "))
    .sort(([a], [b]) => b.length - a.length);

/** Forms of a word, as it stands first: "filled" is found in "fills". */
function formsOf(word) {
    const stem = word.replace(/(ing|ed|es|s|e)$/, "");
    return stem.length > 3 && stem !== word ? [word, stem] : [word];
}

/** What is asked for: each word or phrase of the question, and by which words it is looked for, the best first. */
function wishes(question) {
    let rest = ` ${question.toLowerCase().replace(/[\s,;.?!]+/g, " ").trim()} `;
    const all = [];
    for (const [intent, words] of phrases) {
        if (rest.includes(` ${intent} `)) {
            rest = rest.replace(intent, " ");
            all.push({ asked: intent, isIntent: true, words: [...words, intent] });
        }
    }
    const words = rest.split(" ").filter((word) => word && !tooCommon.has(word));
    const telling = words.filter((word) => !saidOfAll.has(word));
    for (const asked of telling.length || all.length ? telling : words) {
        const intent = [asked, asked.replace(/(s|ing|ed)$/, ""), asked.replace(/(ing|ed)$/, "e")].find((each) => Object.hasOwn(gallery.intents, each));
        all.push({ asked, isIntent: Boolean(intent), words: [...(gallery.intents[intent] ?? []), ...formsOf(asked)] });
    }
    return all;
}

/** How well a word is met by a text: as a word or a form of it, as the beginning of one, or within one. */
function met(text, word) {
    if (!text.includes(word))
        return 0;
    const plain = word.replace(/[^a-z0-9 ]/g, "\\$&");
    if (new RegExp(`(^|[^a-z0-9])${plain}(s|es|d|ed|ing)?($|[^a-z0-9])`).test(text))
        return 1;
    return new RegExp(`(^|[^a-z0-9])${plain}`).test(text) ? 0.5 : 0.2;
}

function score(entry, { asked, isIntent, words }) {
    const name = entry.name.toLowerCase();
    let best = name === asked ? 100 : name.startsWith(asked) ? 40 : name.includes(asked) ? (isIntent ? 10 : 20) : 0;
    words.forEach((word, index) => {
        const share = 1 / (1 + index * 0.4);
        const parts = met(entry.sentence.toLowerCase(), word) * (word.includes(" ") ? 24 : 12) + met(entry.words, word) * 8 + met(entry.text, word) * 4 +
            met(entry.group, word) * (word.includes(" ") ? 30 : 2);
        best = Math.max(best, parts * share);
    });
    return best;
}

/** The functions that meet a question, the best first. A wish that few of them meet counts for more, what draws too. */
function search(question) {
    const scores = wishes(question).map((wish) => {
        let each = gallery.functions.map((entry) => score(entry, wish));
        if (each.every((one) => one === 0)) { // "sunbeam" is looked for as sun and beam
            const within = Object.keys(gallery.intents).filter((intent) => intent.length > 2 && wish.asked.includes(intent));
            const words = within.flatMap((intent) => gallery.intents[intent]);
            each = gallery.functions.map((entry) => score(entry, { ...wish, words }));
        }
        const weight = Math.log(1 + gallery.functions.length / (1 + each.filter((one) => one > 0).length));
        return each.map((one) => one * weight);
    });
    return gallery.functions
        .map((entry, index) => {
            const own = scores.map((each) => each[index]);
            const isAll = own.every((one) => one > 0);
            return { entry, score: own.reduce((sum, one) => sum + one, 0) * (isAll ? 3 : 1) * (entry.draws ? 1 : 0.6) };
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
