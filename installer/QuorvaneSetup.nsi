; QuorvaneSetup.exe: installs quorvane.exe and its help into the program folder, with a Start
; Menu entry and an entry in the system's list of programs, and writes the uninstaller.
;
; Built by `make dist` (cmake --build --preset windows --target dist), which passes:
;   VERSION   the version, from the project's VERSION file
;   PROGRAM   the path of quorvane.exe
;   HELP      the path of orlavine.chm
;   ICON      the program icon
;   OUTFILE   where the installer goes
;
; `QuorvaneSetup.exe /S` installs without a window (into the default folder, or /D=<folder> given
; last on the command line); `Uninstall.exe /S` removes the program without a window and leaves
; the user's data folder alone.

Unicode true
; The program is a 64-bit one, and so are the installer and the uninstaller: they run where it runs,
; and see the registry and the program folders as it does.
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel admin

!ifndef VERSION
  !error "VERSION is not defined: build the installer with make dist"
!endif

!define PRODUCT "Quorvane"
!define PUBLISHER "Talvenor"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quorvane"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define RUN_VALUE "Talvenor Quorvane"
!define PRODUCT_KEY "Software\Talvenor\Mirefold\Quorvane"
; "My Computer"'s class: Windows always has an icon for it, a new Wine prefix has none.
!define MY_COMPUTER_ICON_KEY "CLSID\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\DefaultIcon"
!define MY_COMPUTER_ICON "%SystemRoot%\explorer.exe,0"

!include "MUI2.nsh"
!include "LogicLib.nsh"
!include "FileFunc.nsh"

Name "${PRODUCT}"
OutFile "${OUTFILE}"
InstallDir "$PROGRAMFILES64\${PUBLISHER}\${PRODUCT}"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${PRODUCT} ${VERSION}"
Caption "${PRODUCT} Setup"
UninstallCaption "${PRODUCT} Uninstall"

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=1033 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=1033 "CompanyName" "${PUBLISHER}"
VIAddVersionKey /LANG=1033 "FileDescription" "${PRODUCT} Setup"
VIAddVersionKey /LANG=1033 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=1033 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=1033 "LegalCopyright" "${PUBLISHER}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN "$INSTDIR\quorvane.exe"
!define MUI_FINISHPAGE_RUN_TEXT "Start ${PRODUCT} now"

!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH

; The list spans the page, so that the box's whole text shows.
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_COMPONENTSPAGE_TEXT_TOP "Quorvane is removed from this computer. Your collections and settings stay, unless you tick the box below."
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "English"

; Asks a running Quorvane to end, the way its tray menu's "Exit" does, so that its files can be
; replaced or removed; waits for its window to go, five seconds at most.
!macro EndRunningProgram UN
Function ${UN}EndRunningProgram
  FindWindow $0 "QuorvaneMain" "Quorvane"
  ${If} $0 == 0
    Return
  ${EndIf}
  System::Call 'user32::RegisterWindowMessageW(w "Quorvane.Exit") i .r1'
  System::Call 'user32::PostMessageW(p r0, i r1, p 0, p 0)'
  StrCpy $2 0
  ${Do}
    Sleep 100
    IntOp $2 $2 + 1
    FindWindow $0 "QuorvaneMain" "Quorvane"
    ${If} $0 == 0
    ${OrIf} $2 >= 50
      ${Break}
    ${EndIf}
  ${Loop}
FunctionEnd
!macroend
!insertmacro EndRunningProgram ""
!insertmacro EndRunningProgram "un."

; True ($0 = 1) when the installer runs under Wine, whose ntdll exports wine_get_version.
Function FindWine
  StrCpy $0 0
  System::Call 'kernel32::GetModuleHandleW(w "ntdll.dll") p .r1'
  ${If} $1 P<> 0
    System::Call 'kernel32::GetProcAddress(p r1, m "wine_get_version") p .r2'
    ${If} $2 P<> 0
      StrCpy $0 1
    ${EndIf}
  ${EndIf}
FunctionEnd

Function .onInit
  SetShellVarContext all
  SetRegView 64
FunctionEnd

Section "Quorvane" SecProgram
  SectionIn RO
  Call EndRunningProgram
  SetOutPath "$INSTDIR"
  File "/oname=quorvane.exe" "${PROGRAM}"
  File "/oname=orlavine.chm" "${HELP}"
  WriteUninstaller "$INSTDIR\Uninstall.exe"

  CreateDirectory "$SMPROGRAMS\${PRODUCT}"
  CreateShortcut "$SMPROGRAMS\${PRODUCT}\${PRODUCT}.lnk" "$INSTDIR\quorvane.exe" "" \
    "$INSTDIR\quorvane.exe" 0
  CreateShortcut "$SMPROGRAMS\${PRODUCT}\${PRODUCT} Help.lnk" "$INSTDIR\orlavine.chm"

  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\quorvane.exe,0"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  IntFmt $0 "0x%08X" $0
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" "$0"

  ; Under Wine: the values every Windows has and a new Wine prefix lacks, which the program reads
  ; at its start. Only what is missing is added, and the uninstaller takes back only what was
  ; added here.
  Call FindWine
  ${If} $0 == 1
    ClearErrors
    ReadRegStr $1 HKCR "${MY_COMPUTER_ICON_KEY}" ""
    ${If} ${Errors}
      WriteRegExpandStr HKCR "${MY_COMPUTER_ICON_KEY}" "" "${MY_COMPUTER_ICON}"
      WriteRegDWORD HKLM "${UNINSTALL_KEY}" "AddedMyComputerIcon" 1
      DetailPrint "Wine: added the icon of $\"My Computer$\""
    ${EndIf}
  ${EndIf}
SectionEnd

Function un.onInit
  SetShellVarContext all
  SetRegView 64
FunctionEnd

Section "-un.Quorvane" SecUnProgram
  Call un.EndRunningProgram
  Delete "$INSTDIR\quorvane.exe"
  Delete "$INSTDIR\orlavine.chm"
  Delete "$INSTDIR\Uninstall.exe"
  RMDir "$INSTDIR"
  RMDir "$INSTDIR\.."

  Delete "$SMPROGRAMS\${PRODUCT}\${PRODUCT}.lnk"
  Delete "$SMPROGRAMS\${PRODUCT}\${PRODUCT} Help.lnk"
  RMDir "$SMPROGRAMS\${PRODUCT}"

  ; The automatic start that the program's wallpaper settings write for the user.
  DeleteRegValue HKCU "${RUN_KEY}" "${RUN_VALUE}"

  ReadRegDWORD $0 HKLM "${UNINSTALL_KEY}" "AddedMyComputerIcon"
  ${If} $0 == 1
    ReadRegStr $1 HKCR "${MY_COMPUTER_ICON_KEY}" ""
    ${If} $1 == "${MY_COMPUTER_ICON}"
      DeleteRegValue HKCR "${MY_COMPUTER_ICON_KEY}" ""
      DeleteRegKey /ifempty HKCR "${MY_COMPUTER_ICON_KEY}"
    ${EndIf}
  ${EndIf}

  DeleteRegKey HKLM "${UNINSTALL_KEY}"
SectionEnd

; Unticked unless the user ticks it; a silent uninstall never removes it.
Section /o "un.Also remove my collections and settings" SecUnData
  SetShellVarContext current
  RMDir /r "$APPDATA\Talvenor\Mirefold\Quorvane"
  RMDir "$APPDATA\Talvenor\Mirefold"
  RMDir "$APPDATA\Talvenor"
  DeleteRegKey HKCU "${PRODUCT_KEY}"
  DeleteRegKey /ifempty HKCU "Software\Talvenor\Mirefold"
  DeleteRegKey /ifempty HKCU "Software\Talvenor"
  SetShellVarContext all
SectionEnd

!insertmacro MUI_UNFUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${SecUnData} "Deletes your wallpaper collections (the folder Talvenor\Mirefold\Quorvane in your application data) and Quorvane$\'s settings. Leave it unticked to keep them."
!insertmacro MUI_UNFUNCTION_DESCRIPTION_END
