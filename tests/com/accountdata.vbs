' A script host holds only Variants and passes each variable by reference (VT_BYREF|VT_VARIANT):
' AccountData must write its ten figures back into the script's own variables. The data is the one
' com_planning.exe leaves: production order 2611990001 of product CP-1.
Option Explicit
Dim mrph, e, r, C1, A, P, M, K, S, SQ, AT, BN, ATi
Set mrph = CreateObject("Tovrand.clsDataPMrph")
Set e = CreateObject("Velmora.clsEntPMrph")
e.F_ProdNo = 2611990001
e.F_ItemNo = "CP-1"
C1 = 7: A = 7: P = -1: M = 7: K = 7: S = 7: SQ = 7: AT = 7: BN = 123: ATi = 7
r = mrph.AccountData(e, C1, A, P, M, K, S, SQ, AT, BN, ATi)
WScript.Echo "AccountData=" & r & " C1=" & C1 & " A=" & A & " P=" & P & " M=" & M & " K=" & K & _
  " S=" & S & " SQ=" & SQ & " AT=" & AT & " BN=" & BN & " ATi=" & ATi & " TypeName(P)=" & TypeName(P)
If r = 1 And C1 = 0 And A = 40 And P = 100 And M = 60 And K = 5 And S = 70 And SQ = 10 And AT = 40 _
   And BN = 50 And ATi = 0 And TypeName(P) = "Double" Then
  WScript.Echo "PASS"
Else
  WScript.Echo "FAIL"
End If
