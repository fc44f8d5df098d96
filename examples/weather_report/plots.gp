# Draws the report's tables: gnuplot -e "folder='OUTPUT_FOLDER'" plots.gp
set datafile separator ","
set datafile missing "nan"
set key autotitle columnhead outside top center horizontal
set grid ytics lc rgb "#dddddd"
set border 3
set tics nomirror
set terminal svg size 900,320 font "sans,12" background "white"

set output folder."/monthly-means.svg"
set xlabel "month"
set ylabel "degrees Celsius"
set xrange [0.5:12.5]
set xtics 1
plot folder."/monthly-means.csv" using 1:3 with linespoints lw 2 lc rgb "#c0392b" title "highest, mean", \
     "" using 1:4 with linespoints lw 2 lc rgb "#2980b9" title "lowest, mean"

set output folder."/weather-by-year.svg"
set xlabel ""
set ylabel "days"
set xrange [*:*]
set xtics autofreq
set style data histogram
set style histogram clustered gap 1
set style fill solid 0.8 border -1
plot for [column = 2:5] folder."/weather-by-year.csv" using column:xtic(1) title columnhead(column)

set xdata time
set timefmt "%Y-%m-%d %H:%M:%S"
set output folder."/weekly-rain.svg"
set ylabel "wettest day, mm"
set format x "%b"
set xrange ["2011-12-28 00:00:00":"2012-12-31 00:00:00"]
set boxwidth 5 * 86400
plot folder."/weekly-rain.csv" using 1:2 with boxes lc rgb "#2980b9" title "rain of 2012 by the week; a gap is a dry week"

set output folder."/cities.svg"
set xrange ["2010-01-01 00:00:00":"2010-12-31 23:00:00"]
set ylabel "degrees Fahrenheit"
plot folder."/cities.csv" using 1:3 with lines lc rgb "#e67e22" title "San Francisco", \
     "" using 1:2 with lines lc rgb "#2980b9" title "Seattle", \
     "" using 1:4 with lines lc rgb "#7f8c8d" title "difference"
