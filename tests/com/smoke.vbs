' Late binding from a script host: create the component by ProgID, add a production order with a
' Velmora entity and read it back. Prints PASS only when both calls answer 1 and the entity is filled.
Option Explicit
Dim porder, e, found, r1, r2
Set porder = CreateObject("Tovrand.clsDataPOrder")
Set e = CreateObject("Velmora.clsEntPOrder")
e.F_ProdNo = 2008050051
e.F_CustNo = "VBS-1"
e.F_OrdQty = 7
e.F_Status = 1
r1 = porder.AddRecord(e)
Set found = CreateObject("Velmora.clsEntPOrder")
found.F_ProdNo = 2008050051
r2 = porder.QueryItem(found)
WScript.Echo "AddRecord=" & r1 & " QueryItem=" & r2 & " F_CustNo=" & found.F_CustNo & " F_OrdQty=" & found.F_OrdQty
If r1 = 1 And r2 = 1 And found.F_CustNo = "VBS-1" And found.F_OrdQty = 7 Then
  WScript.Echo "PASS"
Else
  WScript.Echo "FAIL"
End If
