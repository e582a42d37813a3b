// One hive file of Windows' own format (regf), read through libhivex.
//
// hivex checks the file's structure and judges the record of each key and value. Lists, names and
// data are taken from the file's bytes: hivex refuses a list as a whole for one bad place in it or
// for its length, gives no name that holds a zero or half a surrogate pair, cuts the last bytes off
// data that is split over several cells, and reads past the end of records that are too short.
#pragma once

#include <hivex.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

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

  /// The hive's root key. Open keys keep the hive.
  std::shared_ptr<clsRegKey> Root();

 private:
  friend class clsRegfKey;

  struct Subkeys {
    std::vector<std::string> names;
    std::vector<hive_node_h> nodes;
    std::uint64_t refused = 0;
  };
  struct ValueData {  // stands in the file's bytes, unless its cell only says where the parts are
    std::uint32_t type = 0;
    std::size_t size = 0;
    std::string_view content;
    bool isSplit = false;
  };
  struct Values {
    std::vector<std::string> names;
    std::vector<ValueData> data;
    std::uint64_t refused = 0;
  };

  explicit clsRegfHive(const std::string& path);

  void ReadSubkeys(hive_node_h node, Subkeys& subkeys);
  void ReadValues(hive_node_h node, Values& values);
  bool IsLink(hive_node_h node) const;

  void ListSubkeys(std::size_t list, int depth, std::vector<hive_node_h>& nodes) const;
  bool ReadSubkey(hive_node_h parent, hive_node_h node, std::string& name) const;
  bool ReadValue(hive_value_h value, std::string& name, ValueData& data) const;
  bool ReadSplitData(std::string_view cell, std::size_t size, std::string* data) const;
  bool ReadName(std::size_t at, std::size_t size, bool latin1, std::string& name) const;

  std::uint16_t Number16(std::size_t at) const;
  std::uint32_t Number32(std::size_t at) const;
  std::string_view Cell(std::size_t at) const;

  clsMappedFile m_file;
  std::string_view m_bytes;
  hive_h* m_hive = nullptr;
  hive_node_h m_root = 0;
};

}  // namespace sandrel
