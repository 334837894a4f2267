# The style of the plots of docs/performance.md; tests/benchmarks/report.py adds the data.
set encoding utf8
set terminal svg size 720,400 font "sans,13" background "white"
set logscale xy
set format x "10^{%T}"
set ytics ("1 ns" 1, "10 ns" 10, "100 ns" 100, "1 µs" 1e3, "10 µs" 1e4, "100 µs" 1e5, "1 ms" 1e6, \
    "10 ms" 1e7, "100 ms" 1e8, "1 s" 1e9)
set grid
set key outside right top noenhanced
