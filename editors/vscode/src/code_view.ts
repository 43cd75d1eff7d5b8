/** The target code of a script in a window beside it; the lines of both follow each other. */
import * as path from 'node:path';
import * as vscode from 'vscode';

import {
    codeLinesFor,
    itemsOf,
    sourceLinesFor,
    textOf,
    type CodeAnswer,
    type Item,
    type Lines,
} from './code';
import type { Server } from './server';

const SCHEME = 'yxst-code';

/** Typing is over after this time. */
const PAUSE_MILLISECONDS = 300;

export class CodeView implements vscode.TextDocumentContentProvider, vscode.Disposable {
    /** The code of each script that is shown, by the URI of its window. */
    private readonly shown = new Map<string, readonly Item[]>();
    private readonly changes = new vscode.EventEmitter<vscode.Uri>();
    private readonly mark = vscode.window.createTextEditorDecorationType({
        isWholeLine: true,
        backgroundColor: new vscode.ThemeColor('editor.rangeHighlightBackground'),
        overviewRulerColor: new vscode.ThemeColor('editorOverviewRuler.rangeHighlightForeground'),
    });
    private readonly parts: vscode.Disposable;
    private timer: NodeJS.Timeout | undefined;

    readonly onDidChange = this.changes.event;

    constructor(private readonly server: Server) {
        this.parts = vscode.Disposable.from(
            this.changes,
            this.mark,
            vscode.workspace.registerTextDocumentContentProvider(SCHEME, this),
            vscode.workspace.onDidChangeTextDocument(({ document }) => this.refreshLater(document)),
            vscode.workspace.onDidCloseTextDocument(({ uri }) => this.shown.delete(String(uri))),
            vscode.window.onDidChangeTextEditorSelection((event) => this.follow(event)),
        );
    }

    dispose(): void {
        clearTimeout(this.timer);
        this.parts.dispose();
    }

    async provideTextDocumentContent(view: vscode.Uri): Promise<string> {
        const items = await this.askFor(sourceOf(view));
        this.shown.set(String(view), items);
        return textOf(items);
    }

    /**
     * Shows the code of a script. A code lens tells its URI and the range of a unit; without them
     * it is the script of the window, and the line of the cursor.
     */
    async show(args: readonly unknown[]): Promise<void> {
        const source = sourceEditor(args[0]);
        if (source === undefined) {
            void vscode.window.showErrorMessage('No script is open in the window.');
            return;
        }
        if (!this.server.isRunning) {
            await this.server.restart();
        }
        if (this.server.isRunning) {
            const code = await openBeside(viewOf(source.document.uri), source);
            const line = startLine(args[1]) ?? source.selection.active.line;
            this.markAll(code, codeLinesFor(this.itemsIn(code), line));
        }
    }

    private async askFor(source: vscode.Uri): Promise<Item[]> {
        const params = { textDocument: { uri: String(source) } };
        const answer = await this.server.ask<CodeAnswer>('yxst/code', params);
        return answer === undefined ? [] : itemsOf(answer);
    }

    private itemsIn(editor: vscode.TextEditor): readonly Item[] {
        return this.shown.get(String(editor.document.uri)) ?? [];
    }

    private refreshLater(source: vscode.TextDocument): void {
        const view = viewOf(source.uri);
        if (this.shown.has(String(view))) {
            clearTimeout(this.timer);
            this.timer = setTimeout(() => this.changes.fire(view), PAUSE_MILLISECONDS);
        }
    }

    /** Marks in the other window what belongs to the line of the cursor in this one. */
    private follow(event: vscode.TextEditorSelectionChangeEvent): void {
        const editor = event.textEditor;
        const line = event.selections[0]?.active.line ?? 0;
        const uri = editor.document.uri;
        if (uri.scheme === SCHEME) {
            const lines = sourceLinesFor(this.itemsIn(editor), line);
            this.markAll(visible(sourceOf(uri)), lines === undefined ? [] : [lines]);
        } else {
            const code = visible(viewOf(uri));
            this.markAll(code, code === undefined ? [] : codeLinesFor(this.itemsIn(code), line));
        }
        // What was marked here came from the other window.
        editor.setDecorations(this.mark, []);
    }

    private markAll(editor: vscode.TextEditor | undefined, lines: readonly Lines[]): void {
        const ranges = lines.map(({ first, last }) => new vscode.Range(first, 0, last, 0));
        editor?.setDecorations(this.mark, ranges);
        const [first] = ranges;
        if (first !== undefined) {
            editor?.revealRange(first, vscode.TextEditorRevealType.InCenterIfOutsideViewport);
        }
    }
}

/** The URI under which the code of a script is shown; its path is the title of the window. */
function viewOf(source: vscode.Uri): vscode.Uri {
    const name = `${path.posix.basename(source.path)} (code)`;
    return vscode.Uri.from({ scheme: SCHEME, path: name, query: String(source) });
}

function sourceOf(view: vscode.Uri): vscode.Uri {
    return vscode.Uri.parse(view.query);
}

function visible(uri: vscode.Uri): vscode.TextEditor | undefined {
    const wanted = String(uri);
    return vscode.window.visibleTextEditors.find(({ document }) => String(document.uri) === wanted);
}

function sourceEditor(uri: unknown): vscode.TextEditor | undefined {
    if (typeof uri === 'string') {
        return visible(vscode.Uri.parse(uri));
    }
    const editor = vscode.window.activeTextEditor;
    return editor?.document.languageId === 'yxst' ? editor : undefined;
}

async function openBeside(view: vscode.Uri, source: vscode.TextEditor): Promise<vscode.TextEditor> {
    const document = await vscode.workspace.openTextDocument(view);
    const column = visible(view)?.viewColumn ?? (source.viewColumn ?? 1) + 1;
    return vscode.window.showTextDocument(document, {
        viewColumn: column,
        preserveFocus: true,
        preview: false,
    });
}

/** The first line of a range of the language server. */
function startLine(range: unknown): number | undefined {
    const start = (range as { start?: { line?: unknown } } | undefined)?.start?.line;
    return typeof start === 'number' ? start : undefined;
}
