#include "platform/registry/clsRegistry.h"

#include <gtest/gtest.h>

#include "platform/registry/DumpKeys.h"

namespace sandrel::test {
namespace {

using namespace std::string_view_literals;

constexpr auto Machine = hkey::LocalMachine;
constexpr auto Success = regstatus::Success;
using Handle = clsRegistry::Handle;

std::int32_t Open(clsRegistry& registry, std::string_view path) {
  Handle key;
  const std::int32_t status = registry.RegOpenKeyEx(Machine, path, key);
  EXPECT_EQ(status == Success, key != nullptr) << path;
  return status;
}

TEST(clsRegistry, OpensKeysWithoutRegardToCase) {
  const auto registry = MakeMemoryRegistry();
  registry->RegCreateKeyEx(Machine, "Software\\ÄÖ\\Σς");
  registry->RegSetValueEx(Machine, "Software\\ÄÖ\\Σς", "Name", regtype::Binary, "x");
  EXPECT_EQ(Open(*registry, ""), Success);
  EXPECT_EQ(Open(*registry, "SOFTWARE\\äö\\ΣΣ"), Success);
  EXPECT_EQ(Query(*registry, Machine, "software\\äÖ\\σσ", "NAME"), "3:78");
  for (const char* missing :
       {"Soft", "Software\\AO", "Software\\ÄÖ\\Σς\\x", "\\Software", "a\\\\b"}) {
    EXPECT_EQ(Open(*registry, missing), regstatus::FileNotFound) << missing;
  }
  // The dotless i and the Kelvin sign are letters of their own.
  registry->RegCreateKeyEx(Machine, "i");
  EXPECT_EQ(Open(*registry, "ı"), regstatus::FileNotFound);
}

TEST(clsRegistry, FindsAnyOfManyInAnyOrder) {
  const auto registry = MakeMemoryRegistry();
  constexpr int Count = 10000;
  for (int i = 0; i < Count; ++i) {
    const std::string n = std::to_string(i);
    ASSERT_EQ(registry->RegCreateKeyEx(Machine, "Top\\Key" + n), Success);
    registry->RegSetValueEx(Machine, "Top", "Value" + n, regtype::Binary, n);
  }
  for (int i = 0; i < Count; ++i)
    ASSERT_EQ(Open(*registry, "Top\\kEY" + std::to_string(i * 7919 % Count)), Success) << i;
  EXPECT_EQ(Open(*registry, "Top\\Key10000"), regstatus::FileNotFound);
  EXPECT_EQ(Query(*registry, Machine, "Top", "VALUE9999"), "3:39393939");
  // And what is left of them after a deletion.
  EXPECT_EQ(registry->RegDeleteKey(Machine, "top\\KEY3"), Success);
  EXPECT_EQ(registry->RegDeleteValue(Machine, "Top", "Value3"), Success);
  EXPECT_EQ(Query(*registry, Machine, "Top", "Value3"), "none");
  EXPECT_EQ(Query(*registry, Machine, "Top", "Value19"), "3:3139");
  EXPECT_EQ(Open(*registry, "Top\\Key3"), regstatus::FileNotFound);
  EXPECT_EQ(Open(*registry, "Top\\Key9999"), Success);
}

TEST(clsRegistry, TerminatesTextThatLacksItsZero) {
  const auto registry = MakeMemoryRegistry();
  const std::tuple<std::uint32_t, std::string_view, const char*> cases[] = {
      {regtype::Sz, "A\0"sv, "1:41000000"},
      {regtype::Sz, "", "1:"},
      {regtype::ExpandSz, "A\0B"sv, "2:410042000000"},
      {regtype::Sz, "A\0\0\0\0"sv, "1:4100000000"},
      {regtype::Sz, "\0A"sv, "1:00410000"},
      {regtype::MultiSz, "a\0\0\0b\0\0\0"sv, "7:6100000062000000"},
      {regtype::MultiSz, "a\0\0\0b\0"sv, "7:6100000062000000"},
      {regtype::Link, "A\0"sv, "6:4100"},
      {regtype::None, "A", "0:41"}};
  registry->RegCreateKeyEx(Machine, "K");
  for (const auto& [type, data, given] : cases) {
    registry->RegSetValueEx(Machine, "K", "v", type, data);
    EXPECT_EQ(Query(*registry, Machine, "K", "v"), given);
  }
}

TEST(clsRegistry, StatesWhatAnOperationCannotDo) {
  const auto registry = MakeMemoryRegistry();
  std::string name;
  std::string data;
  std::uint32_t type = 0;
  EXPECT_EQ(registry->RegEnumKey({}, 0, name), regstatus::InvalidHandle);
  EXPECT_EQ(registry->RegQueryValueEx({}, "", type, data), regstatus::InvalidHandle);
  std::string deep = "k";
  for (std::size_t level = 1; level <= MaxKeyLevel; ++level) deep += "\\k";
  for (const std::string& path : {std::string("a\\\\b"), std::string("a\\"), std::string("\\a"),
                                  std::string(256, 'x'), std::string("a\xFFz"), deep}) {
    EXPECT_EQ(registry->RegCreateKeyEx(Machine, path), regstatus::InvalidParameter) << path;
  }
  EXPECT_EQ(registry->RegCreateKeyEx(0x80000004u, "a"), regstatus::FileNotFound);
  EXPECT_EQ(registry->RegSetValueEx(Machine, "no", "v", 1, ""), regstatus::FileNotFound);
  EXPECT_EQ(registry->RegDeleteValue(Machine, "no", "v"), regstatus::FileNotFound);
  EXPECT_EQ(registry->RegDeleteKey(Machine, "no"), regstatus::FileNotFound);
  EXPECT_EQ(registry->RegDeleteKey(Machine, ""), regstatus::InvalidParameter);
  EXPECT_EQ(DumpKeys(*registry, Machine), "[]\n");
}

TEST(clsRegistry, WritesSeenByTheNextOpenKeepOpenKeysValid) {
  const auto registry = MakeMemoryRegistry();
  registry->RegCreateKeyEx(Machine, "z\\deep");
  registry->RegCreateKeyEx(Machine, "a");
  registry->RegSetValueEx(Machine, "z", "two", regtype::Binary, "2");
  registry->RegSetValueEx(Machine, "z", "one", regtype::Binary, "1");
  registry->RegSetValueEx(Machine, "Z", "TWO", regtype::None, "3");
  EXPECT_EQ(DumpKeys(*registry, Machine),
            "[]\n[z]\ntwo=0:33\none=3:31\n[z\\deep]\n[a]\n");  // in the order of creation
  Handle before;
  ASSERT_EQ(registry->RegOpenKeyEx(Machine, "z", before), Success);
  std::string name;
  ASSERT_EQ(registry->RegEnumValue(before, 1, name), Success);
  EXPECT_EQ(registry->RegDeleteValue(Machine, "z", "Two"), Success);
  EXPECT_EQ(registry->RegDeleteKey(Machine, "z"), regstatus::AccessDenied);  // it has a subkey
  EXPECT_EQ(registry->RegDeleteKey(Machine, "z\\DEEP"), Success);
  EXPECT_EQ(registry->RegDeleteKey(Machine, "z"), Success);
  EXPECT_EQ(DumpKeys(*registry, Machine), "[]\n[a]\n");

  EXPECT_EQ(Query(*registry, before, "two"), "none");
  EXPECT_EQ(Query(*registry, before, "one"), "3:31");
}

// A provider of one key, for what no real hive of ours can be made to hold by writing it.
class clsOddRegistry : public clsRegistry {
 public:
  clsOddRegistry() { FindRoots(); }
  std::vector<std::string> names;

 protected:
  class clsKey : public clsRegKey {
   public:
    explicit clsKey(std::vector<std::string> names) : m_names(std::move(names)) {}
    const std::vector<std::string>& SubkeyNames() override { return m_names; }
    const std::vector<std::string>& ValueNames() override { return m_names; }
    Handle Subkey(std::size_t index) override {
      return std::make_shared<clsKey>(std::vector<std::string>{m_names[index]});
    }
    bool Value(std::size_t index, std::uint32_t& type, std::string& data) override {
      type = 3;
      data = std::to_string(index);
      return true;
    }

   private:
    std::vector<std::string> m_names;
  };

  Handle OpenRoot(std::uint32_t root) override {
    return root == Machine ? std::make_shared<clsKey>(names) : nullptr;
  }
};

TEST(clsRegistry, TellsNamesApartThatDifferOnlyInCase) {
  clsOddRegistry registry;
  EXPECT_EQ(registry.Roots(), std::vector<std::uint32_t>{Machine});
  for (int i = 0; i < 20; ++i) registry.names.push_back(fmt::format("x{}", i));
  registry.names.insert(registry.names.end(), {"TWIN", "twin", "Twin"});
  for (const char* path : {"twin", "TWIN", "Twin"}) {  // each holds a subkey of its own name
    Handle key;
    std::string name;
    ASSERT_EQ(registry.RegOpenKeyEx(Machine, path, key), Success);
    EXPECT_EQ(registry.RegEnumKey(key, 0, name), Success);
    EXPECT_EQ(name, path);
  }
  EXPECT_EQ(Query(registry, Machine, "", "Twin"), "3:3232");  // index 22
  EXPECT_EQ(Query(registry, Machine, "", "tWIN"), "3:3230");  // the first one
}

TEST(clsRegistry, EndsTheListAtANameThatIsTooLong) {
  clsOddRegistry registry;
  const std::string fits(299, 'a');
  std::string wide;
  for (int i = 0; i < 150; ++i) wide += "😀";  // 300 units
  registry.names = {fits, wide};
  Handle key;
  std::string name;
  ASSERT_EQ(registry.RegOpenKeyEx(Machine, "", key), Success);
  EXPECT_EQ(registry.RegEnumKey(key, 0, name), Success);
  EXPECT_EQ(registry.RegEnumKey(key, 1, name), regstatus::MoreData);
  EXPECT_EQ(registry.RegCreateKeyEx(Machine, "a"), regstatus::AccessDenied);
  EXPECT_EQ(registry.RegSetValueEx(Machine, "", "a", 1, ""), regstatus::AccessDenied);
}

TEST(clsRegistry, TellsKeysThatLieTooDeep) {
  clsOddRegistry registry;
  registry.names = {"k"};
  std::string path = "k";
  for (std::size_t level = 2; level <= MaxKeyLevel; ++level) path += "\\k";
  Handle key;
  std::string name;
  ASSERT_EQ(registry.RegOpenKeyEx(Machine, path, key), Success);
  EXPECT_EQ(registry.RegEnumKey(key, 0, name), regstatus::NoMoreItems);
  EXPECT_EQ(Open(registry, path + "\\k"), regstatus::FileNotFound);
  EXPECT_EQ(clsRegistry::Gaps(key).Deep, 1u);
}

}  // namespace
}  // namespace sandrel::test
