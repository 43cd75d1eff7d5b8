// The search over the sections of the manual: what is found for a text, and how it is shown. It
// knows nothing of the page, and lunr does the ranking.
"use strict";

const manualSearch = (() => {
    const WORD = /[\p{L}\p{N}_]+/gu;
    const SNIPPET_BEFORE = 60;
    const SNIPPET_LENGTH = 220;

    const plain = (text) => text.toLowerCase().replace(/\s+/g, " ").trim();
    const wordsOf = (text) => text.toLowerCase().match(WORD) ?? [];
    const stem = (word) => lunr.stemmer(new lunr.Token(word)).toString();

    // Signs separate words; and no word is left out: OR, IF and TO are words of the language.
    const tokens = (text) => wordsOf(text ?? "").map((word) => new lunr.Token(word));

    function indexOf(sections) {
        return lunr(function () {
            this.tokenizer = tokens;
            this.pipeline.reset();
            this.pipeline.add(lunr.stemmer);
            this.ref("at");
            this.field("title", { boost: 8 });
            this.field("text");
            sections.forEach((section, at) => this.add({ at, ...section }));
        });
    }

    // Words may be typed in part; a whole one counts more.
    function ranked(index, stems, presence) {
        const found = index.query((query) => stems.forEach((each) => {
            const begin = { wildcard: lunr.Query.wildcard.TRAILING, presence };
            query.term(each, { ...begin, usePipeline: false });
            query.term(each, { boost: 4, usePipeline: false });
        }));
        return new Map(found.map((each) => [Number(each.ref), each.score]));
    }

    function open(sections) {
        const index = indexOf(sections);
        const texts = sections.map(({ title, text }) => plain(`${title} ${text}`));

        function scoresOf(stems) {
            if (stems.length === 0) return new Map();
            const scores = ranked(index, stems, lunr.Query.presence.REQUIRED);
            return scores.size ? scores : ranked(index, stems, lunr.Query.presence.OPTIONAL);
        }

        // The sections for a text, the best first: those that hold it as it was typed, signs
        // included, come before those that hold its words.
        return (text) => {
            const typed = plain(text);
            if (typed === "") return [];
            const scores = scoresOf(wordsOf(typed).map(stem));
            const found = sections.map((section, at) => ({
                section, score: scores.get(at) ?? 0, holds: texts[at].includes(typed),
            }));
            return found.filter((each) => each.score > 0 || each.holds)
                .sort((a, b) => b.holds - a.holds || b.score - a.score)
                .map((each) => each.section);
        };
    }

    const escaped = (text) => text.replace(/[.*+?^${}()|[\]\\]/g, "\\$&");

    // The places of the typed text, or of the words that begin like those typed.
    function places(text, typed) {
        const whole = escaped(plain(typed)).replace(/ /g, "\\s+");
        const found = [...text.matchAll(new RegExp(whole, "giu"))];
        if (found.length) return found;
        const stems = wordsOf(typed).map(stem);
        return [...text.matchAll(WORD)]
            .filter((match) => stems.some((each) => stem(match[0].toLowerCase()).startsWith(each)));
    }

    // The text cut into parts, where each second one was searched for.
    function marked(text, typed) {
        const parts = [];
        let end = 0;
        for (const match of places(text, typed)) {
            parts.push(text.slice(end, match.index), match[0]);
            end = match.index + match[0].length;
        }
        return [...parts, text.slice(end)];
    }

    // A part of the text around what was typed; a cut falls between words.
    function snippet(text, typed) {
        const first = places(text, typed)[0]?.index ?? 0;
        const from = first > SNIPPET_BEFORE ? text.indexOf(" ", first - SNIPPET_BEFORE) + 1 : 0;
        const begin = Math.min(from, first);
        const rest = text.slice(begin, begin + SNIPPET_LENGTH);
        const isCut = begin + SNIPPET_LENGTH < text.length;
        const shown = isCut ? rest.replace(/\s\S*$/, "") : rest;
        return `${begin > 0 ? "… " : ""}${shown}${isCut ? " …" : ""}`;
    }

    return { open, marked, snippet };
})();
