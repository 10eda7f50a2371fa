// The extension for Visual Studio Code with the language server:
//     node vscode_extension.js EXTENSION TESSARON
//
// Visual Studio Code itself is not here. The extension is loaded with stand-ins for it and for the class
// of its client; what the extension tells that class then starts the server, and a client of npm's
// vscode-languageserver-protocol, the library below that class, holds the session.
"use strict";
const assert = require("assert");
const { spawn } = require("child_process");
const fs = require("fs");
const Module = require("module");
const os = require("os");
const path = require("path");
const { pathToFileURL } = require("url");

const [extension, program] = process.argv.slice(2).map((name) => path.resolve(name));
const settings = { path: program, variables: { size: "0x20" }, ignore: [], warn: [], error: ["unused-image"], werror: false };
const made = [];
let configured;

class Client {
  constructor(id, name, server, options) { made.push({ id, name, server, options, notes: [], isRunning: false }); }
  async start() { made[made.length - 1].isRunning = true; }
  async stop() { made[made.length - 1].isRunning = false; }
  async sendNotification(method, params) { made[made.length - 1].notes.push({ method, params }); }
}

/** Whatever is asked for, since the library derives classes from those of the editor. */
const anything = new Proxy(class {}, { get: (_, name) => (name === "prototype" ? Object.prototype : anything) });
const editor = {
  version: "1.82.0",
  workspace: {
    getConfiguration: () => ({ get: (name) => settings[name] }),
    createFileSystemWatcher: (pattern) => ({ pattern }),
    onDidChangeConfiguration: (listener) => { configured = listener; return {}; },
  },
};
const standIn = new Proxy(editor, { get: (known, name) => (name in known ? known[name] : class {}) });
const load = Module._load;
Module._load = function (request, ...rest) {
  if (request === "vscode") return standIn;
  const loaded = load.call(this, request, ...rest);
  if (request !== "vscode-languageclient/node") return loaded;
  assert(typeof loaded.LanguageClient === "function", "the package has the client and all that it needs");
  return { ...loaded, LanguageClient: Client };
};

async function checkExtension() {
  const manifest = JSON.parse(fs.readFileSync(path.join(extension, "package.json")));
  const known = Object.keys(manifest.contributes.configuration.properties);
  assert.deepStrictEqual(known, Object.keys(settings).map((name) => "tessaron." + name));
  const { activate, deactivate } = require(path.join(extension, manifest.main));
  const context = { subscriptions: [] };
  await activate(context);
  assert.strictEqual(context.subscriptions.length, 1);
  const [{ server, options }] = made;
  assert.deepStrictEqual(server, { command: program, args: ["lsp"] });
  assert.deepStrictEqual(options.documentSelector, [{ language: manifest.contributes.languages[0].id }]);
  assert.deepStrictEqual(options.initializationOptions.variables, settings.variables);
  await configured({ affectsConfiguration: () => false });
  await configured({ affectsConfiguration: (name) => name === "tessaron" });
  assert.deepStrictEqual(made[0].notes[0].params.settings.tessaron.error, ["unused-image"]);
  await configured({ affectsConfiguration: () => true });
  assert.strictEqual(made.length, 2, "another program is another server");
  await deactivate();
  assert(!made[1].isRunning);
  return made[1];
}

const script = `PARAMETER size
NEW_BUFFER @App FROM_VALUES { 1, 2, 3, 4 } -useBufferRange={0, size}
NEW_CRC @Crc FROM_BUFFER @Ap -setType=Catalogue{CRC-16/MODBUS}
WRITE_FILE   out.hex WITH_BUFFERS { @App }
NEW_BUFFER @Other EMPTY -useBufferRange={0, 4}
`;

async function checkServer({ server, options }) {
  const library = path.join(extension, "node_modules", "vscode-languageserver-protocol", "node");
  const lsp = require(library);
  const folder = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "tessaron-")));
  const uri = pathToFileURL(path.join(folder, "a b.tsn")).href;
  const child = spawn(server.command, server.args, { cwd: folder, stdio: ["pipe", "pipe", "inherit"] });
  const ended = new Promise((resolve) => child.on("exit", resolve));
  const connection = lsp.createProtocolConnection(
    new lsp.StreamMessageReader(child.stdout), new lsp.StreamMessageWriter(child.stdin));
  connection.onError((error) => { throw error; });
  const waiting = [];
  connection.onNotification(lsp.PublishDiagnosticsNotification.type, (params) => waiting.shift()(params));
  const diagnostics = () => new Promise((resolve) => waiting.push(resolve));
  connection.listen();

  const hello = await connection.sendRequest(lsp.InitializeRequest.type, {
    processId: process.pid, rootUri: pathToFileURL(folder).href, workspaceFolders: null,
    capabilities: { textDocument: { documentSymbol: { hierarchicalDocumentSymbolSupport: true } } },
    initializationOptions: options.initializationOptions,
  });
  assert.strictEqual(hello.serverInfo.name, "tessaron");
  assert.strictEqual(hello.capabilities.positionEncoding, "utf-16");
  await connection.sendNotification(lsp.InitializedNotification.type, {});
  const document = { uri };
  const due = diagnostics();
  await connection.sendNotification(lsp.DidOpenTextDocumentNotification.type, {
    textDocument: { uri, languageId: "tessaron", version: 1, text: script },
  });
  const published = await due;
  assert.deepStrictEqual([published.uri, published.version], [uri, 1]);
  assert.deepStrictEqual(published.diagnostics.map((one) => [one.code, one.severity]),
    [["unknown-name", 1], ["unused-image", 1]]);

  const ask = (type, params) => connection.sendRequest(type, { textDocument: document, ...params });
  const app = { position: { line: 1, character: 12 } };
  const wrong = published.diagnostics[0];
  const [fix] = await ask(lsp.CodeActionRequest.type, { range: wrong.range, context: { diagnostics: [wrong] } });
  assert.deepStrictEqual(fix.edit.changes[uri], [{ range: wrong.range, newText: "@App" }]);
  const offered = await ask(lsp.CompletionRequest.type, { position: { line: 3, character: 37 } });
  assert(offered.items.some((item) => item.label === "@Other"));
  const hover = await ask(lsp.HoverRequest.type, app);
  assert(hover.contents.value.includes("0x00000000 to 0x0000001F, 32 bytes"), hover.contents.value);
  assert.deepStrictEqual((await ask(lsp.DefinitionRequest.type, { position: { line: 3, character: 37 } })).range.start,
    { line: 1, character: 11 });
  assert.strictEqual((await ask(lsp.ReferencesRequest.type, { ...app, context: { includeDeclaration: false } })).length, 1);
  assert.strictEqual((await ask(lsp.RenameRequest.type, { ...app, newName: "@Main" })).changes[uri].length, 2);
  await assert.rejects(ask(lsp.RenameRequest.type, { ...app, newName: "@Other" }), /already an image called @Other/);
  assert.deepStrictEqual((await ask(lsp.DocumentSymbolRequest.type, {})).map((one) => one.name),
    ["size", "@App", "@Crc", "out.hex", "@Other"]);
  assert.deepStrictEqual(await ask(lsp.FoldingRangeRequest.type, {}), []);
  assert.deepStrictEqual((await ask(lsp.SemanticTokensRequest.type, {})).data.slice(0, 5), [0, 0, 9, 1, 0]);
  assert.deepStrictEqual(await ask(lsp.DocumentFormattingRequest.type, { options: { tabSize: 4, insertSpaces: true } }),
    [{ range: { start: { line: 3, character: 10 }, end: { line: 3, character: 13 } }, newText: " " }]);

  await connection.sendRequest(lsp.ShutdownRequest.type);
  await connection.sendNotification(lsp.ExitNotification.type);
  assert.strictEqual(await ended, 0);
  connection.dispose();
  fs.rmdirSync(folder);
}

// Only what comes to its end has passed.
process.exitCode = 1;
checkExtension()
  .then(checkServer)
  .then(() => { process.exitCode = 0; })
  .catch((error) => { console.error(error); process.exit(1); });
