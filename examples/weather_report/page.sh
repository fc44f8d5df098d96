#!/usr/bin/env bash
# Draws the tables that weather_report wrote into a folder, and puts the plots into one page that needs no other file.
#   page.sh FOLDER
set -euo pipefail
folder=$1

gnuplot -e "folder='$folder'" "$(dirname "$0")/plots.gp"
{
    echo '<!DOCTYPE html><html lang="en"><head><meta charset="utf-8"><title>Weather report</title>'
    echo '<style>body { font-family: sans-serif; max-width: 60em; margin: 2em auto; } svg { width: 100%; height: auto; }'
    echo '</style></head><body><h1>Weather report</h1>'
    while IFS='|' read -r name title; do
        echo "<h2>$title</h2>"
        # Each plot names its shapes alike, so they get names of their own here.
        sed -e '1,/^<svg/{/^<?xml/d}' -e "s/\(id='\|href='#\|url(#\)/&$name-/g" "$folder/$name.svg"
    done <<'PLOTS'
monthly-means|Seattle month by month, 2012 to 2015
weather-by-year|Kinds of weather by year
weekly-rain|Rain week by week
cities|Two cities hour by hour, 2010
PLOTS
    echo '</body></html>'
} > "$folder/weather-report.html"
echo "weather report: $folder/weather-report.html"
