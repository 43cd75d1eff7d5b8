/**
 * Where the programs are that the extension runs. It knows nothing of the editor, so that it can
 * be tested without one.
 */
import * as path from 'node:path';

/** What the search depends on. */
export interface Surroundings {
    readonly platform: NodeJS.Platform;
    /** The value of PATH. */
    readonly searchPath: string;
    readonly home: string;
    /** The folder of the workspace, if there is one. */
    readonly workspace: string | undefined;
    isProgram(file: string): boolean;
}

export interface Wanted {
    readonly name: 'yxst' | 'yxstcmp';
    readonly setting: 'yxst.path' | 'yxst.compilerPath';
    /** What the user has set, empty for nothing. */
    readonly set: string;
    /** Folders that come before those of PATH. */
    readonly beside: readonly string[];
}

/** The file of a program, or a sentence that says why there is none. */
export type Search = { readonly file: string } | { readonly missing: string };

export function findProgram(wanted: Wanted, surroundings: Surroundings): Search {
    const set = wanted.set.trim();
    return set === '' ? searchFolders(wanted, surroundings) : takeSet(wanted, set, surroundings);
}

function takeSet(wanted: Wanted, set: string, surroundings: Surroundings): Search {
    const file = expand(set, surroundings);
    if (!isAbsolute(file, surroundings.platform)) {
        return { missing: `The setting "${wanted.setting}" must be a whole path, not "${set}".` };
    }
    if (!surroundings.isProgram(file)) {
        return { missing: `The setting "${wanted.setting}" is no program: "${file}".` };
    }
    return { file };
}

function searchFolders(wanted: Wanted, surroundings: Surroundings): Search {
    const rules = pathRules(surroundings.platform);
    const file = [...wanted.beside, ...surroundings.searchPath.split(rules.delimiter)]
        // An empty or relative folder would lead into what happens to be open.
        .filter((folder) => rules.isAbsolute(folder))
        .map((folder) => rules.join(folder, fileName(wanted.name, surroundings.platform)))
        .find((each) => surroundings.isProgram(each));
    return file === undefined ? { missing: missingText(wanted) } : { file };
}

function missingText(wanted: Wanted): string {
    const lost =
        wanted.name === 'yxst'
            ? 'scripts have colours and snippets, but are not checked'
            : 'scripts cannot be compiled';
    return (
        `The program "${wanted.name}" is not in PATH: ${lost}. ` +
        `Install the package yxstcmp, or set "${wanted.setting}".`
    );
}

function expand(set: string, surroundings: Surroundings): string {
    const rules = pathRules(surroundings.platform);
    const home = set.replace(/^~(?=[/\\])/, () => surroundings.home);
    return rules.normalize(
        home.replace(/^\$\{workspaceFolder\}/, (text) => surroundings.workspace ?? text),
    );
}

function isAbsolute(file: string, platform: NodeJS.Platform): boolean {
    return pathRules(platform).isAbsolute(file);
}

function fileName(name: string, platform: NodeJS.Platform): string {
    return platform === 'win32' ? `${name}.exe` : name;
}

function pathRules(platform: NodeJS.Platform): path.PlatformPath {
    return platform === 'win32' ? path.win32 : path.posix;
}
