/** The settings of the extension, and what it finds by them. */
import * as fs from 'node:fs';
import * as os from 'node:os';
import * as path from 'node:path';
import * as vscode from 'vscode';

import { scriptSuffixes, type CheckSettings } from './calls';
import { findProgram, type Search, type Surroundings } from './programs';

export const SECTION = 'yxst';

function settings(scope?: vscode.Uri): vscode.WorkspaceConfiguration {
    return vscode.workspace.getConfiguration(SECTION, scope ?? null);
}

export function checkSettings(scope?: vscode.Uri): CheckSettings {
    const files = vscode.workspace.getConfiguration('files', scope ?? null);
    return {
        suffixes: scriptSuffixes(files.get<Record<string, string>>('associations', {})),
        disable: settings(scope).get<string[]>('disable', []),
        maxErrors: settings(scope).get<number>('maxErrors', 50),
    };
}

/** What the language server is told when it starts; it is told of changes by the library. */
export function serverSettings(): object {
    return { [SECTION]: settings() };
}

export function compilerOptions(scope: vscode.Uri): string[] {
    return settings(scope).get<string[]>('compilerOptions', []);
}

export function outputSuffix(scope: vscode.Uri): string {
    return settings(scope).get<string>('outputSuffix', '.yx');
}

export function findDesk(): Search {
    const set = settings().get<string>('path', '');
    return findProgram({ name: 'yxst', setting: 'yxst.path', set, beside: [] }, surroundings());
}

export function findCompiler(): Search {
    const desk = findDesk();
    const beside = 'file' in desk ? [path.dirname(desk.file)] : [];
    const set = settings().get<string>('compilerPath', '');
    return findProgram(
        { name: 'yxstcmp', setting: 'yxst.compilerPath', set, beside },
        surroundings(),
    );
}

function surroundings(): Surroundings {
    return {
        platform: process.platform,
        searchPath: process.env['PATH'] ?? '',
        home: os.homedir(),
        workspace: vscode.workspace.workspaceFolders?.[0]?.uri.fsPath,
        isProgram,
    };
}

function isProgram(file: string): boolean {
    try {
        fs.accessSync(file, fs.constants.X_OK);
        return fs.statSync(file).isFile();
    } catch {
        return false;
    }
}

/** Shows why a program is not there, with a way to the setting that names it. */
export async function showMissing(missing: string): Promise<void> {
    const open = 'Open Settings';
    if ((await vscode.window.showErrorMessage(missing, open)) === open) {
        await vscode.commands.executeCommand('workbench.action.openSettings', 'yxst path');
    }
}
