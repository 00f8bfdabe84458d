; Tovrand setup for Windows client machines: Velmora.dll and Tovrand.dll of both bitnesses, registered
; with the regsvr32 of their bitness, and the connection string the DLLs read from
; HKLM\Software\Tovrand.
;
; Built by installer/build, which passes the version and the DLLs' folders:
;   makensis -DVERSION=27.0.0 -DCOMDIR=<build-com> -DOUTFILE=<exe> [-DTARGET_X86] installer/tovrand.nsi
; The default target is amd64: a 64-bit installer runs on every 64-bit Windows (and on a 64-bit-only
; Wine) and installs both the 64-bit and the 32-bit DLLs. With -DTARGET_X86 the same script builds the
; 32-bit installer, the one that also runs on 32-bit Windows, where it installs the 32-bit DLLs only.
;
; Command line (silent installs):
;   /S              no pages
;   /DSN=...        the ODBC (or MSDASQL) connection string; without it an upgrade keeps the value
;   /NOVELMORA      leaves Velmora.dll out, for a site that has its own Velmora registered

Unicode true
!ifndef TARGET_X86
  Target amd64-unicode
!endif
!ifndef VERSION
  !error "VERSION is not defined: build with installer/build (makensis -DVERSION=major.minor.patch)"
!endif
!ifndef COMDIR
  !error "COMDIR is not defined: the folder holding x86_64/ and i686/ of scripts/com-build"
!endif
!ifndef OUTFILE
  !define OUTFILE "Tovrand-${VERSION}-setup.exe"
!endif

; ${RunningX64} is a constant in the 64-bit installer: the branches it leaves unused are no fault.
!pragma warning disable 6012

!include LogicLib.nsh
!include FileFunc.nsh
!include x64.nsh
!include nsDialogs.nsh
!include Sections.nsh
!include WinMessages.nsh

!define PRODUCT "Tovrand"
!define PUBLISHER "Tovrand"
!define SETTINGS_KEY "Software\Tovrand"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tovrand"

Name "${PRODUCT} ${VERSION}"
OutFile "${OUTFILE}"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
ShowInstDetails show
ShowUninstDetails show
; The folders are fixed (one per bitness, where the registrations point), so there is no folder page.
InstallDir "$PROGRAMFILES64\${PRODUCT}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "${PUBLISHER}"
VIAddVersionKey "FileDescription" "${PRODUCT} ${VERSION} setup"
VIAddVersionKey "LegalCopyright" "${PUBLISHER}"

Var ConnectionString
Var Dir32 ; the 32-bit DLLs' folder on 64-bit Windows; "" on 32-bit Windows, where $INSTDIR holds them
Var Log
Var DsnDialog
Var DsnField
Var RegFailed ; 1 when a registration that must succeed failed

Page components
Page custom ConnectionPage ConnectionPageLeave
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; Each step goes to the details and to $INSTDIR\install.log, so that a silent install can be read after.
!macro Log text
  DetailPrint "${text}"
  ${If} $Log != ""
    FileWrite $Log "${text}$\r$\n"
  ${EndIf}
!macroend
!define Log "!insertmacro Log"

; regsvr32 of one bitness on one DLL. A 32-bit regsvr32 that is missing (a 64-bit-only system) or fails
; is written to the log and skipped: the 64-bit registrations still serve 64-bit clients, and the
; install still ends in success.
;   $R0 bits (32|64)   $R1 "" or "/u"   $R2 the DLL
!macro RegsvrBody
  Push $R3
  Push $R4
  Push $R5
  Push $R6
  ${If} $R0 == 64
  ${AndIf} ${RunningX64}
    ${DisableX64FSRedirection}
    StrCpy $R3 "$WINDIR\System32\regsvr32.exe"
  ${ElseIf} ${RunningX64}
    StrCpy $R3 "$WINDIR\SysWOW64\regsvr32.exe"
  ${Else}
    StrCpy $R3 "$WINDIR\System32\regsvr32.exe"
  ${EndIf}
  StrCpy $R5 "regsvr32 $R1"
  ${If} $R1 == ""
    StrCpy $R5 "regsvr32"
  ${EndIf}
  ; Only the 32-bit registration on 64-bit Windows may be skipped; the native one must succeed.
  ${If} $R0 == 32
  ${AndIf} ${RunningX64}
    StrCpy $R6 "skipped"
  ${Else}
    StrCpy $R6 "FAILED"
  ${EndIf}
  ${If} ${FileExists} $R3
    ClearErrors
    ExecWait '"$R3" /s $R1 "$R2"' $R4
    ${If} ${Errors}
      ${Log} "$R6: $R5 $R2 ($R0-bit): $R3 could not be started"
      ${If} $R6 == "FAILED"
        StrCpy $RegFailed 1
      ${EndIf}
    ${ElseIf} $R4 != 0
      ${Log} "$R6: $R5 $R2 ($R0-bit): $R3 ended with code $R4"
      ${If} $R6 == "FAILED"
        StrCpy $RegFailed 1
      ${EndIf}
    ${Else}
      ${Log} "$R5 $R2 ($R0-bit): done"
    ${EndIf}
  ${Else}
    ${Log} "$R6: $R5 $R2 ($R0-bit): $R3 does not exist"
    ${If} $R6 == "FAILED"
      StrCpy $RegFailed 1
    ${EndIf}
  ${EndIf}
  ${If} $R0 == 64
  ${AndIf} ${RunningX64}
    ${EnableX64FSRedirection}
  ${EndIf}
  Pop $R6
  Pop $R5
  Pop $R4
  Pop $R3
!macroend

Function Regsvr
  !insertmacro RegsvrBody
FunctionEnd
Function un.Regsvr
  !insertmacro RegsvrBody
FunctionEnd

; Copies one DLL of one bitness (unregistering the one it replaces first, so that an upgrade leaves no
; stale type library version behind) and registers it.
!macro InstallDll bits dir name
  ${If} ${FileExists} "${dir}\${name}"
    StrCpy $R0 ${bits}
    StrCpy $R1 "/u"
    StrCpy $R2 "${dir}\${name}"
    Call Regsvr
  ${EndIf}
  SetOutPath "${dir}"
  !if ${bits} == 64
    File "${COMDIR}\x86_64\${name}"
  !else
    File "${COMDIR}\i686\${name}"
  !endif
  ${Log} "installed ${dir}\${name}"
  StrCpy $R0 ${bits}
  StrCpy $R1 ""
  StrCpy $R2 "${dir}\${name}"
  Call Regsvr
!macroend

!macro InstallBoth name
  ${If} ${RunningX64}
    !insertmacro InstallDll 64 "$INSTDIR" ${name}
    !insertmacro InstallDll 32 "$Dir32" ${name}
  ${Else}
    !insertmacro InstallDll 32 "$INSTDIR" ${name}
  ${EndIf}
!macroend

Section "-Prepare"
  SetShellVarContext all
  CreateDirectory "$INSTDIR"
  ClearErrors
  FileOpen $Log "$INSTDIR\install.log" w
  ${If} ${Errors}
    StrCpy $Log ""
  ${EndIf}
  ${Log} "${PRODUCT} ${VERSION} setup"
  ${If} ${RunningX64}
    ${Log} "64-bit Windows: 64-bit DLLs in $INSTDIR, 32-bit DLLs in $Dir32"
  ${Else}
    ${Log} "32-bit Windows: 32-bit DLLs in $INSTDIR"
  ${EndIf}
SectionEnd

; Velmora first: Tovrand's objects get their connection from Velmora.clsDbConnection, so Velmora is
; registered by the time Tovrand is.
Section "Velmora.dll (entity library and connection)" SecVelmora
  !insertmacro InstallBoth Velmora.dll
SectionEnd

Section "Tovrand.dll" SecTovrand
  SectionIn RO
  !insertmacro InstallBoth Tovrand.dll
SectionEnd

; The connection string in both registry views: the 32-bit DLLs read the 32-bit view of HKLM\Software.
Section "-Settings"
  ${If} $ConnectionString != ""
    ${If} ${RunningX64}
      SetRegView 64
      WriteRegStr HKLM "${SETTINGS_KEY}" "ConnectionString" $ConnectionString
      SetRegView 32
    ${EndIf}
    WriteRegStr HKLM "${SETTINGS_KEY}" "ConnectionString" $ConnectionString
    SetRegView default
    ${Log} "wrote HKLM\${SETTINGS_KEY} ConnectionString"
  ${Else}
    ${Log} "no connection string given: HKLM\${SETTINGS_KEY} ConnectionString not written"
  ${EndIf}

  WriteUninstaller "$INSTDIR\uninstall.exe"
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT} ${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
  SetRegView default
  ${If} $RegFailed == 1
    ${Log} "setup finished with registration failures (see above)"
    SetErrorLevel 2
    MessageBox MB_ICONEXCLAMATION|MB_OK "A registration failed: see $INSTDIR\install.log." /SD IDOK
  ${Else}
    ${Log} "setup finished"
  ${EndIf}
  ${If} $Log != ""
    FileClose $Log
    StrCpy $Log ""
  ${EndIf}
SectionEnd

; The 32-bit programs' folder on 64-bit Windows. The 64-bit installer's $PROGRAMFILES32 can name the
; 64-bit folder, so the environment's ProgramFiles(x86) comes first.
!macro ProgramFiles32Body
  Push $0
  ReadEnvStr $0 "ProgramFiles(x86)"
  ${If} $0 == ""
    StrCpy $0 $PROGRAMFILES32
  ${EndIf}
  Exch $0
!macroend
Function ProgramFiles32
  !insertmacro ProgramFiles32Body
FunctionEnd
Function un.ProgramFiles32
  !insertmacro ProgramFiles32Body
FunctionEnd

Function .onInit
  ${If} ${RunningX64}
    StrCpy $INSTDIR "$PROGRAMFILES64\${PRODUCT}"
    Call ProgramFiles32
    Pop $Dir32
    StrCpy $Dir32 "$Dir32\${PRODUCT}"
    SetRegView 64
  ${Else}
    StrCpy $INSTDIR "$PROGRAMFILES\${PRODUCT}"
    StrCpy $Dir32 ""
  ${EndIf}
  ; An upgrade offers (and, silent, keeps) the connection string the site already has.
  ReadRegStr $ConnectionString HKLM "${SETTINGS_KEY}" "ConnectionString"
  SetRegView default

  ${GetParameters} $R0
  ClearErrors
  ${GetOptions} $R0 "/DSN=" $R1
  ${IfNot} ${Errors}
    StrCpy $ConnectionString $R1
  ${EndIf}
  ClearErrors
  ${GetOptions} $R0 "/NOVELMORA" $R1
  ${IfNot} ${Errors}
    !insertmacro UnselectSection ${SecVelmora}
  ${EndIf}
FunctionEnd

Function ConnectionPage
  nsDialogs::Create 1018
  Pop $DsnDialog
  ${If} $DsnDialog == error
    Abort
  ${EndIf}
  ${NSD_CreateLabel} 0 0 100% 48u "The connection the components open when a client program creates them, written to \
HKLM\${SETTINGS_KEY} as ConnectionString. An ODBC connection string, for example$\r$\n\
DRIVER={MySQL ODBC 8.0 Unicode Driver};SERVER=erpdb;DATABASE=erp;UID=erp;PWD=...;$\r$\n\
or the site's ADO string (Provider=MSDASQL;Extended Properties=$\"...$\"). Left empty, nothing is written."
  Pop $0
  ${NSD_CreateText} 0 52u 100% 12u "$ConnectionString"
  Pop $DsnField
  nsDialogs::Show
FunctionEnd

Function ConnectionPageLeave
  ${NSD_GetText} $DsnField $ConnectionString
FunctionEnd

; The uninstaller removes what the setup wrote: both bitnesses' registrations (Tovrand before
; Velmora, the reverse of their registration), the files, the connection string and the entry in the
; list of installed programs.
!macro UninstallDll bits dir name
  ${If} ${FileExists} "${dir}\${name}"
    StrCpy $R0 ${bits}
    StrCpy $R1 "/u"
    StrCpy $R2 "${dir}\${name}"
    Call un.Regsvr
    Delete "${dir}\${name}"
  ${EndIf}
!macroend

Function un.onInit
  ${If} ${RunningX64}
    Call un.ProgramFiles32
    Pop $Dir32
    StrCpy $Dir32 "$Dir32\${PRODUCT}"
  ${Else}
    StrCpy $Dir32 ""
  ${EndIf}
FunctionEnd

Section "Uninstall"
  SetShellVarContext all
  ${If} ${RunningX64}
    !insertmacro UninstallDll 64 "$INSTDIR" Tovrand.dll
    !insertmacro UninstallDll 32 "$Dir32" Tovrand.dll
    !insertmacro UninstallDll 64 "$INSTDIR" Velmora.dll
    !insertmacro UninstallDll 32 "$Dir32" Velmora.dll
    RMDir "$Dir32"
    SetRegView 32
    DeleteRegValue HKLM "${SETTINGS_KEY}" "ConnectionString"
    DeleteRegKey /ifempty HKLM "${SETTINGS_KEY}"
    SetRegView 64
  ${Else}
    !insertmacro UninstallDll 32 "$INSTDIR" Tovrand.dll
    !insertmacro UninstallDll 32 "$INSTDIR" Velmora.dll
  ${EndIf}
  DeleteRegValue HKLM "${SETTINGS_KEY}" "ConnectionString"
  DeleteRegKey /ifempty HKLM "${SETTINGS_KEY}"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
  SetRegView default
  Delete "$INSTDIR\install.log"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
SectionEnd
