// The extension in VS Code, as a user sees it.
//
//     node browser.mjs BROWSER ADDRESS FOLDER PICTURES
//
// VS Code is served at ADDRESS; FOLDER holds the scripts that browser.py writes. The pictures go
// to the folder PICTURES; that of a failure stands beside FOLDER.

import assert from "node:assert/strict";
import { existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import puppeteer from "puppeteer-core";

const [browserPath, address, folder, pictures] = process.argv.slice(2);

const PATIENCE = { timeout: 30_000 };
const SIZE = { width: 1000, height: 560 };
const PAUSE_MILLISECONDS = 700;

let browser;
let page;

before(async () => {
    // Neither a sandbox nor a display is at hand everywhere.
    const args = ["--no-sandbox", "--disable-gpu"];
    browser = await puppeteer.launch({ executablePath: browserPath, args });
    page = await browser.newPage();
    page.on("dialog", (dialog) => dialog.accept()); // it asks before it is left
    await page.setViewport(SIZE);
});

after(() => browser.close());

/** Opens the folder anew, with settings of its own. */
async function open(own = {}) {
    mkdirSync(join(folder, ".vscode"), { recursive: true });
    writeFileSync(join(folder, ".vscode", "settings.json"), JSON.stringify(own));
    await page.goto(`${address}/?folder=${folder}`);
    await page.waitForSelector(".explorer-folders-view .monaco-list-row", PATIENCE);
    await pause();
}

const pause = () => new Promise((resolve) => setTimeout(resolve, PAUSE_MILLISECONDS));

async function press(...keys) {
    for (const key of keys.slice(0, -1)) await page.keyboard.down(key);
    await page.keyboard.press(keys.at(-1));
    for (const key of keys.slice(0, -1)) await page.keyboard.up(key);
}

/** Types into the field at the top and takes the first row that holds the text. */
async function pick(text, row = text) {
    await page.waitForSelector(".quick-input-widget:not([style*='none']) input", PATIENCE);
    await page.keyboard.type(text);
    await waitForText(".quick-input-list .monaco-list-row.focused", row);
    await press("Enter");
    await pause();
}

async function openFile(name) {
    await press("Control", "p");
    await pick(name);
    await waitForText(".tab.active", name);
}

async function command(title) {
    await press("F1");
    await pick(`yxst: ${title}`);
}

async function goToLine(line) {
    await press("Control", "g");
    await pick(String(line), "line");
}

function waitForText(selector, text) {
    const holds = (where, wanted) =>
        [...document.querySelectorAll(where)].some((each) =>
            each.textContent.replace(/\u00a0/g, " ").includes(wanted));
    return page.waitForFunction(holds, PATIENCE, selector, text);
}

async function closeEverything() {
    await press("Control", "k");
    await press("Control", "w");
    await pause();
}

async function clearMessages() {
    await press("F1");
    await pick("Notifications: Clear All Notifications");
}

async function picture(name, where = pictures) {
    await page.mouse.move(500, 5); // where nothing answers to it
    await pause();
    await page.screenshot({ path: join(where, `${name}.png`) });
}

/** A test that leaves a picture when it fails. */
function check(name, steps) {
    test(name, async () => {
        try {
            await steps();
        } catch (error) {
            await picture("failed", join(folder, ".."));
            throw error;
        }
    });
}

const message = ".notification-list-item-message";
const problem = ".markers-panel .monaco-list-row";

check("a missing program is named", async () => {
    await open({ "yxst.path": "/nowhere/yxst" });
    await openFile("fan.st");
    await waitForText(message, 'The setting "yxst.path" is no program: "/nowhere/yxst".');
});

check("errors are underlined and listed", async () => {
    await open();
    await openFile("fill.st");
    await page.waitForSelector(".squiggly-error", PATIENCE);
    await press("Control", "Shift", "m");
    await waitForText(problem, 'An unrecognized keyword "levle"');
    await waitForText(problem, '":=" expected but "=" found');
    await picture("errors");
});

check("a finding that is disabled goes", async () => {
    writeFileSync(join(folder, "twice.st"), readFileSync(join(folder, "fan.st"), "utf8")
        .replace("speed := 20;", "speed := 10;\n    speed := 20;"));
    await openFile("twice.st");
    await waitForText(problem, "gets another value before this one is read");
    await open({ "yxst.disable": ["unused-store"] });
    await page.waitForSelector(".squiggly-error", PATIENCE);
    const texts = await page.$$eval(problem, (all) => all.map((each) => each.textContent));
    assert.ok(!texts.some((text) => text.includes("gets another value")), String(texts));
    await closeEverything();
});

check("code is shown beside its source and follows it", async () => {
    await open();
    await openFile("fan.st");
    await command("Show Code Beside Source");
    await waitForText(".tab", "fan.st (code)");
    const code = ".editor-group-container:nth-of-type(2) .view-line, .view-line";
    await waitForText(code, "MOV 100 #A0");
    await press("Control", "1");
    await goToLine(10);
    await page.waitForSelector(".view-overlays .cdr[class*='ced-']", PATIENCE);
    await picture("code");
    await press("End");
    await page.keyboard.press("Backspace");
    await page.keyboard.press("Backspace");
    await page.keyboard.type("1;");
    await waitForText(code, "MOV 101 #A0");
    await press("Control", "z");
    await closeEverything();
});

check("a folder is checked, with scripts of other suffixes", async () => {
    await open({ "files.associations": { "*.script": "yxst" } });
    await openFile("fan.st");
    await command("Check Folder");
    await waitForText(problem, "assist.script");
    await waitForText(problem, 'An unrecognized keyword "many"');
    await picture("folder");
});

check("a script is compiled, or it is told why not", async () => {
    await openFile("boost.st");
    await command("Compile Script");
    await waitForText(message, "boost.yx is written.");
    assert.ok(existsSync(join(folder, "boost.yx")));
    assert.ok(existsSync(join(folder, "boost.yx.lst")));
    await openFile("fill.st");
    await command("Compile Script");
    await waitForText(message, 'fill.st: Error: Line 8, Column 14: An unrecognized keyword "levle"');
    assert.ok(!existsSync(join(folder, "fill.yx")));
});

check("the server can be started anew", async () => {
    await openFile("fill.st");
    await command("Restart Language Server");
    await page.waitForSelector(".squiggly-error", PATIENCE);
});

check("the page of the extension has its pictures", async () => {
    await press("Control", "Shift", "x");
    const row = await page.waitForSelector(".extensions-list .monaco-list-row", PATIENCE);
    await row.click();
    await waitForText(".tab.active", "yxst");
    await pause();
    await pause();
    const frames = await Promise.all(page.frames().map((frame) =>
        frame.$$eval("img", (all) => all.map((each) => each.naturalWidth)).catch(() => [])));
    assert.ok(frames.flat().filter((width) => width >= 1000).length >= 3, String(frames.flat()));
});
