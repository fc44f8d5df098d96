# Draws time over the best rival's for each workload, from the blocks that report.py puts in front: $block0 for Tessera,
# then one for each of `rivals`; and from `rows` and the names on the y axis.
set terminal svg size 900, 110 + 17 * rows font 'sans-serif,12' background '#ffffff'
set border 1 linecolor '#202124'
set title 'Time over that of the best rival, one thread (left of 1: Tessera is ahead)' textcolor '#202124'
set logscale x
set yrange [-rows:1]
set xtics nomirror textcolor '#202124' format '%g'
set ytics scale 0 textcolor '#202124'
set grid xtics ytics linecolor '#d0d0d0' linewidth 0.5
set arrow from 1, graph 0 to 1, graph 1 nohead linecolor '#202124' linewidth 1.5 front
set key below horizontal textcolor '#202124'
set style fill solid noborder
colors = '#d08700 #8a63d2 #2f8fd0 #d14f78 #7a8b2a'
plot $block0 using 1:2:(1):1:($2 - 0.36):($2 + 0.36) with boxxyerror linecolor '#1f9d6b' title 'Tessera', \
    for [k = 1:words(rivals)] '$block'.k using 1:2 with points pointtype 3 + 2 * k pointsize 0.6 \
        linecolor rgb word(colors, k) title word(rivals, k)
