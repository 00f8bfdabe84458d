' A client of an installed setup: the component created by ProgID finds its connection through the
' registry value the setup wrote (no TOVRAND_DSN), and QueryItem reads the production order the test
' put in the database. Prints PASS only when the answer and the entity's fields are right.
Option Explicit
Dim porder, found, r
Set porder = CreateObject("Tovrand.clsDataPOrder")
Set found = CreateObject("Velmora.clsEntPOrder")
found.F_ProdNo = 2008050077
r = porder.QueryItem(found)
WScript.Echo "QueryItem=" & r & " F_CustNo=" & found.F_CustNo & " F_OrdQty=" & found.F_OrdQty
If r = 1 And found.F_CustNo = "SETUP-1" And found.F_OrdQty = 5 Then
  WScript.Echo "PASS"
Else
  WScript.Echo "FAIL"
End If
