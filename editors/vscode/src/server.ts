/** The language server: `yxst lsp`, started, stopped and asked. */
import * as vscode from 'vscode';
import {
    LanguageClient,
    RevealOutputChannelOn,
    type LanguageClientOptions,
    type ServerOptions,
} from 'vscode-languageclient/node';

import { findDesk, SECTION, serverSettings, showMissing } from './settings';

/** Changes of these need another server. */
const PLACES = ['yxst.path'];

export class Server implements vscode.Disposable {
    private client: LanguageClient | undefined;
    /** Starts and stops come one after the other, however fast they are asked for. */
    private work: Promise<void> = Promise.resolve();

    constructor(private readonly output: vscode.OutputChannel) {}

    start(): Promise<void> {
        return this.queue(() => this.startNow());
    }

    stop(): Promise<void> {
        return this.queue(() => this.stopNow());
    }

    restart(): Promise<void> {
        return this.queue(async () => {
            await this.stopNow();
            await this.startNow();
        });
    }

    get isRunning(): boolean {
        return this.client !== undefined;
    }

    restartsOn(change: vscode.ConfigurationChangeEvent): boolean {
        return PLACES.some((setting) => change.affectsConfiguration(setting));
    }

    /** The answer to a request, or undefined without a server. */
    async ask<Answer>(method: string, params: object): Promise<Answer | undefined> {
        await this.work;
        return this.client?.sendRequest<Answer>(method, params);
    }

    dispose(): void {
        void this.stop();
    }

    private queue(step: () => Promise<void>): Promise<void> {
        this.work = this.work.then(step, step);
        return this.work;
    }

    private async startNow(): Promise<void> {
        const desk = findDesk();
        if ('missing' in desk) {
            this.output.appendLine(desk.missing);
            void showMissing(desk.missing);
            return;
        }
        this.output.appendLine(`Starting ${desk.file} lsp`);
        const client = makeClient(desk.file, this.output);
        try {
            await client.start();
            this.client = client;
        } catch (error) {
            this.showFailure(desk.file, error);
        }
    }

    private async stopNow(): Promise<void> {
        const client = this.client;
        this.client = undefined;
        await client?.dispose();
    }

    private showFailure(file: string, error: unknown): void {
        const text = `The language server does not start: "${file} lsp".`;
        this.output.appendLine(`${text} ${String(error)}`);
        void showMissing(text);
    }
}

function makeClient(file: string, output: vscode.OutputChannel): LanguageClient {
    const server: ServerOptions = { command: file, args: ['lsp'] };
    const options: LanguageClientOptions = {
        documentSelector: [
            { scheme: 'file', language: 'yxst' },
            { scheme: 'untitled', language: 'yxst' },
        ],
        outputChannel: output,
        revealOutputChannelOn: RevealOutputChannelOn.Never,
        initializationOptions: serverSettings(),
        synchronize: { configurationSection: SECTION },
    };
    return new LanguageClient(SECTION, 'yxst', server, options);
}
