// Charts in a browser: what is drawn, the cursor, zoom, paper, accessibility.
//
//     node browser.mjs BROWSER FOLDER
//
// FOLDER holds the charts that run.py makes; the tools of package.json are beside this file.

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

let browser;
let page;
let wrong = []; // what the pages did that they must not

before(async () => {
    // Neither a sandbox nor a display is at hand everywhere.
    const args = ["--no-sandbox", "--disable-gpu"];
    browser = await puppeteer.launch({ executablePath: browserPath, args });
    page = await browser.newPage();
    page.on("pageerror", (error) => wrong.push(error.message));
    page.on("console", (message) => {
        if (message.type() === "error") wrong.push(message.text());
    });
    page.on("request", (request) => {
        const isOwn = request.isNavigationRequest() || request.url().startsWith("data:");
        if (!isOwn) wrong.push(`asks for ${request.url()}`);
    });
});

after(() => browser?.close());

async function open(name, view = WIDE, scheme = "light") {
    wrong = [];
    await page.setViewport(view);
    await page.emulateMediaType("screen");
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
    await page.goto(pathToFileURL(join(folder, `${name}.html`)));
}

// ------------------------------------------------------------------------------------------------
// What is drawn
// ------------------------------------------------------------------------------------------------

// How many pixels of the diagrams have the colour of a series, by its number.
const pixelsOf = (number) => page.evaluate((at) => {
    const style = getComputedStyle(document.documentElement);
    const colour = style.getPropertyValue(`--series-${at}`).trim();
    const wanted = [1, 3, 5].map((from) => parseInt(colour.slice(from, from + 2), 16));
    let found = 0;
    for (const canvas of document.querySelectorAll("canvas")) {
        const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
        for (let byte = 0; byte < data.length; byte += 4) {
            const isIt = wanted.every((part, index) => Math.abs(data[byte + index] - part) < 12);
            if (isIt && data[byte + 3] > 200) ++found;
        }
    }
    return found;
}, number);

const legends = () => page.$$eval(".panel", (panels) => panels.map((panel) =>
    [...panel.querySelectorAll("label")].map((label) => label.textContent.trim())));

test("numbers of like size share a diagram, BOOLs have lanes", async () => {
    await open("waves");
    assert.deepEqual(await legends(),
        [["sine", "steps", "root"], ["count"], ["large"], ["high", "odd"]]);
    assert.equal(await page.title(), "waves.st");
    assert.equal(await page.$eval("#about", (line) => line.textContent),
        "400 cycles, 100 ticks each.");
    assert.equal(await page.$eval("#constants", (line) => line.textContent),
        "Unchanged: bias = 0.5, fixed = 7");
    assert.deepEqual(wrong, []);
});

test("what is watched is drawn, changed or not", async () => {
    await open("watched");
    assert.deepEqual(await legends(), [["fixed", "sine"]]);
    assert.deepEqual(wrong, []);
});

for (const scheme of ["light", "dark"]) {
    test(`lines are drawn in their colours, ${scheme}`, async () => {
        await open("waves", WIDE, scheme);
        for (const number of [1, 2, 3]) assert.ok(await pixelsOf(number) > 300, `${number}`);
        assert.equal(await pixelsOf(4), 0);
        await page.click(".panel:nth-child(1) li:nth-child(3) input");
        assert.equal(await pixelsOf(3), 0);
        assert.deepEqual(wrong, []);
    });
}

test("colours follow the scheme while the page is open", async () => {
    await open("waves", WIDE, "light");
    const before = await page.evaluate(() => panels[0].graph.getColors()[0]);
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: "dark" }]);
    await page.waitForFunction(
        (light) => panels[0].graph.getColors()[0] !== light, { timeout: 5000 }, before);
    assert.ok(await pixelsOf(1) > 300);
});

test("a long run is thinned without losing its extremes", async () => {
    await open("peaks");
    assert.ok((await page.$eval("#about", (line) => line.textContent))
        .includes("Of every 64 cycles the first, least, greatest and last value is drawn."));
    const levels = { 33333: "500", 77777: "-500", 77778: "-500 … 0", 50001: "0" };
    for (const [at, level] of Object.entries(levels)) {
        await page.evaluate((where) => setCursor(where), Number(at));
        assert.equal((await values()).level, level);
    }
    const [[least, greatest]] = await page.evaluate(() => panels[0].graph.yAxisRanges());
    assert.ok(least <= -500 && greatest >= 500);
    const size = readFileSync(join(folder, "peaks.html")).length;
    assert.ok(size < 300_000, `${size} bytes`);
});

test("runs of one cycle and of none have a page", async () => {
    await open("one");
    assert.deepEqual(await legends(), [["sine"], ["high"]]);
    assert.deepEqual(wrong, []);
    await open("none");
    assert.deepEqual(await legends(), []);
    assert.deepEqual(wrong, []);
});

// ------------------------------------------------------------------------------------------------
// The cursor
// ------------------------------------------------------------------------------------------------

const values = () => page.$$eval(".legend li", (items) => Object.fromEntries(items.map((item) =>
    [item.querySelector("label").textContent.trim(), item.querySelector("output").textContent])));

const cycle = () => page.$eval("#cycle", (output) => Number(output.textContent));

// The place on the screen of a cycle in the diagram of that number.
const placeOf = (at, panel) => page.evaluate(([where, index]) => {
    const { graph } = panels[index];
    const box = document.querySelectorAll(".plot")[index].getBoundingClientRect();
    return { x: box.left + graph.toDomXCoord(where), y: box.top + box.height / 3 };
}, [at, panel]);

async function pointAt(at, panel = 0) {
    const { x, y } = await placeOf(at, panel);
    await page.mouse.move(x, y);
}

function assertValues(shown, count) {
    const sine = Math.sin(count / 20) + 0.5;
    assert.ok(Math.abs(Number(shown.sine) - sine) < 1e-5, `${shown.sine}, not ${sine}`);
    assert.equal(shown.steps, String(Math.trunc(count / 50)));
    assert.equal(shown.large, String(count * 1000));
    assert.equal(shown.high, sine > 0.5 ? "TRUE" : "FALSE");
    assert.equal(shown.odd, Math.trunc(count / 30) % 2 === 1 ? "TRUE" : "FALSE");
}

test("the pointer shows the values of its cycle in all diagrams", async () => {
    await open("waves");
    for (const [at, panel] of [[7, 0], [123, 1], [250, 3], [399, 2]]) {
        await page.evaluate((index) => document.querySelectorAll(".plot")[index].scrollIntoView(),
            panel);
        await pointAt(at, panel);
        assert.equal(await cycle(), at);
        assertValues(await values(), at);
    }
    assert.equal((await values()).root, "no number");
    await pointAt(64, 2);
    assert.equal((await values()).root, "6.0");
    const marks = await page.$$eval(".mark", (all) => all.map((mark) => mark.style.left));
    assert.equal(new Set(marks).size, 1);
});

test("the keyboard moves the cursor", async () => {
    await open("waves");
    assert.equal(await cycle(), 400);
    await page.focus("#cursor");
    await page.keyboard.press("ArrowLeft");
    await page.keyboard.press("ArrowLeft");
    assert.equal(await cycle(), 398);
    assertValues(await values(), 398);
});

// ------------------------------------------------------------------------------------------------
// Zoom
// ------------------------------------------------------------------------------------------------

const ranges = () => page.evaluate(() => panels.map(({ graph }) => graph.xAxisRange()));

async function assertRange(from, to, slack = 2) {
    for (const [begin, end] of await ranges()) {
        assert.ok(Math.abs(begin - from) <= slack && Math.abs(end - to) <= slack,
            `${begin} to ${end}, not ${from} to ${to}`);
    }
}

test("dragging zooms all diagrams, two clicks and the button show the whole run", async () => {
    await open("waves");
    await assertRange(0.5, 400.5);
    for (const reset of [
        async ({ x, y }) => page.mouse.click(x, y, { count: 2 }),
        async () => page.click("#whole"),
    ]) {
        const from = await placeOf(100, 0);
        const to = await placeOf(200, 0);
        await page.mouse.move(from.x, from.y);
        await page.mouse.down();
        await page.mouse.move(to.x, to.y, { steps: 5 });
        await page.mouse.up();
        await assertRange(100, 200);
        await reset(from);
        await assertRange(0.5, 400.5, 0);
    }
    assert.deepEqual(wrong, []);
});

test("buttons zoom around the cursor and stay within the run", async () => {
    await open("waves");
    await pointAt(150);
    await page.click("#in");
    await assertRange(50, 250);
    await page.click("#in");
    await assertRange(100, 200);
    await page.click("#out");
    await page.click("#out");
    await assertRange(0.5, 400.5, 0);
    for (let press = 0; press < 20; ++press) await page.click("#in");
    const [[begin, end]] = await ranges();
    assert.ok(end - begin >= 2 && begin < 151 && end > 149, `${begin} to ${end}`);
});

// ------------------------------------------------------------------------------------------------
// Looks
// ------------------------------------------------------------------------------------------------

async function assertFits() {
    const width = await page.evaluate(() => document.scrollingElement.scrollWidth);
    assert.ok(width <= page.viewport().width, `${width} pixels wide`);
}

const charts = readdirSync(folder).filter((name) => name.endsWith(".html"))
    .map((name) => name.replace(".html", ""));

for (const name of charts) {
    for (const [view, scheme] of [[WIDE, "light"], [PHONE, "dark"]]) {
        test(`${name} is accessible and fits, ${view.width}, ${scheme}`, async (context) => {
            await open(name, view, scheme);
            await assertFits();
            await page.evaluate(axe);
            const { violations } = await page.evaluate(() => axe.run({ preload: false }));
            for (const { id, nodes } of violations) context.diagnostic(`${id}: ${nodes[0].html}`);
            const grave = violations
                .filter(({ impact }) => ["serious", "critical"].includes(impact));
            assert.deepEqual(grave.map(({ id }) => id), []);
            assert.deepEqual(wrong, []);
        });
    }
}

const lightness = (colour) => Math.max(...colour.match(/[\d.]+/g).slice(0, 3).map(Number));

test("a dark page is printed light and fits the paper", async () => {
    await open("waves", WIDE, "dark");
    const background = () =>
        page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    assert.ok(lightness(await background()) < 60);
    await page.emulateMediaType("print");
    await page.waitForFunction(() => document.documentElement.classList.contains("paper"));
    assert.ok(lightness(await background()) > 240);
    const widths = await page.$$eval("canvas", (all) => all.map((each) => each.clientWidth));
    assert.ok(Math.max(...widths) <= 680, widths.join());
    assert.ok(await pixelsOf(1) > 300);
    const left = await page.$$eval("button, #cursor, .help",
        (all) => all.filter((each) => each.checkVisibility()).length);
    assert.equal(left, 0);
    await page.emulateMediaType("screen");
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: "dark" }]);
    await page.waitForFunction(() => !document.documentElement.classList.contains("paper"));
    assert.ok(lightness(await background()) < 60);
});
