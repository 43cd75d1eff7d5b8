// The manual in a browser: accessibility, width, search, contents, copying and printing.
//
//     node browser.mjs BROWSER FOLDER
//
// FOLDER holds the pages as scripts/manual writes them; the tools of package.json are beside this
// file.

import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { pathToFileURL } from "node:url";
import puppeteer from "puppeteer-core";

const [browserPath, folder] = process.argv.slice(2);
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

const WIDE = { width: 1280, height: 900 };
const PHONE = { width: 400, height: 800, isMobile: true, hasTouch: true };

const EVERYTHING = "all.html";
const chapters = readdirSync(folder)
    .filter((name) => name.endsWith(".html") && name !== EVERYTHING);

let browser;
let page;
let wrong = []; // what the pages did that they must not

before(async () => {
    // Neither a sandbox nor a display is at hand everywhere.
    const args = ["--no-sandbox", "--disable-gpu"];
    browser = await puppeteer.launch({ executablePath: browserPath, args });
    page = await browser.newPage();
    page.on("pageerror", (error) => wrong.push(error.message));
    page.on("request", (request) => {
        if (!request.url().startsWith("file:")) wrong.push(`asks for ${request.url()}`);
    });
});

after(() => browser?.close());

async function open(name, view = WIDE, scheme = "light") {
    wrong = [];
    await page.setViewport(view);
    await page.emulateMediaType("screen");
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
    // A new document, even when only the fragment differs.
    await page.goto("about:blank");
    await page.goto(pathToFileURL(join(folder, name.split("#")[0])) + name.replace(/^[^#]*/, ""));
}

// ------------------------------------------------------------------------------------------------
// Every page
// ------------------------------------------------------------------------------------------------

// Of the thousands of coloured words one of each colour in each kind of example is enough.
function dropRepeatedColours() {
    const seen = new Set();
    for (const word of document.querySelectorAll("pre code span[class]")) {
        const kind = `${word.closest("figure").className} ${word.className}`;
        if (seen.has(kind)) word.replaceWith(word.textContent);
        seen.add(kind);
    }
}

const runAxe = () => axe.run({ resultTypes: ["violations"], preload: false });

async function assertAccessible(log, name, view, scheme) {
    await page.evaluate(dropRepeatedColours);
    await page.evaluate(axe);
    const { violations } = await page.evaluate(runAxe);
    const where = `${name}, ${view.width}, ${scheme}`;
    for (const { impact, id, nodes } of violations) {
        log(`${where}: ${impact} ${id}: ${nodes[0].html} (${nodes.length})`);
    }
    log(`${where}: ${violations.length} kinds of faults`);
    const grave = violations.filter(({ impact }) => ["serious", "critical"].includes(impact));
    assert.deepEqual(grave.map(({ id }) => id), []);
}

async function assertFits() {
    const width = await page.evaluate(() => document.scrollingElement.scrollWidth);
    assert.ok(width <= page.viewport().width, `${width} pixels wide`);
}

for (const name of [...chapters, EVERYTHING]) {
    for (const [view, scheme] of [[WIDE, "light"], [PHONE, "dark"]]) {
        if (name === EVERYTHING && view === WIDE) continue;
        test(`${name} is accessible and fits, ${view.width}, ${scheme}`, async (context) => {
            await open(name, view, scheme);
            await assertFits();
            await assertAccessible((line) => context.diagnostic(line), name, view, scheme);
            assert.deepEqual(wrong, []);
        });
    }
}

// ------------------------------------------------------------------------------------------------
// Search
// ------------------------------------------------------------------------------------------------

const results = () => page.$$eval("#results li a", (links) => links.map((link) => ({
    title: link.querySelector("strong").textContent,
    above: link.querySelector("span").textContent,
    context: link.querySelector("small").textContent,
    marks: [...link.querySelectorAll("mark")].map((mark) => mark.textContent),
})));

async function searchFor(text) {
    await page.keyboard.press("/");
    await page.keyboard.type(text);
}

test("the keyboard alone searches and leads to a section", async () => {
    await open("index.html");
    await searchFor("outside of loop");
    const found = await results();
    assert.equal(found[0].title, '"BREAK" outside of loop');
    assert.equal(found[0].above, "Diagnostics › Statements");
    assert.ok(found[0].context.includes('"BREAK" outside of loop'), found[0].context);
    assert.ok(found[0].marks.includes("outside of loop"), found[0].marks.join());

    for (const key of ["ArrowDown", "ArrowDown", "ArrowDown", "ArrowUp"]) {
        await page.keyboard.press(key);
    }
    await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
    assert.ok(page.url().endsWith("diagnostics.html#continue-outside-of-loop"), page.url());
    assert.deepEqual(wrong, []);
});

test("results are accessible, also on a phone in the dark", async (context) => {
    for (const [view, scheme] of [[WIDE, "light"], [PHONE, "dark"]]) {
        await open("index.html", view, scheme);
        await searchFor("variable");
        await assertFits();
        const log = (line) => context.diagnostic(line);
        await assertAccessible(log, "index.html with results", view, scheme);
    }
});

test("Escape closes the results, and what is unknown is said not to be found", async () => {
    await open("index.html");
    await searchFor("qqqq");
    assert.deepEqual(await results(), []);
    const told = await page.$eval("#results [role=status]", (status) => status.textContent);
    assert.equal(told, "Nothing found");
    await page.keyboard.press("Escape");
    assert.ok(await page.$eval("#results", (panel) => panel.hidden));
});

// ------------------------------------------------------------------------------------------------
// Contents
// ------------------------------------------------------------------------------------------------

const current = () => page.$$eval(".contents [aria-current=location]",
    (links) => links.map((link) => link.hash));

const currentBecomes = (hash) => page.waitForFunction(
    (expected) => document.querySelector(".contents [aria-current=location]")?.hash === expected,
    { timeout: 5000 }, hash);

test("the contents follow the reading", async () => {
    await open("diagnostics.html");
    assert.deepEqual(await current(), []);
    for (const id of ["scanner", "bad-suffix-on-number", "warnings"]) {
        await page.evaluate((name) => document.getElementById(name).scrollIntoView(), id);
        await currentBecomes(`#${id}`);
        const inView = await page.$eval(".contents [aria-current=location]",
            (link) => link.checkVisibility() && link.getBoundingClientRect().bottom < innerHeight);
        assert.ok(inView);
        const heading = await page.$eval(`.contents [href="#${id}"]`, (link) => link.textContent);
        const title = await page.title();
        assert.ok(title.startsWith(`${heading} – Diagnostics – yxstcmp `), title);
    }
    await page.evaluate(() => window.scrollTo(0, document.body.scrollHeight));
    await currentBecomes("#texts-that-are-never-shown");
});

test("on a phone the contents fold", async () => {
    await open("diagnostics.html", PHONE);
    const link = ".contents [href='#warnings']";
    const isShown = () => page.$eval(link, (each) => each.checkVisibility());
    assert.equal(await isShown(), false);
    await page.click(".contents summary");
    assert.equal(await isShown(), true);
    await page.click(link);
    await currentBecomes("#warnings");
    assert.equal(await isShown(), false);
});

// ------------------------------------------------------------------------------------------------
// Examples, and paper
// ------------------------------------------------------------------------------------------------

test("line numbers are seen and not copied", async () => {
    await open("diagnostics.html");
    const { selected, text, numbers } = await page.evaluate(() => {
        const code = document.querySelector("figure.script pre code");
        getSelection().selectAllChildren(code);
        const lines = [...code.querySelectorAll(":scope > span")];
        const numbers = lines.map((line) => getComputedStyle(line, "::before").content);
        return { selected: getSelection().toString(), text: code.textContent, numbers };
    });
    assert.equal(selected.trim(), text.trim());
    assert.ok(text.startsWith("PROGRAM "), text);
    assert.ok(numbers.every((number) => number.includes("counter(")), numbers[0]);
});

const lightness = (colour) => Math.max(...colour.match(/[\d.]+/g).slice(0, 3).map(Number));

test("a dark page is printed light, without what cannot be used on paper", async () => {
    for (const name of ["diagnostics.html", EVERYTHING]) {
        await open(name, WIDE, "dark");
        const look = () => page.evaluate(() => {
            const { backgroundColor, color } = getComputedStyle(document.body);
            return { backgroundColor, color };
        });
        assert.ok(lightness((await look()).backgroundColor) < 60);
        await page.emulateMediaType("print");
        const { backgroundColor, color } = await look();
        assert.ok(lightness(backgroundColor) > 240, backgroundColor);
        assert.ok(lightness(color) < 60, color);
        const left = await page.$$eval(".permalink, header, .neighbours, .skip",
            (all) => all.filter((each) => each.checkVisibility()).length);
        assert.equal(left, 0);
    }
});
