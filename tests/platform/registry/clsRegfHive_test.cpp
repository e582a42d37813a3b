#include "platform/registry/clsRegfHive.h"

#include <gtest/gtest.h>

#include <random>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "support/RegfBuilder.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

using Key = std::shared_ptr<clsRegKey>;

class clsRegfHiveTest : public testing::Test {
 protected:
  std::shared_ptr<clsRegfHive> Open(const std::string& bytes) {
    clsFileWorks::ReplaceWhole(m_folder.Of("SOFTWARE"), bytes);
    return clsRegfHive::Open(m_folder.Of("SOFTWARE"));
  }

  // Why the hive can't be opened.
  std::string Fault(const std::string& bytes) {
    try {
      Open(bytes);
      return "opened";
    } catch (const clsError& error) {
      EXPECT_EQ(error.Number(), errnum::Hive);
      EXPECT_NE(error.Description().find(m_folder.Of("SOFTWARE")), std::string::npos);
      return error.Description();
    }
  }

  // The type and data of the value of that index, as "3:data".
  static std::string ValueOf(const Key& key, std::size_t index) {
    std::uint32_t type = 0;
    std::string data;
    if (index >= key->ValueNames().size() || !key->Value(index, type, data)) return "none";
    return std::to_string(type) + ":" + data;
  }

  // Reads everything below a key; false when there is more than any small hive can hold.
  static bool Walk(const Key& key, std::size_t& keys, std::size_t level = 0) {
    if (++keys > 2000) return false;
    for (std::size_t i = 0; i < key->ValueNames().size(); ++i) ValueOf(key, i);
    key->LinkTarget();
    for (std::size_t i = 0; level < MaxKeyLevel && i < key->SubkeyNames().size(); ++i) {
      if (!Walk(key->Subkey(i), keys, level + 1)) return false;
    }
    return true;
  }

  static void Set32(std::string& bytes, std::size_t at, std::uint32_t number) {
    for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(number >> 8 * i);
  }

  TempFolder m_folder;
};

TEST_F(clsRegfHiveTest, ReadsNamesAndDataOfEveryKind) {
  RegfBuilder builder;
  const std::string zero("a\0b", 3);
  const std::string high = "\xED\xA0\xBD";  // half of a surrogate pair
  std::vector<std::string> data;
  for (std::size_t size : {0, 1, 4, 5, 16340, 16343, 16344, 16345, 16350, 32688, 32689, 32696}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 256);
    data.push_back(bytes);
  }
  data.push_back(std::string((1 << 20) + 3, 'M'));
  for (std::size_t i = 0; i < data.size(); ++i) {
    builder.root.Value("size" + std::to_string(i), i == 3 ? 0xFFFF1003u : 3, data[i]);
  }
  for (std::uint32_t type = 0; type <= 12; ++type) builder.root.Value("", type, "data!");
  const std::vector<std::string> names = {"plain", "é", "日本", "😀x", zero, high, "[]\"/"};
  for (const std::string& name : names) builder.root.Add(name).Value(name, 1, name);

  const auto hive = Open(builder.Build());
  const Key root = hive->Root();
  ASSERT_EQ(root->ValueNames().size(), data.size() + 13);
  for (std::size_t i = 0; i < data.size(); ++i) {
    EXPECT_EQ(root->ValueNames()[i], "size" + std::to_string(i));
    EXPECT_EQ(ValueOf(root, i), (i == 3 ? "4294905859:" : "3:") + data[i]) << data[i].size();
  }
  for (std::size_t type = 0; type <= 12; ++type) {
    EXPECT_EQ(ValueOf(root, data.size() + type), std::to_string(type) + ":data!");
  }
  EXPECT_EQ(root->SubkeyNames(), names);
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(root->Subkey(i)->ValueNames(), std::vector<std::string>{names[i]});
    EXPECT_EQ(ValueOf(root->Subkey(i), 0), "1:" + names[i]);
  }
}

TEST_F(clsRegfHiveTest, ReadsEveryKindOfSubkeyList) {
  for (const auto list : {RegfBuilder::List::Lf, RegfBuilder::List::Lh, RegfBuilder::List::Li}) {
    for (const std::size_t longest : {500u, 65535u}) {
      RegfBuilder builder;
      builder.list = list;
      builder.longestList = longest;
      for (int i = 0; i < 10000; ++i) builder.root.Add("Key" + std::to_string(i)).Dword("n", 1);
      const Key root = Open(builder.Build())->Root();
      ASSERT_EQ(root->SubkeyNames().size(), 10000u);
      EXPECT_EQ(root->SubkeyNames()[7777], "Key7777");
      EXPECT_EQ(root->Subkey(9999)->ValueNames().size(), 1u);
    }
  }
  // More than hivex takes.
  RegfBuilder builder;
  for (int i = 0; i < 80000; ++i) builder.root.Add(std::to_string(i));
  for (int i = 0; i < 60000; ++i) builder.root.Dword(std::to_string(i), 1);
  const Key root = Open(builder.Build())->Root();
  EXPECT_EQ(root->SubkeyNames().size(), 80000u);
  EXPECT_EQ(root->ValueNames().size(), 60000u);
}

TEST_F(clsRegfHiveTest, RefusesAFileThatIsNoWholeHive) {
  RegfBuilder builder;
  for (int i = 0; i < 200; ++i) builder.root.Add("Key" + std::to_string(i)).Text("t", "text");
  const std::string good = builder.Build();
  std::string checksum = good, bin = good, root = good;
  checksum[100] = 1;
  bin[4096] = 'x';
  Set32(root, 36, 0x20 + 8);  // the root key's place
  RegfBuilder::SetChecksum(root);
  const std::pair<std::string, const char*> cases[] = {
      {good, "opened"},
      {"", "empty"},
      {"MZ" + good, "no registry hive"},
      {good.substr(0, 5000), "cut off"},
      // Between two bins, which no structure shows but the header.
      {good.substr(0, good.size() - 4096), "cut off"},
      {checksum, "damaged"},
      {bin, "damaged"},
      {root, "damaged"}};
  for (const auto& [bytes, fault] : cases) EXPECT_NE(Fault(bytes).find(fault), std::string::npos);
  EXPECT_THROW(clsRegfHive::Open(m_folder.Of("nothing")), clsError);
  EXPECT_THROW(clsRegfHive::Open(m_folder.Path()), clsError);
}

// Places inside a cell, counted from its size field.
constexpr std::size_t NkParent = 4 + 16;
constexpr std::size_t NkSubkeyCount = 4 + 20;
constexpr std::size_t NkValueCount = 4 + 36;

TEST_F(clsRegfHiveTest, LeavesOutAndCountsWhatIsDamaged) {
  RegfBuilder builder;
  builder.list = RegfBuilder::List::Li;
  for (const char* name : {"a", "b", "c"}) builder.root.Add(name).Dword("n", 1);
  builder.root.Dword("one", 1).Value("long", 3, std::string(100, 'x'));
  builder.root.Value("big", 3, std::string(40000, 'y')).Dword("four", 4);
  const std::string good = builder.Build();
  const std::vector<std::size_t> nk = builder.CellsOf("nk");  // the root, a, b, c
  const std::vector<std::size_t> vk = builder.CellsOf("vk");  // the root's, then a's, b's, c's
  const std::size_t list = builder.CellsOf("li").front();
  const std::size_t db = builder.CellsOf("db").front();
  ASSERT_EQ(nk.size(), 4u);
  ASSERT_EQ(vk.size(), 7u);
  // The list of the three cells of split data stands right before the cell that names it.
  const std::size_t segments = db - 16;

  struct Damage {
    const char* what;
    std::vector<std::pair<std::size_t, std::string>> bytes;
  };
  using Names = std::vector<std::string>;
  const auto expect = [&](const Names& keys, const Names& values, std::uint64_t refusedKeys,
                          std::uint64_t refusedValues, const std::vector<Damage>& damages) {
    for (const auto& [what, bytes] : damages) {
      std::string damaged = good;
      for (const auto& [at, data] : bytes) damaged.replace(at, data.size(), data);
      const auto hive = Open(damaged);
      const Key root = hive->Root();
      EXPECT_EQ(root->SubkeyNames(), keys) << what;
      EXPECT_EQ(root->ValueNames(), values) << what;
      EXPECT_EQ(root->RefusedSubkeys(), refusedKeys) << what;
      EXPECT_EQ(root->RefusedValues(), refusedValues) << what;
    }
  };
  const auto word = [](std::size_t number) {
    std::string bytes(4, '\0');
    Set32(bytes, 0, static_cast<std::uint32_t>(number));
    return bytes;
  };
  const auto place = [&](std::size_t cell) { return word(cell - 4096); };
  const std::string zero(1, '\0');
  const Names keys = {"a", "b", "c"};
  const Names values = {"one", "long", "big", "four"};
  expect(keys, values, 0, 0, {{"nothing", {}}});
  expect({"a", "c"}, values, 1, 0,
         {{"a subkey's place", {{list + 12, word(0x12345678)}}},
          {"a subkey listed twice", {{list + 12, place(nk[1])}}},
          {"the root below itself", {{list + 12, place(nk[0])}, {nk[0] + NkParent, place(nk[0])}}},
          {"a backslash in a name", {{nk[2] + 4 + 76, "\\"}}}});
  expect(keys, values, 2, 0, {{"the number of subkeys", {{nk[0] + NkSubkeyCount, word(5)}}}});
  expect(keys, values, 1, 0, {{"too great a number", {{nk[0] + NkSubkeyCount, word(0x7FFFFFFF)}}}});
  expect({}, values, 3, 0,
         {{"the list of subkeys", {{list + 4, "x"}}},
          {"a list that holds itself", {{list + 4, "r"}, {list + 8, place(list)}}}});
  expect({"a", "b", "c"}, {"one", "big", "four"}, 0, 1,
         {{"a value that is none", {{vk[1] + 4, "x"}}},
          {"the place of data", {{vk[1] + 12, word(0x7FFFFFF0)}}}});
  expect(keys, {"long", "big", "four"}, 0, 1,
         {{"half a character in a name", {{vk[0] + 4 + 16, zero}}},
          {"inline data of 5 bytes", {{vk[0] + 8, word(0x80000005u)}}}});
  expect(keys, {"one", "long", "four"}, 0, 1,
         {{"split data that lacks cells", {{db + 6, "\x02"}}},
          {"a cell of split data that is too short", {{segments + 4, place(vk[0])}}},
          {"the list", {{db + 8, word(0xFFFFFFF8u)}}}});
  expect(keys, {}, 0, 1, {{"the number of values", {{nk[0] + NkValueCount, word(0x00FFFFFF)}}}});
}

TEST_F(clsRegfHiveTest, EndsEveryWalkWhateverTheBytes) {
  RegfBuilder builder;
  builder.longestList = 3;
  for (int i = 0; i < 5; ++i) {
    RegfKey& key = builder.root.Add("key" + std::to_string(i));
    for (int j = 0; j < 4; ++j) key.Add("ä" + std::to_string(j)).Dword("n", 1).Text("t", "hello");
    key.Add("€").LinkTo("\\REGISTRY\\MACHINE\\x");
  }
  builder.Key("big").Value("data", 3, std::string(17000, 'z'));
  std::mt19937 random(11);
  int opened = 0;
  for (int round = 0; round < 600; ++round) {
    builder.list = static_cast<RegfBuilder::List>(round % 3);
    std::string bytes = builder.Build();
    const std::vector<std::size_t> cells = builder.CellsOf("");
    for (unsigned change = random() % 5 + 1; change > 0; --change) {
      const std::size_t at = (cells[random() % cells.size()] + random() % 84) & ~std::size_t{3};
      if (at + 4 > bytes.size()) continue;
      switch (random() % 3) {
        case 0:
          bytes[at + random() % 4] ^= static_cast<char>(1 << random() % 8);
          break;
        case 1:
          Set32(bytes, at, static_cast<std::uint32_t>(cells[random() % cells.size()] - 4096));
          break;
        default:
          Set32(bytes, at, random());
      }
    }
    if (round % 10 == 0) bytes.resize(random() % bytes.size());
    if (Fault(bytes) != "opened") continue;
    ++opened;
    std::size_t keys = 0;
    EXPECT_TRUE(Walk(Open(bytes)->Root(), keys));
  }
  EXPECT_GT(opened, 200);
}

}  // namespace
}  // namespace sandrel::test
