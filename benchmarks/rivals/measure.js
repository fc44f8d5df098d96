// The frame of the runners on Node: raw data, timing, and a line of JSON for each workload, by the rules in
// docs/benchmarks/README.md. A runner is called with DATA_FOLDER and ID,ID,...
"use strict";

const fs = require("node:fs");
const path = require("node:path");
const { performance } = require("node:perf_hooks");

const ROWS = 1_000_000;
const WRITTEN = "written.csv";
const [data, chosen] = process.argv.slice(2);

const dataPath = (file) => path.resolve(data, file);

/** The numbers of a raw file, as a typed array of the given kind. */
function raw(file, Kind) {
    const { buffer, byteOffset, length } = fs.readFileSync(dataPath(`${file}.bin`));
    return new Kind(buffer, byteOffset, length / Kind.BYTES_PER_ELEMENT);
}

/** Those of a raw file of several columns, cut into columns, each in memory of its own. */
function rawColumns(file, Kind, count = 10, rows = ROWS) {
    const all = raw(file, Kind);
    return Array.from({ length: count }, (_, k) => all.slice(k * rows, (k + 1) * rows));
}

/** The strings of a raw file, all of one width. */
function rawStrings(file, width) {
    const characters = fs.readFileSync(dataPath(`${file}.bin`), "latin1");
    return Array.from({ length: ROWS }, (_, row) => characters.substr(row * width, width));
}

/** A function that makes a value at its first call and returns it from then on. */
function shared(make) {
    let made;
    return () => (made ??= { value: make() }).value;
}

function medianOf(values) {
    const ascending = [...values].sort((a, b) => a - b);
    return (ascending[(values.length - 1) >> 1] + ascending[values.length >> 1]) / 2;
}

async function secondsOf([, run, release], inputs) {
    await release?.();
    global.gc();
    await new Promise(setImmediate); // what was collected gives its native memory back here
    const start = performance.now();
    const result = await run(inputs);
    return [(performance.now() - start) / 1000, result];
}

async function measure(workload, isOrdered, checkOf) {
    const inputs = await workload[0]();
    let [warm, result] = await secondsOf(workload, inputs);
    const check = result === undefined ? fs.statSync(WRITTEN).size : await checkOf(result, isOrdered);
    result = undefined;
    const count = warm > 3 ? 3 : Math.min(20, Math.max(5, Math.round(0.5 / warm)));
    const seconds = [];
    while (seconds.length < count) seconds.push((await secondsOf(workload, inputs))[0]);
    return { seconds: medianOf(seconds), check };
}

/** Measures the chosen ones of a system's workloads, each an array of what sets its inputs up, what is timed, and, if
 *  need be, what gives up the last result. */
async function main(system, version, workloads, checkOf) {
    const listed = fs.readFileSync(path.join(__dirname, "workloads.csv"), "utf8").split("\n").slice(1);
    for (const [workload, , ordered] of listed.map((line) => line.split(","))) {
        if (!chosen.split(",").includes(workload) || !(workload in workloads)) continue;
        try {
            const line = await measure(workloads[workload], ordered === "1", checkOf);
            console.log(JSON.stringify({ system, version, workload, ...line }));
        } catch (error) { // a workload that fails does not end the others
            console.error(workload, error);
            process.exitCode = 1;
        }
    }
}

module.exports = { ROWS, WRITTEN, dataPath, main, raw, rawColumns, rawStrings, shared };
