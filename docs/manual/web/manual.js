// What the pages of the manual do: search, and contents that follow the reading. Without it the
// pages can be read all the same.
"use strict";

const NARROW = window.matchMedia("(max-width: 56rem)");
const MOST_RESULTS = 30;

const find = (selector) => document.querySelector(selector);

function element(name, ...children) {
    const made = document.createElement(name);
    made.append(...children);
    return made;
}

// ------------------------------------------------------------------------------------------------
// Search
// ------------------------------------------------------------------------------------------------

function withMarks(text, typed) {
    const parts = manualSearch.marked(text, typed);
    return parts.map((part, at) => (at % 2 ? element("mark", part) : part));
}

function resultOf(section, typed) {
    const title = element("strong", ...withMarks(section.title, typed));
    const above = element("span", section.above.join(" › "));
    const context = manualSearch.snippet(section.text, typed);
    const link = element("a", title, above, element("small", ...withMarks(context, typed)));
    link.href = section.target;
    return element("li", link);
}

function countOf(found) {
    if (found.length === 0) return "Nothing found";
    const all = found.length === 1 ? "1 section" : `${found.length} sections`;
    return found.length > MOST_RESULTS ? `${all}, the best ${MOST_RESULTS} are shown` : all;
}

function setUpSearch() {
    const form = find("#search");
    const input = find("#search input");
    const panel = find("#results");
    const list = find("#results ol");
    let search = null;

    function show() {
        const typed = input.value;
        search ??= manualSearch.open(manualSections);
        const found = search(typed);
        panel.hidden = typed.trim() === "";
        find("#results [role=status]").textContent = countOf(found);
        const shown = found.slice(0, MOST_RESULTS);
        list.replaceChildren(...shown.map((section) => resultOf(section, typed)));
        panel.scrollTop = 0;
    }

    function close() {
        panel.hidden = true;
    }

    // The input and the results, from top to bottom.
    function move(step) {
        const stops = [input, ...list.querySelectorAll("a")];
        const at = stops.indexOf(document.activeElement) + step;
        stops[Math.max(0, Math.min(at, stops.length - 1))].focus();
    }

    const keys = {
        ArrowDown: () => move(1),
        ArrowUp: () => move(-1),
        Escape: () => { input.focus(); close(); },
    };

    function onKey(event) {
        if (event.key in keys && !panel.hidden) {
            event.preventDefault();
            keys[event.key]();
        }
    }

    form.hidden = false;
    input.addEventListener("input", show);
    input.addEventListener("focus", () => { if (input.value.trim()) panel.hidden = false; });
    form.addEventListener("submit", (event) => {
        event.preventDefault();
        list.querySelector("a")?.click();
    });
    form.addEventListener("keydown", onKey);
    list.addEventListener("click", (event) => { if (event.target.closest("a")) close(); });
    document.addEventListener("click", (event) => {
        if (!form.contains(event.target)) close();
    });
    document.addEventListener("keydown", (event) => {
        const isTyping = document.activeElement === input;
        const isPlain = !event.ctrlKey && !event.altKey && !event.metaKey;
        if (event.key === "/" && isPlain && !isTyping) {
            event.preventDefault();
            input.focus();
            input.select();
        }
    });
}

// ------------------------------------------------------------------------------------------------
// Contents
// ------------------------------------------------------------------------------------------------

// Folded on a phone, and not elsewhere.
function setUpFolding() {
    const fold = find(".contents details");
    const adapt = () => { fold.open = !NARROW.matches; };
    adapt();
    NARROW.addEventListener("change", adapt);
    fold.addEventListener("click", (event) => {
        if (NARROW.matches && event.target.closest("a")) fold.open = false;
    });
}

function setUpFollowing() {
    const chapterTitle = document.title;
    const entries = [...document.querySelectorAll('.contents a[href^="#"]')].map((link) => ({
        link, heading: document.getElementById(decodeURIComponent(link.hash.slice(1))),
    }));
    let current = null;

    // A link to a heading brings it to the top, below the bar of a phone.
    function lineOfReading() {
        const { scrollPaddingTop } = getComputedStyle(document.documentElement);
        return parseFloat(scrollPaddingTop) + 24;
    }

    // The last heading above the line or, at the end of the page, the last one in the window.
    function entryThatIsRead() {
        const isAtEnd = window.innerHeight + window.scrollY >= document.body.scrollHeight - 2;
        const line = isAtEnd ? window.innerHeight : lineOfReading();
        return entries.findLast(({ heading }) => heading.getBoundingClientRect().top <= line);
    }

    function unmark(entry) {
        entry.link.removeAttribute("aria-current");
        for (const item of document.querySelectorAll(".contents li.unfolded")) {
            item.classList.remove("unfolded");
        }
    }

    function mark(entry) {
        entry.link.setAttribute("aria-current", "location");
        for (let item = entry.link.closest("li"); item; item = item.parentElement.closest("li")) {
            item.classList.add("unfolded");
        }
        keepInView(entry.link);
    }

    function keepInView(link) {
        const box = link.closest("nav");
        const { top, bottom } = link.getBoundingClientRect();
        const frame = box.getBoundingClientRect();
        if (top < frame.top || bottom > frame.bottom) {
            box.scrollTop += top - frame.top - frame.height / 3;
        }
    }

    function follow() {
        const read = entryThatIsRead() ?? null;
        if (read === current) return;
        if (current) unmark(current);
        if (read) mark(read);
        current = read;
        const section = read ? `${read.link.textContent} – ` : "";
        document.title = section + chapterTitle;
    }

    let isDue = false;
    function followSoon() {
        if (isDue) return;
        isDue = true;
        requestAnimationFrame(() => { isDue = false; follow(); });
    }

    follow();
    window.addEventListener("scroll", followSoon, { passive: true });
    window.addEventListener("resize", followSoon);
}

document.documentElement.classList.add("scripted");
setUpSearch();
setUpFolding();
setUpFollowing();
