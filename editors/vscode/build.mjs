// Bundles the extension with the libraries it uses, and collects their licences:
//
//     node build.mjs            out/extension.js and ThirdPartyNotices.txt
//     node build.mjs --tests    out/test/*.test.js, for node --test

import * as esbuild from 'esbuild';
import { readFileSync, readdirSync, writeFileSync } from 'node:fs';
import path from 'node:path';

// Node.js 18 is what the oldest supported editor has.
const common = {
    bundle: true,
    platform: 'node',
    format: 'cjs',
    target: 'node18',
    logLevel: 'warning',
};

async function bundleTests() {
    const tests = readdirSync('test').filter((name) => name.endsWith('.test.ts'));
    await esbuild.build({
        ...common,
        entryPoints: tests.map((name) => path.join('test', name)),
        outdir: 'out/test',
    });
}

async function bundleExtension() {
    const { metafile } = await esbuild.build({
        ...common,
        entryPoints: ['src/extension.ts'],
        outfile: 'out/extension.js',
        external: ['vscode'],
        minify: true,
        legalComments: 'none', // all licences stand in the notices
        metafile: true,
    });
    writeFileSync('ThirdPartyNotices.txt', notices(packagesOf(metafile)));
}

/** The folders of the packages that have a part in the bundle. */
function packagesOf(metafile) {
    const inputs = Object.values(metafile.outputs).flatMap((output) => Object.keys(output.inputs));
    const folder = /^.*node_modules\/(@[^/]+\/)?[^/]+/;
    return [...new Set(inputs.flatMap((input) => input.match(folder)?.[0] ?? []))].sort();
}

function notices(folders) {
    const rule = `\n${'-'.repeat(78)}\n\n`;
    const head = 'The extension holds parts of these packages, under their licences.\n';
    return [head, ...folders.map(noticeOf)].join(rule);
}

/** Ends the build where a package has no licence: it could not be handed on. */
function noticeOf(folder) {
    const { name, version } = JSON.parse(readFileSync(path.join(folder, 'package.json'), 'utf8'));
    const file = readdirSync(folder).find((each) => /^licen[cs]e(\.\w+)?$/i.test(each));
    if (file === undefined) {
        throw new Error(`${name} has no licence`);
    }
    const licence = readFileSync(path.join(folder, file), 'utf8').replace(/\r\n/g, '\n').trim();
    return `${name} ${version}\n\n${licence}\n`;
}

await (process.argv.includes('--tests') ? bundleTests() : bundleExtension());
