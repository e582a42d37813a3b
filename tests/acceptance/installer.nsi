; The installer of run-wine.sh: one of each kind of difference, made by a real Windows program.
Target amd64-unicode
Unicode true
Name "Marlin Editor"
OutFile "setup.exe"
InstallDir "$PROGRAMFILES64\Marlin Editor"
RequestExecutionLevel user

!include "x64.nsh"

Section
  SetRegView 64
  SetOutPath "$INSTDIR"
  File "marlin.exe"
  File "spell.dll"
  File /oname=Größe.txt "readme.txt"
  SetOutPath "$INSTDIR\Plugins"
  SetOutPath "$WINDIR\help"
  SetOverwrite on
  SetOutPath "C:\shared"
  File /oname=engine.dll "engine2.dll"
  Delete "C:\shared\old.hlp"
  CreateDirectory "$INSTDIR\Projects\Empty"
  SetFileAttributes "C:\shared\attributes.txt" READONLY
  SetFileAttributes "C:\shared\hidden.txt" HIDDEN|SYSTEM
  WriteUninstaller "$INSTDIR\uninstall.exe"

  ; An INI file that was there: new, changed and deleted entries, a new section.
  WriteINIStr "C:\shared\host.ini" "Editors" "Marlin" "$INSTDIR\marlin.exe"
  WriteINIStr "C:\shared\host.ini" "Editors" "Default" "Marlin"
  WriteINIStr "C:\shared\host.ini" "Marlin" "Installed" "1"
  DeleteINIStr "C:\shared\host.ini" "Editors" "Obsolete"
  ; A key that repeats can only be written as text.
  FileOpen $0 "C:\shared\drivers.ini" a
  FileSeek $0 0 END
  FileWrite $0 "device=marlin.386$\r$\nDevice=second.386$\r$\n"
  FileClose $0

  WriteRegStr HKLM "Software\Marlin\Editor" "" "Marlin Editor"
  WriteRegStr HKLM "Software\Marlin\Editor" "Größe Ω" "5 € – Ω"
  WriteRegExpandStr HKLM "Software\Marlin\Editor" "Path" "%ProgramFiles%\Marlin Editor"
  WriteRegDWORD HKLM "Software\Marlin\Editor" "Version" 0xFFFFFFFE
  WriteRegBin HKLM "Software\Marlin\Editor" "Key" 00FF418090
  WriteRegMultiStr /REGEDIT5 HKLM "Software\Marlin\Editor" "Types" 2e,00,6d,00,00,00,e4,00,00,00,00,00
  WriteRegNone HKLM "Software\Marlin\Editor" "Nothing"
  WriteRegStr HKCR ".marlin" "" "Marlin.Document"
  WriteRegStr HKCU "Software\Marlin\Editor\Window" "Title" "Marlin"
  WriteRegStr HKCU "Software\Host" "changed" "new"
  WriteRegExpandStr HKCU "Software\Host" "type" "same text"
  WriteRegStr HKCU "Software\Host" "case" "SAME TEXT"
  DeleteRegValue HKCU "Software\Host" "deleted"
  DeleteRegKey HKCU "Software\Host\Tree"
  WriteRegStr HKLM "Software\Microsoft\Windows\CurrentVersion\Uninstall\Marlin" "DisplayName" "Marlin Editor"
SectionEnd

Section "Uninstall"
SectionEnd
