// Asks the types of the protocol, which its npm package declares, about messages of a server.
//
// Standard input has a JSON array of [METHOD, VALUE]: the result of a request, or the params of a
// notification or a request that the server sends. Standard output has an array of what the
// TypeScript compiler says of each: a list of faults, empty where the types take the value.

import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

const require = createRequire(process.cwd() + "/");
const lsp = require("vscode-languageserver-protocol/node");
const ts = require("typescript");

const PREAMBLE = `
import * as lsp from "vscode-languageserver-protocol/node";
type Result<T> = T extends { _: [any, infer R, ...any[]] | undefined } ? R : never;
type Result0<T> = T extends { _: [infer R, ...any[]] | undefined }
    ? [R] extends [void] ? null : R : never;
type Params<T> = T extends { _: [infer P, ...any[]] | undefined } ? P : never;
`;

// What the server sends by itself; of all other methods it sends the results.
const SENT = new Set([
    "textDocument/publishDiagnostics", "window/logMessage", "window/showMessage",
    "workspace/configuration", "client/registerCapability", "workspace/applyEdit",
]);

const names = new Map();
for (const [name, value] of Object.entries(lsp)) {
    if (value?.type?.method) {
        names.set(value.type.method, name);
    }
}

function typeOf(method) {
    const name = names.get(method);
    const type = `typeof lsp.${name}.type`;
    if (!name) {
        return "never";
    }
    if (SENT.has(method)) {
        return `Params<${type}>`;
    }
    return `${lsp[name].type.numberOfParams === 0 ? "Result0" : "Result"}<${type}>`;
}

// Each value stands on a line of its own.
function programOf(messages) {
    const lines = messages.map(([method, value], index) =>
        `export const m${index}: ${typeOf(method)} = ${JSON.stringify(value)};`);
    return PREAMBLE + lines.join("\n");
}

function diagnosticsOf(text) {
    const file = process.cwd() + "/messages.ts";
    const options = {
        noEmit: true, strict: true, skipLibCheck: true, types: [],
        module: ts.ModuleKind.Node16, moduleResolution: ts.ModuleResolutionKind.Node16,
    };
    const host = ts.createCompilerHost(options);
    const { readFile, fileExists } = host;
    host.fileExists = (path) => path === file || fileExists(path);
    host.readFile = (path) => path === file ? text : readFile(path);
    const program = ts.createProgram([file], options, host);
    return [...program.getSyntacticDiagnostics(), ...program.getSemanticDiagnostics()];
}

const messages = JSON.parse(readFileSync(0, "utf8"));
const first = PREAMBLE.split("\n").length - 1;
const faults = messages.map(() => []);
for (const diagnostic of diagnosticsOf(programOf(messages))) {
    const line = diagnostic.file?.getLineAndCharacterOfPosition(diagnostic.start).line ?? 0;
    const text = ts.flattenDiagnosticMessageText(diagnostic.messageText, "\n");
    if (!faults[line - first]) {
        throw new Error(text);
    }
    faults[line - first].push(text);
}
process.stdout.write(JSON.stringify(faults));
