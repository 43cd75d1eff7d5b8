// Validates JSON documents by a schema:
//
//     node validate.js SCHEMA <DOCUMENTS
//
// Reads an array of documents and writes an array of what is wrong with each, null for nothing.

const fs = require('fs');
const Ajv = require('ajv');

const read = (file) => JSON.parse(fs.readFileSync(file, 'utf8'));

const ajv = new Ajv({schemaId: 'auto', allErrors: true});
ajv.addMetaSchema(require('ajv/lib/refs/json-schema-draft-04.json'));
const validate = ajv.compile(read(process.argv[2]));

const faultsOf = (document) => (validate(document) ? null : ajv.errorsText(validate.errors));
console.log(JSON.stringify(read(process.stdin.fd).map(faultsOf)));
