// node hyperformula.mjs SHEET.csv OUT.csv: builds the sheet, reads every value, writes them as CSV.
// Prints the milliseconds of both steps; reading and writing the files is not in them.
import { readFileSync, writeFileSync } from 'node:fs';
import { performance } from 'node:perf_hooks';
import { HyperFormula } from 'hyperformula';

function toCell(text) {
    if (text.startsWith('"')) {
        return text.slice(1, -1).replaceAll('""', '"');
    }
    return text !== '' && !Number.isNaN(Number(text)) ? Number(text) : text;
}

function toCells(line) {
    return line.match(/("([^"]|"")*"|[^,]*)(,|$)/g).slice(0, -1)
        .map((cell) => toCell(cell.replace(/,$/, '')));
}

const [sheet, out] = process.argv.slice(2);
const rows = readFileSync(sheet, 'utf8').trimEnd().split('\n').map((line) => toCells(line + ','));
const start = performance.now();
const engine = HyperFormula.buildFromArray(rows, { licenseKey: 'gpl-v3' });
const built = performance.now();
const values = engine.getSheetValues(0);
const read = performance.now();
writeFileSync(out, values.map((row) => row.join(',')).join('\n') + '\n');
console.log(JSON.stringify({ build: built - start, read: read - built }));
