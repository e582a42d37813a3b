#include "scan/clsScanReg.h"

#include "support/ScanFixture.h"

namespace sandrel::test {
namespace {

class clsScanRegTest : public ScanFixture {
 protected:
  clsScanRegTest() {
    m_maint.CreateTempRegKeyTable(m_path, "tblRegKey");
    m_maint.CreateTempRegValueTable(m_path, "tblRegValue");
    m_maint.CreateTempRegValueTable(m_path, "tblRegValue2");
  }

  void SetSystem(const std::string& keys) {
    m_sample.SetSystemReg(SampleMachine::SystemKeys() + keys);
    m_machine->CloseRegistry();
  }

  std::unique_ptr<clsScanReg> Scanner(bool after = false) {
    auto scanner = std::make_unique<clsScanReg>(m_context);
    scanner->Database = m_path;
    scanner->KeyTable = "tblRegKey";
    scanner->ValueTable = after ? "tblRegValue2" : "tblRegValue";
    return scanner;
  }

  void Walk(std::uint32_t hive, bool after = false, const std::string& branch = "") {
    const auto scanner = Scanner(after);
    scanner->StartDBTransaction();
    scanner->SetBranchCount(branch, hive, "");
    scanner->DoXTreeBranch(branch, hive, "");
    scanner->CommitDBTransaction();
  }

  Lines Values(const std::string& branch, const std::string& table = "tblRegValue") {
    return Rows("SELECT ValueName, ValueType, Value FROM " + table +
                " v JOIN tblRegKey k ON k.Id = v.KeyId WHERE Branch = '" + branch +
                "' ORDER BY lower(ValueName)");
  }
};

TEST_F(clsScanRegTest, StoresEveryTypeInItsForm) {
  SetSystem(R"([Software\\T] 1700000000
@="default"
"none"=hex(0):41,00,80
"sz"="a\0b\x2603"
"empty"=hex(1):
"bare"=hex(1):61,00
"expand"=str(2):"%x%"
"bin"=hex:41,0f,00
"nobin"=hex:
"dword"=dword:ffffffff
"longdword"=hex(4):01,00,00,00,00
"shortdword"=hex(4):05
"big"=hex(5):12,34,56,78
"bignegative"=hex(5):80,00,00,10
"link"=hex(6):41,00
"multi"=str(7):"a\0b\0"
"umlaut"=str(7):"\x00e4\x2603\0"
"qword"=hex(b):01,02,00,00,00,00,00,00
"typed"=hex(7fffffff):ff

)");
  Walk(hkey::LocalMachine);
  EXPECT_EQ(Values("Software\\T"),
            (Lines{"|1|default", "bare|1|a", "big|5|305419896", "bignegative|5|-2147483632",
                   "bin|3|41 0F 00", "dword|4|-1", "empty|1|", "expand|2|%x%", "link|6|41 00",
                   "longdword|4|", "multi|7|61 00 62 00 00", "nobin|3|", "none|0|A\u2400\u20AC",
                   "qword|11|01 02 00 00 00 00 00 00", "shortdword|4|5", "sz|1|a\u2400b\u2603",
                   "typed|2147483647|FF", "umlaut|7|E4 E2 98 83 00 00"}));
}

TEST_F(clsScanRegTest, WalksKeysAndKeepsTheirIds) {
  SetSystem(R"([Software\\A] 1
"x"="1"
[Software\\A\\B] 1
"y"="1"
[Software\\Empty] 1
)");
  Walk(hkey::LocalMachine, false, "Software");
  EXPECT_EQ(Rows("SELECT Branch, Hive FROM tblRegKey ORDER BY Id")[0], "Software|-2147483646");
  EXPECT_EQ(Rows("SELECT Branch FROM tblRegKey WHERE Branch LIKE 'Software\\A%' OR Branch LIKE "
                 "'%Empty' ORDER BY Branch"),
            (Lines{"Software\\A", "Software\\A\\B", "Software\\Empty"}));
  EXPECT_TRUE(Values("Software\\Empty").empty());  // only its key row
  const std::string id = Cell("SELECT Id FROM tblRegKey WHERE Branch = 'Software\\A'");
  SetSystem("[Software\\\\a] 1\n\"X\"=\"2\"\n\n[Software\\\\New] 1\n\"z\"=\"1\"\n\n");
  Walk(hkey::LocalMachine, true, "Software");
  EXPECT_EQ(Cell("SELECT Id FROM tblRegKey WHERE Branch = 'Software\\A'"), id);
  EXPECT_EQ(Values("Software\\A", "tblRegValue2"), Lines{"X|1|2"});
  // The same again adds nothing.
  const std::string count = Cell("SELECT count(*) FROM tblRegValue2");
  Walk(hkey::LocalMachine, true, "Software");
  EXPECT_EQ(Cell("SELECT count(*) FROM tblRegValue2"), count);
  Walk(hkey::CurrentUser);
  EXPECT_EQ(Cell("SELECT count(*) FROM tblRegKey WHERE Branch = '' AND Hive = -2147483647"), "1");
}

// A name with a zero in it, by which programs hide keys, is one key in both snapshots.
TEST_F(clsScanRegTest, HiddenNamesAreKeysLikeOthers) {
  SetSystem("[Software\\\\ev\\0il] 1\n\"a\\0b\"=\"1\"\n\n");
  Walk(hkey::LocalMachine);
  Walk(hkey::LocalMachine, true);
  EXPECT_EQ(Values("Software\\ev\u2400il", "tblRegValue2"), Lines{"a\u2400b|1|1"});
}

TEST_F(clsScanRegTest, CountsAndReportsExactly) {
  std::string keys;
  for (int i = 0; i < 4; ++i) keys += "[Software\\\\P\\\\k" + std::to_string(i) + "] 1\n\n";
  SetSystem(keys);
  const auto scanner = Scanner();
  std::vector<int> percents;
  int acknowledged = 0;
  scanner->PercentComplete = [&](int percent) {
    percents.push_back(percent);
    if (percents.size() == 7) scanner->Cancel();
  };
  scanner->AckCancel = [&] { ++acknowledged; };
  scanner->StartDBTransaction();
  scanner->SetBranchCount("Software\\P", hkey::LocalMachine, "");
  EXPECT_EQ(scanner->BranchCount(), 4);
  scanner->DoXTreeBranch("Software\\P", hkey::LocalMachine, "");
  EXPECT_EQ(percents, (std::vector<int>{0, 25, 50, 75}));
  scanner->DoXTreeBranch("Software\\P", hkey::LocalMachine, "");
  EXPECT_EQ(acknowledged, 1);
  scanner->DoXTreeBranch("Software", hkey::LocalMachine, "");  // further hives end at once
  EXPECT_EQ(percents.size(), 8U);
  scanner->CommitDBTransaction();
}

TEST_F(clsScanRegTest, LongNamesAreKeptAndLongerOnesLeftOut) {
  const auto value = [](std::size_t length) {
    return "\"" + std::string(length, 'n') + "\"=\"1\"\n";
  };
  const auto key = [](const std::string& path) {
    return "\n[Software\\\\L\\\\" + path + "] 1\n@=\"1\"\n";
  };
  std::string deep = std::string(200, 'd');
  for (int i = 0; i < 163; ++i) deep += "\\\\" + std::string(200, 'd');
  SetSystem("[Software\\\\L] 1\n" + value(16383) + value(16384) + key(std::string(300, 'k')) +
            key("after") + key(deep) + key(deep + "\\\\below"));
  Walk(hkey::LocalMachine);
  EXPECT_EQ(Cell("SELECT length(ValueName) FROM tblRegValue WHERE length(ValueName) > 300"),
            "16383");
  EXPECT_EQ(Values("Software\\L\\after").size(), 1U);
  EXPECT_GT(std::stoi(Cell("SELECT max(length(Branch)) FROM tblRegKey")), 32000);
  EXPECT_EQ(m_leftOut.Of(LeftOut::LongKey), 2U);
  EXPECT_EQ(m_leftOut.Of(LeftOut::LongValueName), 1U);
}

TEST_F(clsScanRegTest, ExclusionsTakeValuesFirstAndKeysInTheSecondPass) {
  const std::string value = "] 1\n\"a\"=\"1\"\n\n";
  const std::string settings = "[Software\\\\VB and VBA Program Settings\\\\";
  SetSystem("[System\\\\Clone2\\\\x" + value + "[System\\\\ControlSet006" + value +
            "[System\\\\ControlSet007" + value);
  m_sample.SetUserReg(settings + "Sandrel\\\\Main" + value + settings + "Other" + value);
  m_machine->CloseRegistry();
  for (const bool after : {false, true}) {
    for (const std::uint32_t hive : {hkey::LocalMachine, hkey::CurrentUser, hkey::Users})
      Walk(hive, after);
  }
  const std::string keys = Cell("SELECT count(*) FROM tblRegKey");
  const auto exclude = [&](bool after) {
    const auto scanner = Scanner(after);
    scanner->StartDBTransaction();
    scanner->DeleteExcludes(after);
    scanner->CommitDBTransaction();
  };
  exclude(false);
  EXPECT_EQ(Cell("SELECT count(*) FROM tblRegKey"), keys);
  exclude(true);
  for (const std::string table : {"tblRegValue", "tblRegValue2"}) {
    EXPECT_EQ(Rows("SELECT Branch FROM " + table +
                   " v LEFT JOIN tblRegKey k ON k.Id = v.KeyId "
                   "WHERE ValueName = 'a' OR Branch IS NULL ORDER BY Hive, Branch"),
              (Lines{"Software\\VB and VBA Program Settings\\Other", "System\\ControlSet007",
                     "S-1-5-21-0-0-0-1000\\Software\\VB and VBA Program Settings\\Other"}));
  }
  EXPECT_EQ(Rows("SELECT * FROM tblRegKey WHERE Branch LIKE '%Clone2%' OR Branch LIKE '%Sandrel%'"),
            Lines{});
}

TEST_F(clsScanRegTest, WritesAndReadsSingleValues) {
  const auto scanner = Scanner();
  constexpr auto User = hkey::CurrentUser;
  const std::string key = "Software\\Made\\Key";
  const auto data = [&](const std::string& name) {
    clsRegistry::Handle handle;
    std::uint32_t type = 0;
    std::string bytes;
    m_machine->Registry().RegOpenKeyEx(User, key, handle);
    m_machine->Registry().RegQueryValueEx(handle, name, type, bytes);
    return std::to_string(type) + ":" + bytes;
  };
  scanner->SetValue(User, key, "s", regtype::Sz, "a\u00E4");
  scanner->SetValue(User, key, "b", regtype::Binary, "a\u00E4");
  scanner->SetValue(User, key, "d", regtype::Dword, -2);
  scanner->SetValue(User, key, "m", regtype::MultiSz, std::string_view("x\0y\0", 4));
  scanner->SetValue(User, key, "other", 11, "x");  // writes nothing
  m_machine->CloseRegistry();                      // read back from the prefix's files
  EXPECT_EQ(data("s"), std::string("1:a\0\xE4\0\0\0", 8));
  EXPECT_EQ(data("b"), std::string("3:a\xE4\0", 5));
  EXPECT_EQ(data("d"), "4:\xFE\xFF\xFF\xFF");
  EXPECT_EQ(data("m"), std::string("7:x\0\0\0y\0\0\0\0\0", 12));
  EXPECT_EQ(data("other"), "0:");
  EXPECT_EQ(scanner->GetElement(User, key, "S").Text(), "a\u00E4");
  EXPECT_TRUE(scanner->GetElement(User, key, "gone").IsNull());
  EXPECT_EQ(scanner->LastType(), regtype::Sz);  // a failed read leaves it
  scanner->DeleteValue(User, key, "s");
  EXPECT_TRUE(scanner->GetElement(User, key, "s").IsNull());
  EXPECT_TRUE(Raises(errnum::UserBase + 14002,
                     "clsScanReg.DeleteValue: The registry key is invalid.",
                     [&] { scanner->DeleteValue(User, key, "s"); }));
}

TEST(clsScanReg, NumbersAndBytes) {
  EXPECT_EQ(clsScanReg::SwapEndian(0x12345678), 0x78563412);
  EXPECT_EQ(clsScanReg::SwapEndian(0x7FFFFF80), static_cast<std::int32_t>(0x80FFFF7F));
  EXPECT_EQ(clsScanReg::SwapEndian(0), 0);
  EXPECT_EQ(clsScanReg::SwapEndian(0x123), 0x312);  // no leading zeros: the pairs that there are
  EXPECT_EQ(clsScanReg::Dec("80000000"), INT32_MIN);
  EXPECT_EQ(clsScanReg::Dec("FF"), 255);
  EXPECT_EQ(clsScanReg::DecodeBinary("\u20AC"), "80");
  EXPECT_TRUE(clsScanReg::CheckRegOK(0));
  EXPECT_EQ(NumberOf([] { clsScanReg::CheckRegOK(8); }), errnum::UserBase + 14008);
  EXPECT_TRUE(Raises(errnum::UserBase + 14259, "Undefined registry error.",
                     [] { clsScanReg::CheckRegOK(259); }));
}

}  // namespace
}  // namespace sandrel::test
