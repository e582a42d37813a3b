// Builds Windows registry hives (regf files) for tests, of any size and with every kind of cell
// that Windows writes.
//
//   RegfBuilder software;
//   software.Key("Microsoft\\Windows").Text("Dir", "C:\\Windows").Dword("Count", 3);
//   clsFileWorks::ReplaceWhole(path, software.Build());
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace sandrel::test {

struct RegfValue {
  std::string name;  ///< UTF-8; empty for the default value
  std::uint32_t type = 0;
  std::string data;
};

struct RegfKey {
  std::string name;  ///< UTF-8
  std::list<RegfKey> subkeys;
  std::vector<RegfValue> values;
  bool link = false;

  /// The key `path` below this one, made when it doesn't exist. Searches the subkeys one by one.
  RegfKey& Key(std::string_view path);
  /// A new subkey, without a search.
  RegfKey& Add(std::string subkeyName);

  RegfKey& Value(std::string valueName, std::uint32_t type, std::string data);
  /// REG_SZ with its terminating zero, out of UTF-8.
  RegfKey& Text(std::string valueName, std::string_view text);
  RegfKey& Dword(std::string valueName, std::uint32_t number);
  /// Makes this key a symbolic link to a path as "\\REGISTRY\\MACHINE\\...".
  RegfKey& LinkTo(std::string_view target);
};

class RegfBuilder {
 public:
  enum class List { Lf, Lh, Li };

  RegfKey root;
  List list = List::Lh;
  /// Subkeys beyond this number are split over several lists below an ri list.
  std::size_t longestList = 500;
  std::uint32_t sequence1 = 1;
  std::uint32_t sequence2 = 1;

  RegfKey& Key(std::string_view path) { return root.Key(path); }

  /// The bytes of the hive's file.
  std::string Build();

  /// After `Build`: the places in the file of the cells of every kind ("nk", "vk", "lh", "db"...),
  /// for tests that damage them. A place is that of the cell's size; its content follows 4 bytes
  /// later.
  std::vector<std::size_t> CellsOf(std::string_view kind) const;

  /// Puts the right checksum in the header of a hive whose header was changed.
  static void SetChecksum(std::string& hive);

 private:
  std::uint32_t AddCell(std::string_view content);
  std::uint32_t AddKey(const RegfKey& key, std::uint32_t parent, bool isRoot);
  std::uint32_t AddSubkeyList(const std::vector<std::uint32_t>& subkeys);
  std::uint32_t AddValue(const RegfValue& value);
  std::uint32_t AddData(const std::string& data);
  void EndBin();

  std::string m_bins;
  std::size_t m_binStart = 0;
  std::size_t m_binEnd = 0;
  std::size_t m_used = 0;
  std::vector<std::size_t> m_cells;
};

}  // namespace sandrel::test
