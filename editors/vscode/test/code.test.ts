import assert from 'node:assert/strict';
import { describe, it } from 'node:test';

import { codeLinesFor, itemsOf, NO_CODE, sourceLinesFor, textOf, type Item } from '../src/code';

function item(text: string, first: number, last: number): Item {
    return { text, source: { first, last } };
}

// A loop over the lines 5 to 8 of a script around an assignment in line 6 and one in 7.
const LOOP = [
    item('MAIN:', 0, 10),
    item('L1:', 5, 8),
    item('TST #A0', 5, 5),
    item('MOV 1 #A0', 6, 6),
    item('MOV #A0 @x', 6, 6),
    item('MOV 2 #A0', 7, 7),
    item('JMP L1', 5, 8),
];

describe('the code of a script', () => {
    it('is what the server answers, one item a line', () => {
        const range = { start: { line: 3, character: 4 }, end: { line: 5, character: 0 } };
        const items = itemsOf({ items: [{ text: 'PROG:', range }, { text: 'Fan', range }] });
        assert.deepEqual(items, [item('PROG:', 3, 5), item('Fan', 3, 5)]);
        assert.equal(textOf(items), 'PROG:\nFan');
    });

    it('is missing where the script has errors', () => {
        assert.equal(textOf(itemsOf({ items: [] })), NO_CODE);
    });
});

describe('lines that belong together', () => {
    it('a line of the script has the code of its smallest piece', () => {
        assert.deepEqual(codeLinesFor(LOOP, 6), [{ first: 3, last: 4 }]);
        assert.deepEqual(codeLinesFor(LOOP, 5), [{ first: 2, last: 2 }]);
        assert.deepEqual(codeLinesFor(LOOP, 9), [{ first: 0, last: 0 }]);
    });

    it('pieces of code that are not neighbours stay apart', () => {
        const runs = [{ first: 1, last: 1 }, { first: 6, last: 6 }];
        assert.deepEqual(codeLinesFor(LOOP, 8), runs);
    });

    it('a line of the code has its lines of the script', () => {
        assert.deepEqual(sourceLinesFor(LOOP, 6), { first: 5, last: 8 });
        assert.equal(sourceLinesFor(LOOP, 7), undefined);
    });

    it('there are none beyond the script', () => {
        assert.deepEqual(codeLinesFor(LOOP, 11), []);
        assert.deepEqual(codeLinesFor([], 0), []);
    });
});
