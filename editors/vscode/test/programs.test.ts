import assert from 'node:assert/strict';
import { describe, it } from 'node:test';

import { findProgram, type Search, type Surroundings, type Wanted } from '../src/programs';

const DESK: Wanted = { name: 'yxst', setting: 'yxst.path', set: '', beside: [] };
const COMPILER: Wanted = { ...DESK, name: 'yxstcmp', setting: 'yxst.compilerPath' };

function surroundings(programs: string[], changes: Partial<Surroundings> = {}): Surroundings {
    return {
        platform: 'linux',
        searchPath: '/usr/local/bin:/usr/bin',
        home: '/home/ann',
        workspace: '/plant',
        isProgram: (file) => programs.includes(file),
        ...changes,
    };
}

function fileOf(search: Search): string | undefined {
    return 'file' in search ? search.file : undefined;
}

function missingIn(search: Search): string {
    assert.ok('missing' in search, 'a program was found');
    return search.missing;
}

describe('without a setting', () => {
    it('the first of PATH is taken', () => {
        const both = surroundings(['/usr/bin/yxst', '/usr/local/bin/yxst']);
        assert.equal(fileOf(findProgram(DESK, both)), '/usr/local/bin/yxst');
        assert.equal(fileOf(findProgram(DESK, surroundings(['/usr/bin/yxst']))), '/usr/bin/yxst');
    });

    it('the folder of the other program comes before PATH', () => {
        const wanted = { ...COMPILER, beside: ['/opt/yxst/bin'] };
        const both = surroundings(['/usr/bin/yxstcmp', '/opt/yxst/bin/yxstcmp']);
        assert.equal(fileOf(findProgram(wanted, both)), '/opt/yxst/bin/yxstcmp');
        const one = surroundings(['/usr/bin/yxstcmp']);
        assert.equal(fileOf(findProgram(wanted, one)), '/usr/bin/yxstcmp');
    });

    it('no program is taken from a relative folder of PATH', () => {
        const programs = ['yxst', './yxst', 'bin/yxst'];
        const found = findProgram(DESK, surroundings(programs, { searchPath: ':.:bin' }));
        assert.match(missingIn(found), /not in PATH/);
    });

    it('Windows has its own rules', () => {
        const found = findProgram(
            DESK,
            surroundings(['C:\\yxst\\yxst.exe'], {
                platform: 'win32',
                searchPath: 'C:\\Windows;C:\\yxst',
            }),
        );
        assert.equal(fileOf(found), 'C:\\yxst\\yxst.exe');
    });
});

describe('with a setting', () => {
    const found = (set: string, programs: string[], changes: Partial<Surroundings> = {}): Search =>
        findProgram({ ...DESK, set }, surroundings(programs, changes));

    it('it comes before PATH', () => {
        assert.equal(fileOf(found('/opt/yxst', ['/opt/yxst', '/usr/bin/yxst'])), '/opt/yxst');
    });

    it('blanks around it are nothing', () => {
        assert.equal(fileOf(found('  ', ['/usr/bin/yxst'])), '/usr/bin/yxst');
        assert.equal(fileOf(found(' /opt/yxst ', ['/opt/yxst'])), '/opt/yxst');
    });

    it('the home and the workspace may begin it', () => {
        assert.equal(fileOf(found('~/bin/yxst', ['/home/ann/bin/yxst'])), '/home/ann/bin/yxst');
        const inWorkspace = found('${workspaceFolder}/build/../yxst', ['/plant/yxst']);
        assert.equal(fileOf(inWorkspace), '/plant/yxst');
        const price = found('~/yxst', ['/home/$&/yxst'], { home: '/home/$&' });
        assert.equal(fileOf(price), '/home/$&/yxst');
    });

    it('a wrong one is not made good by PATH', () => {
        const missing = missingIn(found('/opt/none', ['/usr/bin/yxst']));
        assert.equal(missing, 'The setting "yxst.path" is no program: "/opt/none".');
    });

    it('it must be a whole path', () => {
        for (const set of ['yxst', './yxst', 'bin/yxst', '~ann/yxst']) {
            const missing = missingIn(found(set, [set]));
            assert.equal(missing, `The setting "yxst.path" must be a whole path, not "${set}".`);
        }
        const without = found('${workspaceFolder}/yxst', [], { workspace: undefined });
        assert.match(missingIn(without), /must be a whole path/);
    });
});

describe('where there is none', () => {
    it('the text says what is lost and what to do', () => {
        assert.equal(
            missingIn(findProgram(DESK, surroundings([]))),
            'The program "yxst" is not in PATH: scripts have colours and snippets, but are not ' +
                'checked. Install the package yxstcmp, or set "yxst.path".',
        );
        assert.equal(
            missingIn(findProgram(COMPILER, surroundings([]))),
            'The program "yxstcmp" is not in PATH: scripts cannot be compiled. Install the ' +
                'package yxstcmp, or set "yxst.compilerPath".',
        );
    });
});
