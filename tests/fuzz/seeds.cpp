// Makes what the fuzz targets begin with: fuzz_seeds FOLDER makes a folder for each target.
#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "snapshot/clsAnalysis.h"
#include "snapshot/clsSnapshots.h"
#include "support/RegfBuilder.h"
#include "support/SampleMachine.h"
#include "support/SampleProgram.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

std::filesystem::path s_folder;

void Seed(const std::string& target, const std::string& name, std::string_view content) {
  std::filesystem::create_directories(s_folder / target);
  std::ofstream file(s_folder / target / name, std::ios::binary | std::ios::trunc);
  file << content;
  if (!file.flush()) throw std::runtime_error("can't write " + (s_folder / target / name).string());
}

std::string TextHive() {
  return "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\Machine\n\n#arch=win64\n\n" +
         SampleMachine::SystemKeys() + SampleMachine::UserKeys() +
         R"([Software\\Types] 1700000000
#time=1cb8a5c1f3a2b00
#class="text"
@="default \x20ac \"quoted\" \\ \0"
"dword"=dword:0000002a
"multi"=str(7):"one\0two\0"
"bytes"=hex:01,02,\
  03,04
"qword"=hex(b):01,00,00,00,00,00,00,00
"other"=hex(12345):00

[Software\\Link] 1700000000
#link
"SymbolicLinkValue"=hex(6):5c,00,52,00
)";
}

void RegfHives() {
  for (const auto list : {RegfBuilder::List::Lf, RegfBuilder::List::Lh, RegfBuilder::List::Li}) {
    RegfBuilder hive;
    hive.list = list;
    hive.longestList = 3;
    for (int i = 0; i < 8; ++i) {
      hive.Key(fmt::format("Software\\Key {}", i)).Text("Text", "some text").Dword("", 42);
    }
    hive.Key("Large").Value("Data", 3, std::string(20000, 'x'));
    hive.Key("Link").LinkTo("\\REGISTRY\\MACHINE\\Software");
    hive.Key("\xC3\xA4\xE2\x82\xAC").Value("None", 0, "");
    Seed("regfhive", fmt::format("{}.hiv", static_cast<int>(list)), hive.Build());
  }
}

void Analyses() {
  SampleMachine sample;
  TempFolder folder;
  ShellRecorder shell;
  clsSettings settings(folder.Of("settings.ini"));
  const clsHome home = clsHome::Find(folder.Of("home"));
  const auto machine = clsMachine::Open(sample.Folder());
  clsSnapshots snapshots(shell, settings, home, machine);
  snapshots.mnuSnapShotBefore_Click();
  sample.WriteFile("C:\\Program Files\\New\\new.txt", "new");
  sample.WriteFile("C:\\windows\\win.ini", "[fonts]\r\nArial=arial.ttf\r\n[Mail]\r\nMAPI=2\r\n");
  sample.Remove("C:\\Program Files\\Tool\\readme.txt");
  sample.SetUserReg(SampleMachine::UserKeys() + "[Software\\\\New] 1700000000\n\"a\"=\"b\"\n");
  machine->CloseRegistry();
  clsAnalysis analysis(shell, settings, home, machine);
  const std::string path = (s_folder / "analysis").string();
  std::filesystem::create_directories(path);
  analysis.AfterInto(snapshots, path + "/installation.mdb");
}

void All() {
  Seed("texthive", "system.reg", TextHive());
  RegfHives();
  Seed("version", "narrow.exe", SampleProgram(0x00010002, 0x00030004));
  Seed("version", "wide.exe", SampleProgram(0x00010002, 0x00030004, true));
  Seed("ini", "ansi.ini",
       "; comment\r\n[fonts]\r\n Arial = x \r\n[Mail]\r\nMAPI=\x80\r\n[FONTS]\nB\n");
  Seed("ini", "utf16.ini", std::string_view("\xFF\xFE[\0a\0]\0\r\0\n\0b\0=\0c\0", 18));
  Seed("dialect", "select",
       "SELECT f.*, h.[Name] AS N FROM (tblNewFiles AS f INNER JOIN tblHives h ON f.Id = h.Id) "
       "RIGHT "
       "JOIN t ON f.A = t.A WHERE f.B <> \"x\"\"y\" AND NOT (f.C IS NULL OR f.D >= 3);");
  Seed("dialect", "delete",
       "DELETE t.*, h.Name FROM t INNER JOIN h ON t.Id = h.Id WHERE t.A = \"x\" AND h.B = 'y';");
  Seed("settings", "settings.ini",
       "[Enabled]\nDiskScan=1\n[ScanFolders]\n1=C:\\\n\"2\"=\" a\\n\\\"b\\\\\"\nno "
       "entry\n[Enabled]\n");
  Analyses();
  Seed("pagename", "page", "Newfiles");
  Seed("pagename", "control", "\x1b[31m\xE2\x80\xAE\xC2\x85");
}

}  // namespace
}  // namespace sandrel::test

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Usage: fuzz_seeds FOLDER\n";
    return 2;
  }
  sandrel::test::s_folder = argv[1];
  sandrel::test::All();
}
