# Written by tovrand_load: gnuplot charts.gp (in this directory) draws load.png.
titles = "clsDataPOrderChk.AddRecord clsDataPOrderChk.UpdateRecord clsDataPOrder.QueryItem clsDataPOrder.QueryByStrSql clsDataPOrder.AddRecord clsDataPMrph.AddRecord1 clsDataPMrph.QueryByIDForPur clsDataPMrpi.QueryByIDForPur clsDataPMrpi.DeleteAllPMrpiRecord"
set terminal pngcairo size 1400,1100 font 'DejaVu Sans,8'
set output 'load.png'
set multiplot layout 2,2 title 'Concurrent clients: calls per second and 99th-percentile latency per member'
set logscale x
set grid
set key outside right top
set xlabel 'clients'
set xtics (16, 64, 200)
set xrange [12.8:250]
set title 'single: calls per second'
unset logscale y
plot for [i=0:8] 'load-single.dat' index i using 1:2 with linespoints title word(titles, i + 1)
set title 'cluster: calls per second'
unset logscale y
plot for [i=0:8] 'load-cluster.dat' index i using 1:2 with linespoints title word(titles, i + 1)
set title 'single: p99 latency (ms)'
set logscale y
plot for [i=0:8] 'load-single.dat' index i using 1:3 with linespoints title word(titles, i + 1)
set title 'cluster: p99 latency (ms)'
set logscale y
plot for [i=0:8] 'load-cluster.dat' index i using 1:3 with linespoints title word(titles, i + 1)
unset multiplot
