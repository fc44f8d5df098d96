# Measures data.table: Rscript datatable_workloads.R DATA_FOLDER ID,ID,...
#
# Prints a line of JSON for each workload; docs/benchmarks/README.md tells the rules. A workload is what sets its inputs
# up, once for all that share it, and what is timed.
suppressPackageStartupMessages(library(data.table))
setDTthreads(1)

arguments <- commandArgs(trailingOnly = TRUE)
DATA <- arguments[1]
CHOSEN <- strsplit(arguments[2], ",")[[1]]
HERE <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
WRITTEN <- "written.csv"
ROWS <- 1000000L
TEN <- paste0("c", 0:9)
TYPES <- list(character = paste0("id", 1:3), integer = c(paste0("id", 4:6), "v1", "v2"), double = "v3")

# --- inputs

shared <- function(make) {
  made <- NULL
  function() {
    if (is.null(made)) made <<- make()
    made
  }
}

raw_file <- function(file) file.path(DATA, paste0(file, ".bin"))
raw <- function(file, kind = "double", count = ROWS) readBin(raw_file(file), kind, count, endian = "little")
raw_strings <- function(file, width) readChar(raw_file(file), rep(width, ROWS), useBytes = TRUE)
# A table of memory of its own for each column, as `:=` and setDT want it.
raw_columns <- function(file, kind = "double") {
  values <- matrix(raw(file, kind, 10 * ROWS), ROWS)
  setDT(setNames(lapply(1:10, function(k) values[, k]), TEN))
}
read_g1 <- function(path) fread(path, colClasses = TYPES, sep = ",")
g1_csv <- function() file.path(DATA, "g1.csv")

num <- shared(function() raw_columns("num"))
four <- shared(function() num()[, 1:4])
pair <- shared(function() list(num(), setDT(setNames(copy(rev(as.list(num()))), TEN))))
with_nan <- shared(function() raw_columns("numnan"))
# What is missing is NA here, and NaN is a number.
with_na <- shared(function() with_nan()[, lapply(.SD, function(column) fifelse(is.nan(column), NA_real_, column))])
i32 <- shared(function() raw_columns("i32", "integer"))
g1 <- shared(function() read_g1(g1_csv()))
marked <- function() list(g1(), g1()$v3 > 50)
shuffled <- function() list(g1(), raw("perm", "integer") + 1L)
many <- function() num()[, .(many = raw("many_key", "integer"), c0, c1)]
side <- function(name, key) {
  keys <- if (key == "skey") raw_strings(paste0(name, "/skey"), 9) else raw(paste0(name, "/key"), "integer")
  setnames(data.table(keys, raw(paste0(name, "/value"))), c(key, "value"))
}
sides <- function(key) {
  shared(function() list(left = side("join_left", key), right = side("join_right", key), key = key))
}
number_sides <- sides("key")
string_sides <- sides("skey")
times <- function() data.table(stamp = raw("times/stamp", "integer"), a = raw("times/a"), b = raw("times/b"))
text_of <- function(name) function() fread(g1_csv(), select = name, colClasses = "character", sep = ",")[[name]]
square <- function() as.data.table(matrix(raw("num"), 1000))
listed <- seq(1L, 9991L, by = 10L)

# --- workloads

reducing <- function(inputs, reduce) list(inputs, function(t) vapply(t, reduce, 0))
mapping <- function(inputs, map) list(inputs, function(t) setDT(lapply(t, map)))
combining <- function(operate) list(pair, function(p) setDT(Map(operate, p[[1]], p[[2]])))
# Two columns joined by key; the arguments of `[` differ by how rows without a partner are meant.
joining <- function(inputs, ...) list(inputs, function(s) s$right[s$left, on = s$key, ...])

by_minute <- function(t) {
  means <- t[, .(a = mean(a), b = mean(b)), by = .(minute = stamp %/% 60L)]
  minutes <- means[, seq(min(minute), max(minute))]
  means[.(minute = minutes), on = "minute"][, .(stamp = .POSIXct(minute * 60), a, b)]
}

over_gaps <- function(column) {
  there <- which(!is.na(column))
  approx(there, column[there], seq_along(column), ties = "ordered")$y
}

WORKLOADS <- list(
  read_csv = list(g1_csv, read_g1),
  write_csv = list(g1, function(t) { fwrite(t, WRITTEN); NULL }),
  sum_f64 = reducing(num, sum),
  mean_f64 = reducing(num, mean),
  max_f64 = reducing(num, max),
  var_f64 = reducing(num, var),
  std_f64 = reducing(num, sd),
  sum_i32 = reducing(i32, function(column) as.numeric(sum(column))),
  mean_nan_f64 = reducing(with_na, function(column) mean(column, na.rm = TRUE)),
  add_f64 = combining(`+`),
  mul_f64 = combining(`*`),
  div_f64 = combining(`/`),
  greater_f64 = combining(`>`),
  filter_half = list(marked, function(p) p[[1]][p[[2]]]),
  take_perm = list(shuffled, function(p) p[[1]][p[[2]]]),
  sort_i32 = list(g1, function(t) t[order(id6)]),
  sort_f64 = list(g1, function(t) t[order(v3)]),
  sort_str = list(g1, function(t) t[order(id3)]),
  sort_two = list(g1, function(t) t[order(id4, v3)]),
  group_q1 = list(g1, function(t) t[, .(v1 = sum(v1)), by = id1]),
  group_q2 = list(g1, function(t) t[, .(v1 = sum(v1)), by = .(id1, id2)]),
  group_q3 = list(g1, function(t) t[, .(v1 = sum(v1), v3 = mean(v3)), by = id3]),
  group_q4 = list(g1, function(t) t[, .(v1 = mean(v1), v2 = mean(v2), v3 = mean(v3)), by = id4]),
  group_q5 = list(g1, function(t) t[, .(v1 = sum(v1), v2 = sum(v2), v3 = sum(v3)), by = id6]),
  group_std = list(g1, function(t) t[, .(v3 = sd(v3)), by = .(id4, id5)]),
  # `:=` writes into its table, so this one is its own.
  group_transform_mean = list(function() g1()[, .(id6, v3)], function(t) t[, m := mean(v3), by = id6]$m),
  group_many = list(many, function(t) t[, .(c0 = sum(c0), c1 = sum(c1)), by = many]),
  merge_inner_i32 = joining(number_sides, nomatch = NULL),
  merge_left_i32 = joining(number_sides),
  merge_outer_i32 = list(number_sides, function(s) merge(s$left, s$right, by = s$key, all = TRUE)),
  merge_inner_str = joining(string_sides, nomatch = NULL),
  pivot_mean = list(g1, function(t) dcast(t, id4 ~ id5, fun.aggregate = mean, value.var = "v3")),
  resample_mean = list(times, by_minute),
  rolling_mean_10 = list(four, function(t) setDT(frollmean(t, 10))),
  rolling_mean_100 = list(four, function(t) setDT(frollmean(t, 100))),
  rolling_sum_1000 = list(four, function(t) setDT(frollsum(t, 1000))),
  unique_i32 = list(g1, function(t) unique(t, by = "id6")[, .(id6)]),
  unique_str = list(g1, function(t) unique(t$id3)),
  isin_i32 = list(g1, function(t) t$id6 %in% listed),
  isin_str = list(function() list(g1(), sprintf("id%010d", listed)), function(p) p[[1]]$id3 %chin% p[[2]]),
  duplicated_two = list(g1, function(t) duplicated(t, by = c("id4", "id5"))),
  cast_i32_str = mapping(i32, function(column) sprintf("%d", column)), # as.character puts the work off
  cast_f64_str = mapping(num, function(column) sprintf("%.5e", column)),
  cast_str_f64 = list(text_of("v3"), as.double),
  cast_str_i32 = list(text_of("id6"), as.integer),
  ffill_f64 = list(with_na, function(t) setDT(nafill(t, "locf"))),
  interpolate_f64 = mapping(with_na, over_gaps),
  fillna_f64 = list(with_na, function(t) setDT(nafill(t, fill = 0))),
  dropna_rows_any = list(with_na, function(t) na.omit(t)),
  isnan_f64 = mapping(with_nan, is.nan),
  diff_f64 = mapping(num, function(column) column - shift(column)),
  round2_f64 = mapping(num, function(column) round(column, 2)),
  replace_f64 = list(num, function(t) {
    sought <- t$c0[1]
    setDT(lapply(t, function(column) fifelse(column == sought, 0, column)))
  }),
  transpose_1000 = list(square, function(t) transpose(t))
)

# --- measuring

# The sum over all cells; the bytes of a file where there is no result.
check_of <- function(result, is_ordered) {
  if (is.null(result)) return(file.size(WRITTEN))
  columns <- Filter(function(column) !inherits(column, "POSIXct"), if (is.list(result)) result else list(result))
  rows <- length(columns[[1]])
  weights <- if (is_ordered) (seq_len(rows) - 1) %% 1009 + 1 else rep(1, rows)
  numbers <- function(column) as.numeric(if (is.character(column)) nchar(column) else column)
  sum(vapply(columns, function(column) sum(numbers(column) * weights, na.rm = TRUE), 0))
}

timed <- function(run, inputs) {
  gc()
  start <- Sys.time()
  result <- run(inputs)
  list(seconds = as.numeric(Sys.time() - start, units = "secs"), result = result)
}

measure <- function(workload, is_ordered) {
  run <- workload[[2]]
  inputs <- workload[[1]]()
  warm <- timed(run, inputs)
  check <- check_of(warm$result, is_ordered)
  warm$result <- NULL
  count <- if (warm$seconds > 3) 3 else min(20, max(5, round(0.5 / warm$seconds)))
  c(seconds = median(replicate(count, timed(run, inputs)$seconds)), check = check)
}

version <- paste0(packageVersion("data.table"), ", R ", getRversion())
workloads <- read.csv(file.path(HERE, "workloads.csv"))
for (id in intersect(workloads$id, intersect(CHOSEN, names(WORKLOADS)))) {
  failed <- tryCatch({
    measured <- measure(WORKLOADS[[id]], workloads$ordered[workloads$id == id] == 1)
    cat(sprintf('{"system": "data.table", "version": "%s", "workload": "%s", "seconds": %.9g, "check": %.17g}\n',
      version, id, measured[["seconds"]], measured[["check"]]))
    FALSE
  }, error = function(problem) { # a workload that fails does not end the others
    message(id, ": ", conditionMessage(problem))
    TRUE
  })
  if (failed) on_failure <- TRUE
}
quit(status = as.integer(exists("on_failure")))
