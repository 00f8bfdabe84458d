# Written by tovrand_bench: gnuplot charts.gp (in this directory) draws the two charts.
titles = " porder.QueryByStrSql.1 porder.QueryByStrSql.100 porder.GetALLChkList porder.QueryItem porder.CheckCustProdNo porder.AddRecord porder.UpdateRecord porder.UpdateOrderOutNo porder.QueryAllProdNo porderchk.QueryBOrderiBkQty porderchk.JudgeExits porderchk.UpdateRecord porderchk.QueryAll porderchk.QueryProdNoView porderchk.QueryMonthDate porderchk.QueryProdNo porderchk.AddRecord porderchk.QureyDatabase porderchk.QuerySalerID pmrph.QueryBOrderhRecordset pmrph.QueryPMrphRecordset pmrph.QueryPMrphStatus pmrph.QueryByItemNo pmrph.UpdateRecord pmrph.QueryByIDForPur pmrph.QueryByDeliverDate pmrph.QueryMonthDate pmrph.QueryProdNo pmrph.QueryStatus pmrph.QueryProdNoRecord pmrph.AddRecord1 pmrph.AddRecord pmrph.AccountData pmrpi.QueryPMrpiStatus pmrpi.UpdatePMrpiStatus pmrpi.UpdatePMrphStatus pmrpi.UpdateRecord pmrpi.QueryByID pmrpi.QueryByIDForPur pmrpi.QueryByDeliverDate pmrpi.GetRecordByCondition pmrpi.GetItemNoByProdNo pmrpi.QueryItemNo pmrpi.QueryEItemNo pmrpi.QueryItemNoRecord pmrpi.DeleteAllPMrpiRecord pmrpi.AddRecord pmrpi.getProdNoItemNo pmrpi.getProdNoItemNoByPMrpi pmrpi.QueryAllNullRecord"
set terminal pngcairo size 2100,3000 font 'DejaVu Sans,8'
set output 'time-vs-size.png'
set multiplot layout 10,5 title 'Time per call (median, microseconds) against rows in the tables read: the component on each engine, bare ODBC, bare Connector/C (both-engines)'
set logscale xy
set key top left
set grid
set format x '%.0s%c'
do for [i=0:49] {
  set title word(titles, i + 1)
  plot 'times.dat' index i using 1:2 with linespoints lw 2 title 'native', '' index i using 1:5 with linespoints lw 2 title 'comp ODBC', '' index i using 1:3 with linespoints title 'ODBC', '' index i using 1:4 with linespoints title 'Conn/C'
}
unset multiplot
reset
set terminal pngcairo size 1800,700 font 'DejaVu Sans,8'
set output 'ratios.png'
set title 'Component time over its baseline on each engine, 10000 rows (median) (both-engines)'
set style data histograms
set style histogram clustered gap 1
set style fill solid 0.8 border -1
set xtics rotate by -60 scale 0
set grid ytics
set yrange [0:*]
set arrow from graph 0, first 1 to graph 1, first 1 nohead dt 2
plot 'ratios.dat' using 2:xtic(1) title 'native engine / bare Connector/C', '' using 3 title 'ODBC engine / bare ODBC', '' using 4 title 'ODBC engine / bare Connector/C'
