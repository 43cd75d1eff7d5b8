// A client from npm asks the server everything that it says it can do:
//
//     node session.mjs PROGRAM < SCRIPT
//
// Standard output has a JSON array of [METHOD, VALUE]: results of requests, and the params of what
// the server sends by itself. A place of the script is each name in it and what follows that.

import { spawn } from "node:child_process";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

const require = createRequire(process.cwd() + "/");
const lsp = require("vscode-languageserver-protocol/node");

const URI = "file:///plant/fill.st";
const PLACES = 40; // at most, spread over the script

const text = readFileSync(0, "utf8");
const seen = [];
const child = spawn(process.argv[2], ["lsp"], { stdio: ["pipe", "pipe", "inherit"] });
const connection = lsp.createProtocolConnection(
    new lsp.StreamMessageReader(child.stdout), new lsp.StreamMessageWriter(child.stdin));

function placesIn() {
    const lines = text.split(/\r\n|\n|\r/);
    const all = lines.flatMap((content, line) =>
        [...content.matchAll(/[A-Za-z_]\w*/g)].flatMap((match) =>
            [match.index, match.index + match[0].length].map((character) => ({ line, character }))));
    const step = Math.max(1, Math.floor(all.length / PLACES));
    return [...all.filter((_, index) => index % step === 0), { line: 1e9, character: 1e9 }];
}

async function ask(method, params) {
    let result;
    try {
        result = await connection.sendRequest(method, params);
    } catch (error) {
        if (!(error instanceof lsp.ResponseError)) {
            throw error;
        }
        seen.push(["error", { method, code: error.code, message: error.message }]);
        return null;
    }
    seen.push([method, result]);
    return result;
}

const textDocument = { uri: URI };
const whole = { start: { line: 0, character: 0 }, end: { line: 1e6, character: 0 } };
const options = { tabSize: 4, insertSpaces: true };
const AT_PLACES = {
    hoverProvider: "textDocument/hover",
    completionProvider: "textDocument/completion",
    signatureHelpProvider: "textDocument/signatureHelp",
    definitionProvider: "textDocument/definition",
    declarationProvider: "textDocument/declaration",
    referencesProvider: "textDocument/references",
    documentHighlightProvider: "textDocument/documentHighlight",
    renameProvider: "textDocument/prepareRename",
};

async function askAtPlaces(capabilities) {
    for (const position of placesIn()) {
        for (const [capability, method] of Object.entries(AT_PLACES)) {
            if (capabilities[capability]) {
                const context = { includeDeclaration: true };
                await ask(method, { textDocument, position, context });
            }
        }
        if (capabilities.renameProvider) {
            await ask("textDocument/rename", { textDocument, position, newName: "another" });
        }
        if (capabilities.selectionRangeProvider) {
            await ask("textDocument/selectionRange", { textDocument, positions: [position] });
        }
        if (capabilities.documentOnTypeFormattingProvider) {
            await ask("textDocument/onTypeFormatting",
                { textDocument, position, ch: ";", options });
        }
        if (capabilities.codeActionProvider) {
            const range = { start: position, end: position };
            await ask("textDocument/codeAction",
                { textDocument, range, context: { diagnostics: [] } });
        }
    }
}

async function askAtSemicolons() {
    const lines = text.split(/\r\n|\n|\r/);
    const ends = lines.flatMap((content, line) =>
        content.endsWith(";") ? [{ line, character: content.length }] : []);
    for (const position of ends.slice(0, PLACES)) {
        await ask("textDocument/onTypeFormatting", { textDocument, position, ch: ";", options });
    }
}

async function askAboutAll(capabilities, diagnostics) {
    const table = [
        ["documentSymbolProvider", "textDocument/documentSymbol", {}],
        ["codeLensProvider", "textDocument/codeLens", {}],
        ["inlayHintProvider", "textDocument/inlayHint", { range: whole }],
        ["foldingRangeProvider", "textDocument/foldingRange", {}],
        ["semanticTokensProvider", "textDocument/semanticTokens/full", {}],
        ["semanticTokensProvider", "textDocument/semanticTokens/range", { range: whole }],
        ["documentFormattingProvider", "textDocument/formatting", { options }],
        ["documentRangeFormattingProvider", "textDocument/rangeFormatting",
            { range: whole, options }],
        ["codeActionProvider", "textDocument/codeAction",
            { range: whole, context: { diagnostics } }],
        ["workspaceSymbolProvider", "workspace/symbol", { query: "" }],
    ];
    for (const [capability, method, params] of table) {
        if (capabilities[capability]) {
            await ask(method, { textDocument, ...params });
        }
    }
}

function diagnosticsOfServer() {
    return new Promise((resolve) => {
        connection.onNotification("textDocument/publishDiagnostics", (params) => {
            seen.push(["textDocument/publishDiagnostics", params]);
            resolve(params.diagnostics);
        });
    });
}

connection.onNotification("window/logMessage", (params) => seen.push(["window/logMessage", params]));
connection.onRequest("workspace/configuration", (params) => {
    seen.push(["workspace/configuration", params]);
    return [{ disable: ["no-lint"] }];
});
connection.listen();

const everything = {
    workspace: { configuration: true, workspaceEdit: { documentChanges: true } },
    textDocument: {
        publishDiagnostics: { relatedInformation: true },
        hover: { contentFormat: ["markdown"] },
        completion: { completionItem: { snippetSupport: true } },
        documentSymbol: { hierarchicalDocumentSymbolSupport: true },
        codeAction: { codeActionLiteralSupport: { codeActionKind: { valueSet: [] } } },
        rename: { prepareSupport: true },
    },
};
const greeting = await ask("initialize",
    { processId: process.pid, rootUri: null, capabilities: everything });
connection.sendNotification("initialized", {});
const published = diagnosticsOfServer();
connection.sendNotification("textDocument/didOpen",
    { textDocument: { uri: URI, languageId: "st", version: 1, text } });
const diagnostics = await published;
await askAboutAll(greeting.capabilities, diagnostics);
await askAtPlaces(greeting.capabilities);
await askAtSemicolons();
await ask("shutdown");
await connection.sendNotification("exit");
const status = await new Promise((resolve) => child.on("exit", resolve));
process.stdout.write(JSON.stringify({ seen, status, capabilities: greeting.capabilities }));
connection.dispose();
