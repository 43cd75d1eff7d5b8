import assert from 'node:assert/strict';
import { describe, it } from 'node:test';

import {
    checkArguments,
    codeFileOf,
    compileArguments,
    failureIn,
    messagesIn,
    overwrites,
    scriptSuffixes,
} from '../src/calls';

describe('a check', () => {
    it('has the settings as options', () => {
        const settings = {
            suffixes: ['st', 'script'],
            disable: ['unused-store', 'same-operands'],
            maxErrors: 7,
        };
        assert.deepEqual(checkArguments('pumps', settings), [
            'check',
            '--format=gcc',
            '--quiet',
            '--max-errors=7',
            '--suffix=st',
            '--suffix=script',
            '--disable=unused-store,same-operands',
            '--',
            'pumps',
        ]);
    });

    it('has no list of lints where none is disabled', () => {
        const shown = checkArguments('-x', { suffixes: ['st'], disable: [], maxErrors: 50 });
        assert.deepEqual(shown.slice(3), ['--max-errors=50', '--suffix=st', '--', '-x']);
    });

    it('knows the suffixes that are associated with the language', () => {
        const associations = {
            '*.script': 'yxst',
            '**/*.plc.st': 'yxst',
            '*.st': 'yxst',
            '*.txt': 'plaintext',
            'fan*': 'yxst',
            '*.{a,b}': 'yxst',
        };
        assert.deepEqual(scriptSuffixes(associations), ['st', 'script', 'plc.st']);
        assert.deepEqual(scriptSuffixes({}), ['st']);
    });
});

describe('a code file', () => {
    it('stands beside its script', () => {
        assert.equal(codeFileOf('/plant/a.b/fan.st', '.yx'), '/plant/a.b/fan.yx');
        assert.equal(codeFileOf('/plant/a.b/fan', '.yx'), '/plant/a.b/fan.yx');
        assert.equal(codeFileOf('/plant/fan.v2.st', '.code'), '/plant/fan.v2.code');
    });

    it('must not be its script', () => {
        assert.ok(overwrites('/plant/fan.st', codeFileOf('/plant/fan.st', '.st')));
        assert.ok(overwrites('/plant/fan.ST', codeFileOf('/plant/fan.ST', '.st')));
        assert.ok(!overwrites('/plant/fan.st', codeFileOf('/plant/fan.st', '.yx')));
    });

    it('is told to the compiler after the script', () => {
        const found = compileArguments('/a.st', '/a.yx', ['-l', '-n']);
        assert.deepEqual(found, ['/a.st', '/a.yx', '-s', '-l', '-n']);
    });
});

describe('what the compiler wrote', () => {
    const output = [
        'PROG:',
        'Error',
        'Warning: Line 3, Column 5: Variable "x" is not used',
        'MOV Error: #A0',
        'Error: Line 5, Column 7: An unrecognized keyword "y"',
        '',
    ];

    it('has its messages among other lines', () => {
        const messages = [output[2], output[4]];
        assert.deepEqual(messagesIn(output.join('\n')), messages);
        assert.deepEqual(messagesIn(output.join('\r\n')), messages);
    });

    it('has the reason of a failure', () => {
        assert.equal(failureIn(output.join('\n'), 'Command failed'), output[4]);
        assert.equal(failureIn('', 'Cannot create /a.yx\n'), 'Cannot create /a.yx');
        assert.equal(failureIn('Warning: Line 1, Column 1: x', ''), 'The compiler gave no reason.');
    });
});
