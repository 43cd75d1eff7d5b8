/** The command that compiles the script of the window. */
import { execFile } from 'node:child_process';
import * as path from 'node:path';
import * as vscode from 'vscode';

import { codeFileOf, compileArguments, failureIn, messagesIn, overwrites } from './calls';
import { compilerOptions, findCompiler, outputSuffix, showMissing } from './settings';

interface Run {
    readonly status: number;
    readonly output: string;
    readonly errors: string;
}

/** Nobody waits longer for a compiler that takes a fraction of a second. */
const TIMEOUT_MILLISECONDS = 60_000;
const LARGEST_OUTPUT = 512 * 1024 * 1024;

export async function compileScript(output: vscode.OutputChannel): Promise<void> {
    const script = await savedScript();
    if (script === undefined) {
        return;
    }
    const code = codeFileOf(script.fsPath, outputSuffix(script));
    if (overwrites(script.fsPath, code)) {
        void vscode.window.showErrorMessage(
            `The code of ${path.basename(code)} would overwrite it: see "yxst.outputSuffix".`,
        );
        return;
    }
    await compile(script, code, output);
}

async function compile(
    script: vscode.Uri,
    code: string,
    output: vscode.OutputChannel,
): Promise<void> {
    const compiler = findCompiler();
    if ('missing' in compiler) {
        return showMissing(compiler.missing);
    }
    const options = compilerOptions(script);
    const run = await execute(compiler.file, compileArguments(script.fsPath, code, options));
    output.appendLine(`Compiled ${script.fsPath}: status ${run.status}`);
    messagesIn(run.output).forEach((message) => output.appendLine(message));
    if (run.status === 0) {
        await showSuccess(code, options);
    } else {
        await showFailure(script, run);
    }
}

/** The file of the script in the window, as it stands there. */
async function savedScript(): Promise<vscode.Uri | undefined> {
    const document = vscode.window.activeTextEditor?.document;
    if (document?.languageId !== 'yxst') {
        void vscode.window.showErrorMessage('No script is open in the window.');
        return undefined;
    }
    const isSaved = document.isUntitled || document.isDirty ? await document.save() : true;
    // An untitled one gets another document when it is saved.
    const uri = vscode.window.activeTextEditor?.document.uri;
    return isSaved && uri?.scheme === 'file' ? uri : undefined;
}

function execute(file: string, args: string[]): Promise<Run> {
    const options = { timeout: TIMEOUT_MILLISECONDS, maxBuffer: LARGEST_OUTPUT };
    return new Promise((resolve) => {
        execFile(file, args, options, (error, output, errors) => {
            const status = error === null ? 0 : typeof error.code === 'number' ? error.code : -1;
            resolve({ status, output, errors: errors || (error?.message ?? '') });
        });
    });
}

async function showSuccess(code: string, options: readonly string[]): Promise<void> {
    const show = options.includes('-l') ? ['Open Listing'] : [];
    const text = `${path.basename(code)} is written.`;
    if ((await vscode.window.showInformationMessage(text, ...show)) !== undefined) {
        await vscode.window.showTextDocument(vscode.Uri.file(`${code}.lst`), {
            viewColumn: vscode.ViewColumn.Beside,
            preserveFocus: true,
        });
    }
}

async function showFailure(script: vscode.Uri, run: Run): Promise<void> {
    const show = 'Show Problems';
    const text = `${path.basename(script.fsPath)}: ${failureIn(run.output, run.errors)}`;
    if ((await vscode.window.showErrorMessage(text, show)) === show) {
        await vscode.commands.executeCommand('workbench.actions.view.problems');
    }
}
