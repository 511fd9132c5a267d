// Checks glTF files with the format's own validator. Usage: node gltf_validate.cjs FILE...
// Answers 0 if there is no error, 1 if there is one, 3 if the package gltf-validator is not to be found
// (NODE_PATH can name the folder node_modules that has it).

const fs = require("fs");
const path = require("path");

let validator;
try {
    validator = require("gltf-validator");
} catch (missing) {
    console.error("the package gltf-validator is not installed");
    process.exit(3);
}

async function check(file) {
    const folder = path.dirname(file);
    const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
        uri: path.basename(file),
        externalResourceFunction: async (uri) =>
            new Uint8Array(fs.readFileSync(path.join(folder, decodeURIComponent(uri)))),
    });
    const errors = report.issues.messages.filter((message) => message.severity === 0);
    for (const error of errors.slice(0, 10))
        console.error(`${path.basename(file)}: ${error.code} at ${error.pointer}: ${error.message}`);
    return report.issues.numErrors;
}

(async () => {
    let errors = 0;
    for (const file of process.argv.slice(2)) errors += await check(file);
    process.exit(errors === 0 ? 0 : 1);
})().catch((failure) => {
    console.error(String(failure));
    process.exit(1);
});
