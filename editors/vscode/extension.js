"use strict";

// Starts the language server, `tessaron lsp`, for the scripts that are open.

const { workspace } = require("vscode");
const { LanguageClient } = require("vscode-languageclient/node");

/** @type {LanguageClient | undefined} */
let client;

/** What the server takes at its start, and whenever it changes. */
function settings() {
  const all = workspace.getConfiguration("tessaron");
  const chosen = {};
  for (const name of ["variables", "ignore", "warn", "error", "werror"]) chosen[name] = all.get(name);
  return chosen;
}

function makeClient() {
  const command = workspace.getConfiguration("tessaron").get("path") || "tessaron";
  const server = { command, args: ["lsp"] };
  return new LanguageClient("tessaron", "Tessaron", server, {
    documentSelector: [{ language: "tessaron" }],
    initializationOptions: settings(),
    // A script depends on those that it includes.
    synchronize: { fileEvents: workspace.createFileSystemWatcher("**/*.tsn") },
  });
}

async function activate(context) {
  context.subscriptions.push(
    workspace.onDidChangeConfiguration(async (event) => {
      if (!event.affectsConfiguration("tessaron")) return;
      if (event.affectsConfiguration("tessaron.path")) {
        await client.stop();
        client = makeClient();
        await client.start();
      } else {
        await client.sendNotification("workspace/didChangeConfiguration", { settings: { tessaron: settings() } });
      }
    })
  );
  client = makeClient();
  await client.start();
}

function deactivate() {
  return client && client.stop();
}

module.exports = { activate, deactivate };
