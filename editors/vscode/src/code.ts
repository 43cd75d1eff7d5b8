/**
 * The target code of a script, and which lines of both belong together. It knows nothing of the
 * editor, so that it can be tested without one.
 */

/** Lines from 0, as the language server counts them. */
export interface Lines {
    readonly first: number;
    readonly last: number;
}

/** One item of the code, with the lines of the script that it is written for. */
export interface Item {
    readonly text: string;
    readonly source: Lines;
}

/** The answer of the language server to "yxst/code". */
export interface CodeAnswer {
    readonly items: readonly {
        readonly text: string;
        readonly range: { readonly start: { line: number }; readonly end: { line: number } };
    }[];
}

export const NO_CODE = 'The script has errors, so it has no code.';

export function itemsOf(answer: CodeAnswer): Item[] {
    return answer.items.map(({ text, range }) => ({
        text,
        source: { first: range.start.line, last: range.end.line },
    }));
}

/** One item a line, as in a listing. */
export function textOf(items: readonly Item[]): string {
    return items.length === 0 ? NO_CODE : items.map((item) => item.text).join('\n');
}

/**
 * The lines of the code that belong to a line of the script: of the items whose piece of the
 * script holds the line, those with the smallest piece, so that a statement comes before the loop
 * around it.
 */
export function codeLinesFor(items: readonly Item[], line: number): Lines[] {
    const holding = items
        .map(({ source }, at) => ({ source, at, size: source.last - source.first }))
        .filter(({ source }) => source.first <= line && line <= source.last);
    const smallest = Math.min(...holding.map(({ size }) => size));
    return runsOf(holding.filter(({ size }) => size === smallest).map(({ at }) => at));
}

/** The lines of the script that a line of the code is written for. */
export function sourceLinesFor(items: readonly Item[], line: number): Lines | undefined {
    return items[line]?.source;
}

/** Rising numbers as runs of neighbours. */
function runsOf(numbers: readonly number[]): Lines[] {
    const runs: { first: number; last: number }[] = [];
    for (const number of numbers) {
        const run = runs.at(-1);
        if (run !== undefined && run.last + 1 === number) {
            run.last = number;
        } else {
            runs.push({ first: number, last: number });
        }
    }
    return runs;
}
