/** What the editor starts with the first script: commands, tasks and the language server. */
import * as vscode from 'vscode';

import { CodeView } from './code_view';
import { compileScript } from './compile';
import { Server } from './server';
import { checkFolder, CheckTasks } from './tasks';

let server: Server | undefined;

export async function activate(context: vscode.ExtensionContext): Promise<void> {
    const output = vscode.window.createOutputChannel('yxst');
    server = new Server(output);
    const view = new CodeView(server);
    context.subscriptions.push(
        output,
        server,
        view,
        vscode.tasks.registerTaskProvider('yxst', new CheckTasks()),
        ...commands(output, server, view),
        vscode.workspace.onDidChangeConfiguration(restartIfNeeded),
        vscode.workspace.onDidGrantWorkspaceTrust(() => server?.restart()),
    );
    await server.start();
}

export async function deactivate(): Promise<void> {
    await server?.stop();
}

function commands(
    output: vscode.OutputChannel,
    of: Server,
    view: CodeView,
): vscode.Disposable[] {
    const register = vscode.commands.registerCommand;
    return [
        register('yxst.compile', () => compileScript(output)),
        register('yxst.checkFolder', checkFolder),
        register('yxst.showCode', (...args: unknown[]) => view.show(args)),
        register('yxst.restartServer', () => of.restart()),
        register('yxst.showOutput', () => output.show()),
    ];
}

function restartIfNeeded(change: vscode.ConfigurationChangeEvent): void {
    if (server?.restartsOn(change) === true) {
        void server.restart();
    }
}
