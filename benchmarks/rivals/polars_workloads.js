// Measures Polars: node --expose-gc polars_workloads.js DATA_FOLDER ID,ID,...
"use strict";

const polars = require("nodejs-polars");
const { version } = require("nodejs-polars/package.json");
const { WRITTEN, dataPath, main, raw, rawColumns, rawStrings, shared } = require("./measure.js");

const { col, lit } = polars;
const every = col("*");
const listed = Array.from({ length: 1000 }, (_, i) => 10 * i + 1);

// --- inputs

const table = (columns) => polars.DataFrame(
    Object.entries(columns).map(([name, values]) => polars.Series(name, values)));
const numbered = (arrays, letter = "c") => table(
    Object.fromEntries(arrays.map((values, k) => [letter + k, values])));

const num = shared(() => numbered(rawColumns("num", Float64Array)));
const four = shared(() => numbered(rawColumns("num", Float64Array, 4)));
const i32 = shared(() => numbered(rawColumns("i32", Int32Array)));
// Expressions take their operands from one table.
const pair = shared(() => num().hstack(numbered(rawColumns("num", Float64Array).reverse(), "d")));
const withNan = shared(() => numbered(rawColumns("numnan", Float64Array)));
// What is missing is null here, and NaN is a number.
const withNull = shared(() => withNan().select(every.fillNan(lit(null))));

function readG1(changes = {}) {
    const types = { id1: polars.String, id2: polars.String, id3: polars.String, id4: polars.Int32, id5: polars.Int32,
        id6: polars.Int32, v1: polars.Int32, v2: polars.Int32, v3: polars.Float64, ...changes };
    return polars.readCSV(dataPath("g1.csv"), { schema: types, rechunk: true });
}

const g1 = shared(() => readG1());
const marked = shared(() => g1().withColumns(col("v3").gt(50).alias("isMarked")));
const shuffled = () => ({ all: g1(), places: polars.Series("places", new Uint32Array(raw("perm", Int32Array))) });
const many = () => table({ key: raw("many_key", Int32Array), a: rawColumns("num", Float64Array, 1)[0],
    b: rawColumns("num", Float64Array, 2)[1] });

const side = (name, key) => table({
    [key]: key === "skey" ? rawStrings(`${name}/skey`, 9) : raw(`${name}/key`, Int32Array),
    value: raw(`${name}/value`, Float64Array),
});
const sides = (key) => shared(() => ({ left: side("join_left", key), right: side("join_right", key), key }));
const numberSides = sides("key"), stringSides = sides("skey");

const times = () => table({
    stamp: raw("times/stamp", Int32Array), a: raw("times/a", Float64Array), b: raw("times/b", Float64Array),
}).withColumns(col("stamp").cast(polars.Int64).mul(1000).cast(polars.Datetime("ms")));
const textOf = (column) => () => readG1({ [column]: polars.String }).select(column);
const square = () => numbered(rawColumns("num", Float64Array, 1000, 1000));
const lookedUp = (sought) => () => ({ all: g1(), sought: lit(polars.Series("sought", sought)) });

// --- workloads

const selecting = (inputs, expression) => [inputs, (t) => t.select(expression)];
const combining = (operate) => [pair, (t) => t.select(
    ...listed.slice(0, 10).map((_, k) => operate(col(`c${k}`), col(`d${k}`)).alias(`c${k}`)))];
const sorting = (...keys) => [g1, (t) => t.sort({ by: keys, maintainOrder: true })];
const grouping = (inputs, keys, ...values) => [inputs,
    (t) => t.lazy().groupBy(keys, false).agg(...values).collectSync()];
const joining = (inputs, how) => [inputs, ({ left, right, key }) => left.join(right, { on: key, how, coalesce: true })];
const sum = (...names) => names.map((name) => col(name).sum());
const mean = (...names) => names.map((name) => col(name).mean());

function byMinute(t) {
    const minute = { every: "60s" };
    const means = t.lazy().sort("stamp").groupByDynamic({ indexColumn: "stamp", period: "60s", ...minute })
        .agg(...mean("a", "b")).collectSync();
    return means.upsample({ timeColumn: "stamp", ...minute });
}

const workloads = {
    read_csv: [() => undefined, () => readG1()],
    write_csv: [g1, (t) => void t.writeCSV(WRITTEN)],
    sum_f64: selecting(num, every.sum()),
    mean_f64: selecting(num, every.mean()),
    max_f64: selecting(num, every.max()),
    var_f64: selecting(num, every.var()),
    std_f64: selecting(num, every.std()),
    skew_f64: selecting(num, every.skew(false)),
    kurt_f64: selecting(num, every.kurtosis(true, false)),
    sum_i32: selecting(i32, every.sum()), // stays int32, which holds these
    mean_nan_f64: selecting(withNull, every.mean()),
    add_f64: combining((a, b) => a.add(b)),
    mul_f64: combining((a, b) => a.mul(b)),
    div_f64: combining((a, b) => a.div(b)),
    greater_f64: combining((a, b) => a.gt(b)),
    filter_half: [marked, (t) => t.lazy().filter(col("isMarked")).select(...g1().columns).collectSync()],
    take_perm: [shuffled, ({ all, places }) => all.select(every.gather(places))],
    sort_i32: sorting("id6"),
    sort_f64: sorting("v3"),
    sort_str: sorting("id3"),
    sort_two: sorting("id4", "v3"),
    group_q1: grouping(g1, ["id1"], ...sum("v1")),
    group_q2: grouping(g1, ["id1", "id2"], ...sum("v1")),
    group_q3: grouping(g1, ["id3"], ...sum("v1"), ...mean("v3")),
    group_q4: grouping(g1, ["id4"], ...mean("v1", "v2", "v3")),
    group_q5: grouping(g1, ["id6"], ...sum("v1", "v2", "v3")),
    group_std: grouping(g1, ["id4", "id5"], col("v3").std()),
    group_transform_mean: selecting(g1, col("v3").mean().over("id6")),
    group_many: grouping(many, ["key"], ...sum("a", "b")),
    merge_inner_i32: joining(numberSides, "inner"),
    merge_left_i32: joining(numberSides, "left"),
    merge_outer_i32: joining(numberSides, "full"),
    merge_inner_str: joining(stringSides, "inner"),
    pivot_mean: [g1, (t) => t.pivot("v3", { index: "id4", on: "id5", aggregateFunc: "mean" })],
    resample_mean: [times, byMinute],
    rolling_mean_10: selecting(four, every.rollingMean({ windowSize: 10 })),
    rolling_mean_100: selecting(four, every.rollingMean({ windowSize: 100 })),
    rolling_sum_1000: selecting(four, every.rollingSum({ windowSize: 1000 })),
    unique_i32: selecting(g1, col("id6").unique()),
    unique_str: selecting(g1, col("id3").unique()),
    isin_i32: [lookedUp(new Int32Array(listed)), ({ all, sought }) => all.select(col("id6").isIn(sought))],
    isin_str: [lookedUp(listed.map((i) => `id${`${i}`.padStart(10, "0")}`)),
        ({ all, sought }) => all.select(col("id3").isIn(sought))],
    duplicated_two: selecting(g1, polars.struct([col("id4"), col("id5")]).isFirstDistinct().not()),
    cast_i32_str: selecting(i32, every.cast(polars.String)),
    cast_f64_str: selecting(num, every.cast(polars.String)), // the shortest text; it has no other form
    cast_str_f64: selecting(textOf("v3"), col("v3").cast(polars.Float64)),
    cast_str_i32: selecting(textOf("id6"), col("id6").cast(polars.Int32)),
    ffill_f64: selecting(withNull, every.forwardFill()),
    interpolate_f64: selecting(withNull, every.interpolate()),
    fillna_f64: selecting(withNull, every.fillNull(0)),
    dropna_rows_any: [withNull, (t) => t.dropNulls()],
    isnan_f64: selecting(withNan, every.isNan()),
    diff_f64: selecting(num, every.diff(1)),
    round2_f64: selecting(num, every.round(2)),
    replace_f64: [() => ({ all: num(), sought: num().getColumn("c0").get(0) }),
        ({ all, sought }) => all.select(every.replace(sought, 0))],
    transpose_1000: [square, (t) => t.transpose()],
};

/** The sum over all cells of a table. */
function checkOf(result, isOrdered) {
    const weight = isOrdered ? col("place").modulo(1009).add(1).cast(polars.Float64) : lit(1.0);
    const sums = result.getColumns().flatMap((column) => {
        const cells = col(column.name);
        const isText = column.dtype.variant === "String";
        if (!isText && !column.isNumeric() && !column.isBoolean()) return [];
        const numbers = (isText ? cells.str.lengths() : cells).cast(polars.Float64);
        return [numbers.fillNan(lit(null)).mul(weight).sum()];
    });
    return result.withRowIndex("place").select(...sums).row(0).reduce((total, sum) => total + sum, 0);
}

main("polars", `nodejs-polars ${version}, Node.js ${process.versions.node}`, workloads, checkOf);
