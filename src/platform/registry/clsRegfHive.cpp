#include "platform/registry/clsRegfHive.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "common/clsError.h"
#include "common/text.h"
#include "platform/registry/clsTreeKey.h"

namespace sandrel {
namespace {

// Places in the file are those of hivex: of a cell's size field, counted from the file's start;
// places that stand in the file are counted from the first bin.
constexpr std::size_t FirstBin = 4096;
constexpr std::size_t SmallestHive = 2 * 4096;
constexpr std::size_t BaseSequence1 = 4;
constexpr std::size_t BaseSequence2 = 8;
constexpr std::size_t BaseBinsSize = 40;

constexpr std::size_t KeyFlags = 4 + 2;
constexpr std::size_t KeyParent = 4 + 16;
constexpr std::size_t KeySubkeyList = 4 + 28;
constexpr std::size_t KeyValueCount = 4 + 36;
constexpr std::size_t KeyValueList = 4 + 40;
constexpr std::size_t KeyNameSize = 4 + 72;
constexpr std::size_t KeyName = 4 + 76;
constexpr std::uint16_t KeyIsLink = 0x10;
constexpr std::uint16_t KeyNameLatin1 = 0x20;

constexpr std::size_t ValueNameSize = 4 + 2;
constexpr std::size_t ValueDataSize = 4 + 4;
constexpr std::size_t ValueDataPlace = 4 + 8;
constexpr std::size_t ValueType = 4 + 12;
constexpr std::size_t ValueFlags = 4 + 16;
constexpr std::size_t ValueName = 4 + 20;
constexpr std::uint16_t ValueNameLatin1 = 0x01;
constexpr std::uint32_t ValueDataInline = 0x80000000u;

constexpr int DeepestList = 1;               // lists of lists lie no deeper
constexpr std::size_t SplitSegment = 16344;  // bytes of data in each cell of data that is split

[[noreturn]] void Fail(const std::string& path, std::string_view what) {
  throw clsError(errnum::Hive,
                 fmt::format("Can't read the registry hive {}: {}. Check the volume, or put "
                             "a good copy of the file in its place.",
                             path, what));
}

// hivex gives lists that end in 0 and are the caller's.
std::vector<std::size_t> TakeList(std::size_t* list) {
  std::vector<std::size_t> places;
  if (list != nullptr) {
    std::size_t count = 0;
    while (list[count] != 0) ++count;
    places.assign(list, list + count);
    std::free(list);
  }
  return places;
}

// A cell in two places of a list would be walked twice, and what lies below it twice at every
// level.
std::size_t RemoveTwins(std::vector<std::size_t>& places) {
  std::vector<std::size_t> sorted = places;
  std::sort(sorted.begin(), sorted.end());
  if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end()) return 0;
  std::unordered_set<std::size_t> seen;
  return std::erase_if(places, [&](std::size_t place) { return !seen.insert(place).second; });
}

}  // namespace

// An open key of a hive.
class clsRegfKey : public clsRegKey {
 public:
  clsRegfKey(std::shared_ptr<clsRegfHive> hive, hive_node_h node)
      : m_hive(std::move(hive)), m_node(node) {}

  const std::vector<std::string>& SubkeyNames() override {
    if (!std::exchange(m_subkeysRead, true)) m_hive->ReadSubkeys(m_node, m_subkeys);
    return m_subkeys.names;
  }
  const std::vector<std::string>& ValueNames() override {
    if (!std::exchange(m_valuesRead, true)) m_hive->ReadValues(m_node, m_values);
    return m_values.names;
  }
  std::shared_ptr<clsRegKey> Subkey(std::size_t index) override {
    return std::make_shared<clsRegfKey>(m_hive, m_subkeys.nodes[index]);
  }
  bool Value(std::size_t index, std::uint32_t& type, std::string& data) override {
    type = m_values.types[index];
    data = m_values.data[index];
    return true;
  }
  std::optional<std::string> LinkTarget() override {
    if (!m_hive->IsLink(m_node)) return {};
    const std::vector<std::string>& names = ValueNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (m_values.types[i] == regtype::Link && clsNameIndex::SameName(names[i], LinkValueName)) {
        return LinkTargetOf(m_values.data[i]);
      }
    }
    return std::string();
  }

 private:
  std::shared_ptr<clsRegfHive> m_hive;
  hive_node_h m_node;
  bool m_subkeysRead = false;
  bool m_valuesRead = false;
  clsRegfHive::Subkeys m_subkeys;
  clsRegfHive::Values m_values;
};

std::shared_ptr<clsRegfHive> clsRegfHive::Open(const std::string& path) {
  return std::shared_ptr<clsRegfHive>(new clsRegfHive(path));
}

clsRegfHive::clsRegfHive(const std::string& path) try : m_file(path), m_bytes(m_file.Bytes()) {
  if (m_bytes.empty()) Fail(path, "the file is empty");
  if (m_bytes.substr(0, 4) != "regf") Fail(path, "the file is no registry hive");
  if (m_bytes.size() < SmallestHive) Fail(path, "the file is cut off");
  const std::uint64_t size = std::uint64_t{FirstBin} + Number32(BaseBinsSize);
  if (m_bytes.size() < size) {
    Fail(path, fmt::format("the file is cut off: it has {} of {} bytes", m_bytes.size(), size));
  }
  m_hive = hivex_open(m_file.Path().c_str(), 0);
  if (m_hive == nullptr) {
    const bool refused = errno == EINVAL || errno == ENOTSUP;
    Fail(path, refused ? "the file is damaged" : std::generic_category().message(errno));
  }
  m_root = hivex_root(m_hive);
  if (m_root == 0 || m_root + KeyName > m_bytes.size()) {
    hivex_close(m_hive);
    Fail(path, "the file has no root key");
  }
} catch (const clsError& error) {
  throw clsError(errnum::Hive,
                 error.Number() == errnum::Hive
                     ? error.Description()
                     : "Can't read a registry hive of the Windows volume: " + error.Description() +
                           ". Check that the volume is mounted and can be read.");
}

clsRegfHive::~clsRegfHive() {
  if (m_hive != nullptr) hivex_close(m_hive);
}

bool clsRegfHive::HasPendingLog() const {
  return Number32(BaseSequence1) != Number32(BaseSequence2);
}

std::shared_ptr<clsRegKey> clsRegfHive::Root() {
  return std::make_shared<clsRegfKey>(shared_from_this(), m_root);
}

std::uint16_t clsRegfHive::Number16(std::size_t at) const {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(m_bytes[at]) |
                                    static_cast<unsigned char>(m_bytes[at + 1]) << 8);
}

std::uint32_t clsRegfHive::Number32(std::size_t at) const {
  return Number16(at) | static_cast<std::uint32_t>(Number16(at + 2)) << 16;
}

// The content of the cell whose size field stands at `at`; empty unless it is in use and whole.
std::string_view clsRegfHive::Cell(std::size_t at) const {
  if (at < FirstBin || at + 4 > m_bytes.size()) return {};
  const std::uint32_t size = ~Number32(at) + 1;  // stands there negative while the cell is in use
  if (size < 4 || size > m_bytes.size() - at) return {};
  return m_bytes.substr(at + 4, size - 4);
}

// False for what is no name of a key or a value.
bool clsRegfHive::AppendName(std::string_view bytes, bool latin1, std::string& name) const {
  if (latin1) {
    for (const char byte : bytes) text::Append(name, static_cast<unsigned char>(byte));
  } else {
    if (bytes.size() % 2 != 0) return false;
    text::AppendUtf16Le(name, bytes);
  }
  return true;
}

void clsRegfHive::Count(hive_node_h node, LeftOut kind, std::size_t refused) {
  if (refused == 0 || m_counts == nullptr) return;
  if (m_counted[kind == LeftOut::RefusedValue].insert(node).second) m_counts->Add(kind, refused);
}

std::vector<std::size_t> clsRegfHive::ListSubkeys(hive_node_h node, std::size_t& refused) {
  const std::size_t count = hivex_node_nr_children(m_hive, node);
  if (count == 0) return {};
  std::size_t* list = hivex_node_children(m_hive, node);
  std::vector<std::size_t> nodes;
  if (list != nullptr) {
    nodes = TakeList(list);
  } else {
    CollectSubkeys(FirstBin + Number32(node + KeySubkeyList), 0, nodes);
    // The number may be what is damaged.
    const bool plausible = count <= m_bytes.size() / KeyName;
    if (nodes.size() < count) refused += plausible ? count - nodes.size() : 1;
    refused += std::erase_if(
        nodes, [&](std::size_t subkey) { return hivex_node_struct_length(m_hive, subkey) == 0; });
  }
  refused += RemoveTwins(nodes);
  return nodes;
}

// A list holds places of keys ("li", with hashes between them "lf" and "lh") or of further lists
// ("ri").
void clsRegfHive::CollectSubkeys(std::size_t list, int depth,
                                 std::vector<std::size_t>& nodes) const {
  const std::string_view cell = Cell(list);
  if (cell.size() < 4 || depth > DeepestList) return;
  const std::string_view kind = cell.substr(0, 2);
  const std::size_t width = kind == "lf" || kind == "lh" ? 8 : kind == "li" || kind == "ri" ? 4 : 0;
  if (width == 0) return;
  const std::size_t count =
      std::min<std::size_t>(Number16(list + 4 + 2), (cell.size() - 4) / width);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t place = FirstBin + Number32(list + 8 + width * i);
    if (kind == "ri") {
      CollectSubkeys(place, depth + 1, nodes);
    } else if (place + KeyName <= m_bytes.size()) {
      nodes.push_back(place);
    }
  }
}

void clsRegfHive::ReadSubkeys(hive_node_h node, Subkeys& subkeys) {
  std::size_t refused = 0;
  const std::vector<std::size_t> nodes = ListSubkeys(node, refused);
  subkeys.names.reserve(nodes.size());
  subkeys.nodes.reserve(nodes.size());
  for (const std::size_t subkey : nodes) {
    const std::string_view cell = Cell(subkey);
    // A key belongs below the one that it names as its parent; so no key is its own ancestor, and
    // no walk runs in circles.
    if (cell.size() < KeyName - 4 || subkey == m_root ||
        FirstBin + Number32(subkey + KeyParent) != node) {
      ++refused;
      continue;
    }
    const std::size_t nameSize = Number16(subkey + KeyNameSize);
    std::string name;
    if (cell.size() < KeyName - 4 + nameSize ||
        !AppendName(m_bytes.substr(subkey + KeyName, nameSize),
                    (Number16(subkey + KeyFlags) & KeyNameLatin1) != 0, name) ||
        name.empty() || name.find('\\') != std::string::npos) {
      ++refused;
      continue;
    }
    subkeys.names.push_back(std::move(name));
    subkeys.nodes.push_back(subkey);
  }
  Count(node, LeftOut::RefusedKey, refused);
}

std::vector<std::size_t> clsRegfHive::ListValues(hive_node_h node, std::size_t& refused) {
  const std::size_t count = Number32(node + KeyValueCount);
  if (count == 0) return {};
  std::size_t* list = hivex_node_values(m_hive, node);
  if (list != nullptr) return TakeList(list);
  // Here too one bad place spoils the list; hivex judges each value when it is read.
  const std::string_view cell = Cell(FirstBin + Number32(node + KeyValueList));
  if (cell.size() / 4 < count) {
    refused = count > m_bytes.size() / 4 ? 1 : count;
    return {};
  }
  std::vector<std::size_t> places;
  const auto start = static_cast<std::size_t>(cell.data() - m_bytes.data());
  for (std::size_t i = 0; i < count; ++i) places.push_back(FirstBin + Number32(start + 4 * i));
  return places;
}

void clsRegfHive::ReadValues(hive_node_h node, Values& values) {
  std::size_t refused = 0;
  const std::vector<std::size_t> places = ListValues(node, refused);
  values.names.reserve(places.size());
  values.types.reserve(places.size());
  values.data.reserve(places.size());
  for (const std::size_t value : places) {
    if (!ReadValue(value, values)) ++refused;
  }
  Count(node, LeftOut::RefusedValue, refused);
}

bool clsRegfHive::ReadValue(hive_value_h value, Values& values) const {
  const std::string_view cell = Cell(value);
  hive_type type{};
  std::size_t size = 0;
  if (cell.size() < ValueName - 4 || hivex_value_type(m_hive, value, &type, &size) != 0)
    return false;
  const std::size_t nameSize = Number16(value + ValueNameSize);
  std::string name;
  if (cell.size() < ValueName - 4 + nameSize ||
      !AppendName(m_bytes.substr(value + ValueName, nameSize),
                  (Number16(value + ValueFlags) & ValueNameLatin1) != 0, name)) {
    return false;
  }
  std::string data;
  if ((Number32(value + ValueDataSize) & ValueDataInline) != 0) {
    if (size > 4) return false;
    data = m_bytes.substr(value + ValueDataPlace, size);
  } else if (size != 0) {
    const std::string_view content = Cell(hivex_value_data_cell_offset(m_hive, value, nullptr));
    if (size <= content.size()) {
      data = content.substr(0, size);
    } else if (!ReadSplitData(content, size, data)) {
      return false;
    }
  }
  values.names.push_back(std::move(name));
  values.types.push_back(Number32(value + ValueType));
  values.data.push_back(std::move(data));
  return true;
}

// Data too long for one cell: "db", the number of cells it is split over, the place of their list.
bool clsRegfHive::ReadSplitData(std::string_view cell, std::size_t size, std::string& data) const {
  if (cell.size() < 8 || cell.substr(0, 2) != "db") return false;
  const auto at = static_cast<std::size_t>(cell.data() - m_bytes.data());
  const std::size_t count = Number16(at + 2);
  const std::string_view list = Cell(FirstBin + Number32(at + 4));
  if (list.size() / 4 < count || size > count * SplitSegment) return false;
  const auto places = static_cast<std::size_t>(list.data() - m_bytes.data());
  data.reserve(size);
  for (std::size_t i = 0; data.size() < size; ++i) {
    const std::size_t wanted = std::min(SplitSegment, size - data.size());
    const std::string_view segment = Cell(FirstBin + Number32(places + 4 * i));
    if (segment.size() < wanted) return false;
    data += segment.substr(0, wanted);
  }
  return true;
}

bool clsRegfHive::IsLink(hive_node_h node) const {
  return (Number16(node + KeyFlags) & KeyIsLink) != 0;
}

}  // namespace sandrel
