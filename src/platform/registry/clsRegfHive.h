// One hive file of Windows' own format (regf), read through libhivex.
//
// hivex checks the file's structure and lists keys and values. Names and data are then taken from
// the file's bytes: hivex gives no name that holds a zero or half a surrogate pair, cuts the last
// bytes off data that is split over several cells, and reads past the end of records that are too
// short. Where it refuses a list as a whole, for one bad place in it or for its length, the good
// places are taken.
#pragma once

#include <hivex.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "common/clsLeftOut.h"
#include "platform/registry/clsMappedFile.h"
#include "platform/registry/clsRegistry.h"

namespace sandrel {

class clsRegfHive : public std::enable_shared_from_this<clsRegfHive> {
 public:
  /// Reads the whole file at the host path into memory. Raises errnum::Hive with the reason when it
  /// can't be read, is no hive, is cut off or damaged.
  static std::shared_ptr<clsRegfHive> Open(const std::string& path);

  ~clsRegfHive();
  clsRegfHive(const clsRegfHive&) = delete;
  clsRegfHive& operator=(const clsRegfHive&) = delete;

  /// True when the last changes stand in the hive's log only.
  bool HasPendingLog() const;

  /// Where keys and values that can't be read are counted, each once; null counts nowhere.
  void CountIn(clsLeftOut* counts) { m_counts = counts; }

  /// The hive's root key. Open keys keep the hive.
  std::shared_ptr<clsRegKey> Root();

 private:
  friend class clsRegfKey;

  struct Subkeys {
    std::vector<std::string> names;
    std::vector<hive_node_h> nodes;
  };
  struct Values {
    std::vector<std::string> names;
    std::vector<std::uint32_t> types;
    std::vector<std::string> data;
  };

  explicit clsRegfHive(const std::string& path);

  void ReadSubkeys(hive_node_h node, Subkeys& subkeys);
  void ReadValues(hive_node_h node, Values& values);
  bool IsLink(hive_node_h node) const;

  std::vector<std::size_t> ListSubkeys(hive_node_h node, std::size_t& refused);
  void CollectSubkeys(std::size_t list, int depth, std::vector<std::size_t>& nodes) const;
  std::vector<std::size_t> ListValues(hive_node_h node, std::size_t& refused);
  bool ReadValue(hive_value_h value, Values& values) const;
  bool ReadSplitData(std::string_view cell, std::size_t size, std::string& data) const;
  bool AppendName(std::string_view bytes, bool latin1, std::string& name) const;
  void Count(hive_node_h node, LeftOut kind, std::size_t refused);

  std::uint16_t Number16(std::size_t at) const;
  std::uint32_t Number32(std::size_t at) const;
  std::string_view Cell(std::size_t at) const;

  clsMappedFile m_file;
  std::string_view m_bytes;
  hive_h* m_hive = nullptr;
  hive_node_h m_root = 0;
  clsLeftOut* m_counts = nullptr;
  std::unordered_set<std::size_t> m_counted[2];  // keys whose refused subkeys, values are counted
};

}  // namespace sandrel
