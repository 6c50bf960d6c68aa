// Reads a JSON array of texts, prints a JSON array of what a script engine makes of "(" + text + ")": a number as its
// text, or null where there is none. Forms that the engine could run but Ostrel gives no value are null as well.
'use strict';
const fs = require('fs');
const acorn = require('internal/deps/acorn/acorn/dist/acorn');

const WithoutValue = new Set(['CallExpression', 'ArrowFunctionExpression', 'AssignmentExpression', 'UpdateExpression',
    'MemberExpression', 'ChainExpression']);

function hasNoValue(node) {
    if (node === null || typeof node !== 'object')
        return false;
    if (WithoutValue.has(node.type) || (node.type === 'Literal' && node.regex))
        return true;
    return Object.values(node).some(hasNoValue);
}

function evaluate(text) {
    const script = '(' + text + ')';
    try {
        const tree = acorn.parse(script, { ecmaVersion: 'latest', sourceType: 'script' });
        if (hasNoValue(tree))
            return null;
        const value = Number((0, eval)(script));
        return Number.isFinite(value) ? (Object.is(value, -0) ? '-0' : String(value)) : null;
    } catch {
        return null;
    }
}

process.stdout.write(JSON.stringify(JSON.parse(fs.readFileSync(0, 'utf8')).map(evaluate)));
