// Tokenizes the sample script with the TextMate grammar and checks the scope at each place listed
// in expect.txt. With the tokenizer libraries missing it falls back to checking the grammar's
// structure and each rule's pattern on its own.
//
//   node textmate_check.js <grammar.json> <sample.kvx> <expect.txt> [node_modules folder]
'use strict';
const fs = require('fs');
const path = require('path');

const [grammarPath, samplePath, expectPath, modules] = process.argv.slice(2);
const grammarText = fs.readFileSync(grammarPath, 'utf8');
const sample = fs.readFileSync(samplePath, 'utf8').split('\n');
const rows = fs.readFileSync(expectPath, 'utf8').split('\n')
  .filter((l) => l && !l.startsWith('#'))
  .map((l) => { const [line, text, , scope] = l.split('|'); return { line: Number(line), text, scope }; });
const failures = [];

function load(name) {
  try {
    return require(modules ? path.resolve(modules, name) : name);
  } catch (e) {
    return null;
  }
}

async function withLibraries(vsctm, oniguruma) {
  const wasm = fs.readFileSync(path.join(path.dirname(require.resolve(path.resolve(modules, 'vscode-oniguruma'))), 'onig.wasm'));
  await oniguruma.loadWASM(wasm.buffer);
  const registry = new vsctm.Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
      createOnigString: (s) => new oniguruma.OnigString(s),
    }),
    loadGrammar: async (scopeName) =>
      (scopeName === 'source.kvexec' ? vsctm.parseRawGrammar(grammarText, grammarPath) : null),
  });
  const grammar = await registry.loadGrammar('source.kvexec');
  let state = vsctm.INITIAL;
  const tokens = [];
  for (const text of sample) {
    const r = grammar.tokenizeLine(text, state);
    tokens.push(r.tokens);
    state = r.ruleStack;
  }
  for (const row of rows) {
    const lineText = sample[row.line - 1];
    const col = lineText === undefined ? -1 : lineText.indexOf(row.text);
    if (col < 0) { failures.push(`line ${row.line}: "${row.text}" not found in the sample`); continue; }
    const token = tokens[row.line - 1].find((t) => t.startIndex <= col && col < t.endIndex);
    const scopes = token ? token.scopes : [];
    if (!scopes.includes(row.scope)) {
      failures.push(`line ${row.line} "${row.text}": expected ${row.scope}, got ${scopes.join(' ')}`);
    }
  }
  return 'tokenized with vscode-textmate';
}

// Without the libraries: the grammar must be well formed, every pattern must compile, and for each
// expected scope the rule that names it must match at the expected place.
function withoutLibraries() {
  const g = JSON.parse(grammarText);
  if (g.scopeName !== 'source.kvexec') failures.push('scopeName is not source.kvexec');
  if (!Array.isArray(g.patterns) || !g.repository) failures.push('patterns or repository missing');
  const rules = [];
  const collect = (rule, where) => {
    if (typeof rule.begin === 'string' && typeof rule.end === 'string') {
      // A begin/end rule on one line: its begin, then its inner patterns or any character, then
      // its end, as the tokenizer would consume them.
      const inner = (rule.patterns || [])
        .map((p) => (p.include ? g.repository[p.include.replace(/^#/, '')] || {} : p).match)
        .filter(Boolean).map((m) => m.replace(/^\(\?i\)/, ''));
      const strip = (m) => m.replace(/^\(\?i\)/, '');
      const src = `${strip(rule.begin)}(?:${inner.concat(['.']).join('|')})*?(?:${strip(rule.end)})`;
      try {
        rules.push({ where, key: 'begin..end', re: new RegExp(src, rule.begin.startsWith('(?i)') ? 'i' : ''), names: namesOf(rule) });
      } catch (e) {
        failures.push(`${where} does not compile as one line: ${e.message}`);
      }
    }
    for (const key of ['match', 'begin', 'end']) {
      if (rule[key] === undefined) continue;
      if (typeof rule[key] !== 'string') { failures.push(`${where}.${key} is not a string`); continue; }
      let src = rule[key];
      let flags = '';
      if (src.startsWith('(?i)')) { src = src.slice(4); flags = 'i'; }
      try {
        rules.push({ where, key, re: new RegExp(src, flags), names: namesOf(rule) });
      } catch (e) {
        failures.push(`${where}.${key} does not compile: ${e.message}`);
      }
    }
    (rule.patterns || []).forEach((p, i) => collect(p, `${where}.patterns[${i}]`));
  };
  const namesOf = (rule) => [rule.name, rule.contentName]
    .concat(Object.values(rule.captures || {}).map((c) => c.name))
    .concat(Object.values(rule.beginCaptures || {}).map((c) => c.name))
    .filter(Boolean);
  for (const inc of g.patterns) {
    const key = (inc.include || '').replace(/^#/, '');
    if (!g.repository[key]) failures.push(`include ${inc.include} has no repository entry`);
  }
  for (const [key, rule] of Object.entries(g.repository)) collect(rule, key);
  for (const row of rows) {
    const lineText = sample[row.line - 1] || '';
    const col = lineText.indexOf(row.text);
    const candidates = rules.filter((r) => r.names.includes(row.scope));
    if (candidates.length === 0) { failures.push(`no rule names ${row.scope}`); continue; }
    if (row.scope === 'string.unquoted.text.kvexec') continue;  // content of a begin/end block
    const hit = candidates.some((r) => {
      const re = new RegExp(r.re.source, r.re.flags + 'g');
      let m;
      while ((m = re.exec(lineText)) !== null) {
        if (m.index <= col && col < m.index + Math.max(m[0].length, 1)) return true;
        if (m[0].length === 0) re.lastIndex++;
      }
      return false;
    });
    if (!hit) failures.push(`line ${row.line} "${row.text}": no rule for ${row.scope} matches there`);
  }
  return 'checked without vscode-textmate (libraries not installed)';
}

(async () => {
  const vsctm = modules ? load('vscode-textmate') : null;
  const oniguruma = modules ? load('vscode-oniguruma') : null;
  let how;
  try {
    how = vsctm && oniguruma ? await withLibraries(vsctm, oniguruma) : withoutLibraries();
  } catch (e) {
    failures.push(`grammar failed to load: ${e.message}`);
  }
  if (failures.length) {
    console.log(failures.join('\n'));
    process.exit(1);
  }
  console.log(`${rows.length} places checked, ${how}`);
})();
