// Measures DuckDB: node --expose-gc duckdb_workloads.js DATA_FOLDER ID,ID,...
//
// What is timed makes a table of the result of a query. Tables have no row order that a query could name but by rowid.
"use strict";

const { DOUBLE, DuckDBDataChunk, DuckDBInstance, INTEGER, VARCHAR } = require("@duckdb/node-api");
const { version } = require("@duckdb/node-api/package.json");
const { ROWS, WRITTEN, dataPath, main, raw, rawColumns, rawStrings, shared } = require("./measure.js");

const G1 = { id1: "VARCHAR", id2: "VARCHAR", id3: "VARCHAR", id4: "INTEGER", id5: "INTEGER", id6: "INTEGER",
    v1: "INTEGER", v2: "INTEGER", v3: "DOUBLE" };
const G1_NAMES = Object.keys(G1).join(", ");
const TEN = Array.from({ length: 10 }, (_, k) => `c${k}`);
const listed = Array.from({ length: 1000 }, (_, i) => 10 * i + 1);

const connected = shared(async () => (await DuckDBInstance.create(":memory:", { threads: "1" })).connect());
const query = async (sql) => (await connected()).runAndReadAll(sql);

// --- inputs

/** Makes a table of raw columns: {name: [type, values]}. */
async function fill(name, columns) {
    const types = Object.values(columns).map(([type]) => type);
    const described = Object.entries(columns).map(([column, [type]]) => `${column} ${type}`);
    await query(`CREATE TABLE ${name} (${described.join(", ")})`);
    const appender = await (await connected()).createAppender(name);
    const chunk = DuckDBDataChunk.create(types);
    const atOnce = 2048;
    for (let row = 0; row < ROWS; row += atOnce) {
        chunk.setColumns(Object.values(columns).map(([, values]) => Array.from(values.slice(row, row + atOnce))));
        appender.appendDataChunk(chunk);
    }
    appender.closeSync();
}

const numbered = (arrays, type = DOUBLE, letter = "c") => Object.fromEntries(
    arrays.map((values, k) => [letter + k, [type, values]]));
const csvOf = (types) => `read_csv('${dataPath("g1.csv")}', header = true, columns = {${
    Object.entries(types).map(([name, type]) => `${name}: '${type}'`).join(", ")}})`;
const side = (name) => fill(name, {
    key: [INTEGER, raw(`${name}/key`, Int32Array)],
    skey: [VARCHAR, rawStrings(`${name}/skey`, 9)],
    value: [DOUBLE, raw(`${name}/value`, Float64Array)],
});

const num = shared(() => fill("num", numbered(rawColumns("num", Float64Array))));
// Two tables could not be lined up, so both operands are columns of one.
const pair = shared(() => {
    const values = rawColumns("num", Float64Array);
    return fill("pair", { ...numbered(values), ...numbered([...values].reverse(), DOUBLE, "d") });
});
const withNan = shared(() => fill("with_nan", numbered(rawColumns("numnan", Float64Array))));
// What is missing is NULL here, and NaN is a number.
const withNull = shared(async () => {
    await withNan();
    await query(`CREATE TABLE with_null AS SELECT ${each((c) => `if(isnan(${c}), NULL, ${c})`)} FROM with_nan`);
});
const i32 = shared(() => fill("i32", numbered(rawColumns("i32", Int32Array), INTEGER)));
const g1 = shared(() => query(`CREATE TABLE g1 AS SELECT *, v3 > 50 AS is_marked FROM ${csvOf(G1)}`));
const texts = shared(() => query(
    `CREATE TABLE texts AS SELECT id6, v3 FROM ${csvOf({ ...G1, id6: "VARCHAR", v3: "VARCHAR" })}`));
const sides = shared(async () => {
    await side("join_left");
    await side("join_right");
});
const many = shared(() => fill("many", {
    key: [INTEGER, raw("many_key", Int32Array)], ...numbered(rawColumns("num", Float64Array, 2)),
}));
const times = shared(() => fill("times", {
    stamp: [INTEGER, raw("times/stamp", Int32Array)],
    a: [DOUBLE, raw("times/a", Float64Array)],
    b: [DOUBLE, raw("times/b", Float64Array)],
}));

// --- workloads

/** An expression for each column, under the column's name. */
function each(expression, names = TEN) {
    return names.map((name, k) => `${expression(name, k)} AS ${name}`).join(", ");
}

const keeping = (inputs, sql) => [inputs, async () => {
    await query(`CREATE TABLE result AS ${sql}`);
    return "result";
}, () => query("DROP TABLE IF EXISTS result")];
const mapping = (inputs, table, expression) => keeping(inputs, `SELECT ${each(expression)} FROM ${table}`);
const reducing = (inputs, table, name) => mapping(inputs, table, (c) => `${name}(${c})`);
const combining = (operator) => mapping(pair, "pair", (c, k) => `${c} ${operator} d${k}`);
// With rowid as the last key, equal keys keep their order.
const sorting = (keys) => keeping(g1, `SELECT ${G1_NAMES} FROM g1 ORDER BY ${keys}, rowid`);
const grouping = (keys, values) => keeping(g1, `SELECT ${keys}, ${values} FROM g1 GROUP BY ${keys}`);
const joining = (how, key) => keeping(sides, `SELECT ${key}, l.value AS left_value, r.value AS right_value
    FROM join_left l ${how} JOIN join_right r USING (${key})`);
// One thread reads the rows as they lie, and without ORDER BY the window takes them so.
const rolling = (name, rows) => keeping(num, `SELECT ${
    each((c) => `if(rowid < ${rows - 1}, NULL, ${name}(${c}) OVER above)`, TEN.slice(0, 4))
} FROM num WINDOW above AS (ROWS ${rows - 1} PRECEDING)`);

const workloads = {
    read_csv: keeping(() => undefined, `SELECT * FROM ${csvOf(G1)}`),
    write_csv: [g1, async () => {
        await query(`COPY (SELECT ${G1_NAMES} FROM g1) TO '${WRITTEN}' (FORMAT csv, HEADER)`);
    }],
    sum_f64: reducing(num, "num", "sum"),
    mean_f64: reducing(num, "num", "avg"),
    max_f64: reducing(num, "num", "max"),
    var_f64: reducing(num, "num", "var_samp"),
    std_f64: reducing(num, "num", "stddev_samp"),
    skew_f64: reducing(num, "num", "skewness"),
    kurt_f64: reducing(num, "num", "kurtosis"),
    sum_i32: reducing(i32, "i32", "sum"),
    mean_nan_f64: reducing(withNull, "with_null", "avg"),
    add_f64: combining("+"),
    mul_f64: combining("*"),
    div_f64: combining("/"),
    greater_f64: combining(">"),
    filter_half: keeping(g1, `SELECT ${G1_NAMES} FROM g1 WHERE is_marked`),
    sort_i32: sorting("id6"),
    sort_f64: sorting("v3"),
    sort_str: sorting("id3"),
    sort_two: sorting("id4, v3"),
    group_q1: grouping("id1", "sum(v1)"),
    group_q2: grouping("id1, id2", "sum(v1)"),
    group_q3: grouping("id3", "sum(v1), avg(v3)"),
    group_q4: grouping("id4", "avg(v1), avg(v2), avg(v3)"),
    group_q5: grouping("id6", "sum(v1), sum(v2), sum(v3)"),
    group_std: grouping("id4, id5", "stddev_samp(v3)"),
    // A window over id6 would lose the order of rows, which a join to its left side keeps.
    group_transform_mean: keeping(g1, `SELECT mean FROM g1 LEFT JOIN
        (SELECT id6, avg(v3) AS mean FROM g1 GROUP BY id6) USING (id6)`),
    group_many: keeping(many, "SELECT key, sum(c0), sum(c1) FROM many GROUP BY key"),
    merge_inner_i32: joining("INNER", "key"),
    merge_left_i32: joining("LEFT", "key"),
    merge_outer_i32: joining("FULL", "key"),
    merge_inner_str: joining("INNER", "skey"),
    pivot_mean: keeping(g1, "PIVOT g1 ON id5 USING avg(v3) GROUP BY id4"),
    resample_mean: keeping(times, `WITH minutes AS
        (SELECT stamp // 60 AS minute, avg(a) AS a, avg(b) AS b FROM times GROUP BY minute)
        SELECT to_timestamp(minute * 60) AS stamp, a, b
        FROM (SELECT unnest(range(min(minute), max(minute) + 1)) AS minute FROM minutes)
        LEFT JOIN minutes USING (minute)
        ORDER BY minute`),
    rolling_mean_10: rolling("avg", 10),
    rolling_mean_100: rolling("avg", 100),
    rolling_sum_1000: rolling("sum", 1000),
    unique_i32: keeping(g1, "SELECT DISTINCT id6 FROM g1"),
    unique_str: keeping(g1, "SELECT DISTINCT id3 FROM g1"),
    isin_i32: keeping(g1, `SELECT id6 IN (${listed.join(", ")}) AS is_listed FROM g1`),
    isin_str: keeping(g1, `SELECT id3 IN (${
        listed.map((i) => `'id${`${i}`.padStart(10, "0")}'`).join(", ")}) AS is_listed FROM g1`),
    duplicated_two: keeping(g1, `SELECT g1.rowid <> first AS is_repeated FROM g1 LEFT JOIN
        (SELECT id4, id5, min(rowid) AS first FROM g1 GROUP BY id4, id5) USING (id4, id5)`),
    cast_i32_str: mapping(i32, "i32", (c) => `${c}::VARCHAR`),
    cast_f64_str: mapping(num, "num", (c) => `format('{:.5e}', ${c})`),
    cast_str_f64: keeping(texts, "SELECT v3::DOUBLE AS v3 FROM texts"),
    cast_str_i32: keeping(texts, "SELECT id6::INTEGER AS id6 FROM texts"),
    // Several columns without ORDER BY come out wrong in this version.
    ffill_f64: mapping(withNull, "with_null", (c) => `last_value(${c} IGNORE NULLS) OVER (ORDER BY rowid)`),
    interpolate_f64: mapping(withNull, "with_null", (c) => `fill(${c}) OVER (ORDER BY rowid)`),
    fillna_f64: mapping(withNull, "with_null", (c) => `coalesce(${c}, 0)`),
    dropna_rows_any: keeping(withNull,
        `SELECT * FROM with_null WHERE ${TEN.map((c) => `${c} IS NOT NULL`).join(" AND ")}`),
    isnan_f64: mapping(withNan, "with_nan", (c) => `isnan(${c})`),
    diff_f64: mapping(num, "num", (c) => `${c} - lag(${c}) OVER ()`),
    round2_f64: mapping(num, "num", (c) => `round(${c}, 2)`),
    replace_f64: mapping(num, "num", (c) => `if(${c} = '${raw("num", Float64Array)[0]}'::DOUBLE, 0, ${c})`),
};

/** The sum over all cells of a table. */
async function checkOf(table, isOrdered) {
    const columns = (await query(`DESCRIBE ${table}`)).getRows().filter(([, type]) => !type.startsWith("TIMESTAMP"));
    const sums = columns.map(([name, type]) => {
        const cell = type === "VARCHAR" ? `length("${name}")` : `"${name}"`;
        return `coalesce(sum(${cell}::DOUBLE * ${isOrdered ? "(rowid % 1009 + 1)" : "1"}), 0)`;
    });
    return (await query(`SELECT ${sums.join(" + ")} FROM ${table}`)).getRows()[0][0];
}

main("duckdb", `node-api ${version}, Node.js ${process.versions.node}`, workloads, checkOf);
