// Prints what the TextMate grammar makes of each file, a line of JSON for each: the innermost scope
// of every character of every line.
//   node textmate_scopes.js node_modules grammar file...
const fs = require("fs");
const path = require("path");

const [modules, grammarPath, ...files] = process.argv.slice(2);
const load = (name) => require(path.resolve(modules, name));
const textmate = load("vscode-textmate");
const oniguruma = load("vscode-oniguruma");

async function main() {
  const wasm = path.resolve(modules, "vscode-oniguruma/release/onig.wasm");
  await oniguruma.loadWASM(fs.readFileSync(wasm).buffer);
  const registry = new textmate.Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
      createOnigString: (text) => new oniguruma.OnigString(text),
    }),
    loadGrammar: async () =>
      textmate.parseRawGrammar(fs.readFileSync(grammarPath, "utf8"), grammarPath),
  });
  const grammar = await registry.loadGrammar("source.tessaron");
  for (const file of files) {
    let stack = textmate.INITIAL;
    const lines = [];
    for (const line of fs.readFileSync(file, "utf8").replace(/\n$/, "").split("\n")) {
      const result = grammar.tokenizeLine(line, stack);
      stack = result.ruleStack;
      const scopes = [];
      for (const token of result.tokens)
        for (let at = token.startIndex; at < Math.min(token.endIndex, line.length); ++at)
          scopes.push(token.scopes[token.scopes.length - 1]);
      lines.push(scopes);
    }
    console.log(JSON.stringify(lines));
  }
}

main().catch((error) => {
  console.error(error);
  process.exit(1);
});
