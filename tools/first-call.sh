#!/bin/sh
# SPDX-License-Identifier: MIT
# The first 8192 x 8192 Image_Resample (and OpenCV's resize, where the
# benchmark has it) over N fresh processes: median and worst of the
# processor time (user and system, which includes the system's work on the
# new memory), and of the real time, in ms.
# Usage: tools/first-call.sh [build dir] [N]
build=${1:-build}
runs=${2:-20}
for filter in Image_Resample CV_resize; do
    i=0
    : > /tmp/first-call.$$
    while [ "$i" -lt "$runs" ]; do
        "$build/bench/first_resample_bench" --benchmark_filter="$filter" \
            --benchmark_format=csv 2>/dev/null | awk -F, 'NR > 1 { print $4, $3 }' \
            >> /tmp/first-call.$$
        i=$((i + 1))
    done
    [ -s /tmp/first-call.$$ ] || continue
    for column in 1 2; do
        sort -n -k$column /tmp/first-call.$$ | awk -v name="$filter" -v column=$column '
            { t[NR] = $column }
            END { m = NR % 2 ? t[(NR + 1) / 2] : (t[NR / 2] + t[NR / 2 + 1]) / 2
                  printf "%s %s: %d runs, median %.1f ms, worst %.1f ms, worst/median %.2f\n",
                         name, column == 1 ? "cpu " : "real", NR, m, t[NR], t[NR] / m }'
    done
done
rm -f /tmp/first-call.$$
