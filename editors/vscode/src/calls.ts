/**
 * The command lines of the programs, and what their outputs mean. It knows nothing of the editor,
 * so that it can be tested without one.
 */
import * as path from 'node:path';

export interface CheckSettings {
    /** What the names of scripts end in, without the dot. */
    readonly suffixes: readonly string[];
    readonly disable: readonly string[];
    readonly maxErrors: number;
}

/** The arguments of `yxst` for a check whose messages the problem matcher reads. */
export function checkArguments(target: string, settings: CheckSettings): string[] {
    const disabled = settings.disable.length > 0 ? [`--disable=${settings.disable.join(',')}`] : [];
    return [
        'check',
        '--format=gcc',
        '--quiet',
        `--max-errors=${settings.maxErrors}`,
        ...settings.suffixes.map((suffix) => `--suffix=${suffix}`),
        ...disabled,
        '--',
        target,
    ];
}

/** The suffixes of scripts: `st`, and those of patterns such as `*.script` with the language. */
export function scriptSuffixes(associations: Readonly<Record<string, string>>): string[] {
    const others = Object.entries(associations).flatMap(([pattern, language]) => {
        const suffix = /^(?:\*\*\/)?\*\.([\w.-]+)$/.exec(pattern)?.[1];
        return language === 'yxst' && suffix !== undefined ? [suffix] : [];
    });
    return [...new Set(['st', ...others])];
}

/** The code file of a script: beside it, with the suffix in place of that of the script. */
export function codeFileOf(script: string, suffix: string): string {
    const { dir, name } = path.parse(script);
    return path.join(dir, name + suffix);
}

/** The arguments of `yxstcmp`; with `-s` it tells on standard output what went wrong. */
export function compileArguments(
    script: string,
    code: string,
    options: readonly string[],
): string[] {
    return [script, code, '-s', ...options];
}

/** Whether the code file of a script would be the script. */
export function overwrites(script: string, code: string): boolean {
    return path.normalize(script).toLowerCase() === path.normalize(code).toLowerCase();
}

/** The errors and warnings of the compiler among the lines that it wrote. */
export function messagesIn(output: string): string[] {
    return output.split(/\r?\n/).filter((line) => /^(Error|Warning): /.test(line));
}

/** Why the compiler ended with an error, in one line. */
export function failureIn(output: string, errors: string): string {
    const told = messagesIn(output).filter((line) => line.startsWith('Error: '));
    return [...told, errors.trim()].find((line) => line !== '') ?? 'The compiler gave no reason.';
}
