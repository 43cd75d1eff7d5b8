/** Checks of files and folders as tasks, whose messages the problem matcher reads. */
import * as vscode from 'vscode';

import { checkArguments } from './calls';
import { checkSettings, findDesk, showMissing } from './settings';

const TYPE = 'yxst';

/** Offers a check of each folder of the workspace, and completes tasks of tasks.json. */
export class CheckTasks implements vscode.TaskProvider {
    provideTasks(): vscode.Task[] {
        const folders = vscode.workspace.workspaceFolders ?? [];
        return folders.flatMap((folder) => {
            const task = makeTask(folder, { type: TYPE, task: 'check', path: '.' });
            return task === undefined ? [] : [task];
        });
    }

    resolveTask(task: vscode.Task): vscode.Task | undefined {
        const scope = task.scope;
        return typeof scope === 'object' ? makeTask(scope, task.definition) : undefined;
    }
}

function makeTask(
    folder: vscode.WorkspaceFolder,
    definition: vscode.TaskDefinition,
): vscode.Task | undefined {
    const desk = findDesk();
    if ('missing' in desk) {
        return undefined;
    }
    const target = typeof definition['path'] === 'string' ? definition['path'] : '.';
    const args = checkArguments(target, checkSettings(folder.uri));
    const execution = new vscode.ProcessExecution(desk.file, args, { cwd: folder.uri.fsPath });
    const task = new vscode.Task(definition, folder, `check ${target}`, TYPE, execution, '$yxst');
    task.group = vscode.TaskGroup.Build;
    task.presentationOptions = { reveal: vscode.TaskRevealKind.Silent, clear: true };
    return task;
}

/** Checks a folder: the one that was chosen in the explorer, else one of the workspace. */
export async function checkFolder(chosen?: vscode.Uri): Promise<void> {
    const desk = findDesk();
    if ('missing' in desk) {
        return showMissing(desk.missing);
    }
    const folder = chosen === undefined ? await pickFolder() : folderOf(chosen);
    if (folder === undefined) {
        return;
    }
    const path = chosen === undefined ? '.' : vscode.workspace.asRelativePath(chosen, false);
    const target = chosen?.fsPath === folder.uri.fsPath ? '.' : path;
    const task = makeTask(folder, { type: TYPE, task: 'check', path: target });
    if (task !== undefined) {
        await showOutcome(await vscode.tasks.executeTask(task), target);
    }
}

async function pickFolder(): Promise<vscode.WorkspaceFolder | undefined> {
    const folders = vscode.workspace.workspaceFolders ?? [];
    if (folders.length === 0) {
        void vscode.window.showErrorMessage('No folder is open.');
    }
    return folders.length > 1 ? vscode.window.showWorkspaceFolderPick() : folders[0];
}

function folderOf(uri: vscode.Uri): vscode.WorkspaceFolder | undefined {
    return vscode.workspace.getWorkspaceFolder(uri);
}

/** Shows what was found when the task ends: the list of problems, or that there are none. */
async function showOutcome(execution: vscode.TaskExecution, target: string): Promise<void> {
    const status = await endOf(execution);
    if (status === 0) {
        const what = target === '.' ? 'the folder' : target;
        void vscode.window.showInformationMessage(`yxst found no error in ${what}.`);
    }
    await vscode.commands.executeCommand('workbench.actions.view.problems');
}

function endOf(execution: vscode.TaskExecution): Promise<number | undefined> {
    return new Promise((resolve) => {
        const listener = vscode.tasks.onDidEndTaskProcess((event) => {
            if (event.execution === execution) {
                listener.dispose();
                resolve(event.exitCode);
            }
        });
    });
}
