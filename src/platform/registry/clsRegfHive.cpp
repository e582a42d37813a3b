#include "platform/registry/clsRegfHive.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unordered_set>
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
constexpr std::size_t KeySubkeyCount = 4 + 20;
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

// A cell in two places of a list would be walked twice, and what lies below it twice at every
// level.
std::size_t RemoveTwins(std::vector<std::size_t>& places) {
  if (places.size() < 2) return 0;
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
    const clsRegfHive::ValueData& value = m_values.data[index];
    type = value.type;
    if (value.isSplit) return m_hive->ReadSplitData(value.content, value.size, &data);
    data = value.content;
    return true;
  }
  std::uint64_t RefusedSubkeys() override { return (SubkeyNames(), m_subkeys.refused); }
  std::uint64_t RefusedValues() override { return (ValueNames(), m_values.refused); }
  std::optional<std::string> LinkTarget() override {
    if (!m_hive->IsLink(m_node)) return {};
    const std::vector<std::string>& names = ValueNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
      const clsRegfHive::ValueData& value = m_values.data[i];
      if (value.type == regtype::Link && clsNameIndex::SameName(names[i], LinkValueName)) {
        return LinkTargetOf(value.content);
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
bool clsRegfHive::ReadName(std::size_t at, std::size_t size, bool latin1, std::string& name) const {
  const std::string_view bytes = m_bytes.substr(at, size);
  if (latin1) {
    text::AppendLatin1(name, bytes);
  } else {
    if (size % 2 != 0) return false;
    text::AppendUtf16Le(name, bytes);
  }
  return true;
}

// A list holds places of keys ("li", with hashes between them "lf" and "lh") or of further lists
// ("ri").
void clsRegfHive::ListSubkeys(std::size_t list, int depth, std::vector<hive_node_h>& nodes) const {
  const std::string_view cell = Cell(list);
  if (cell.size() < 4 || depth > DeepestList) return;
  const std::string_view kind = cell.substr(0, 2);
  const std::size_t width = kind == "lf" || kind == "lh" ? 8 : kind == "li" || kind == "ri" ? 4 : 0;
  if (width == 0) return;
  const std::size_t count =
      std::min<std::size_t>(Number16(list + 4 + 2), (cell.size() - 4) / width);
  if (kind != "ri") nodes.reserve(nodes.size() + count);
  // Lists named over and over could give more places than the file has room for keys.
  for (std::size_t i = 0; i < count && nodes.size() <= m_bytes.size() / KeyName; ++i) {
    const std::size_t place = FirstBin + Number32(list + 8 + width * i);
    if (kind == "ri") {
      ListSubkeys(place, depth + 1, nodes);
    } else {
      nodes.push_back(place);
    }
  }
}

void clsRegfHive::ReadSubkeys(hive_node_h node, Subkeys& subkeys) {
  const std::size_t count = Number32(node + KeySubkeyCount);
  if (count == 0) return;
  std::vector<hive_node_h>& nodes = subkeys.nodes;
  ListSubkeys(FirstBin + Number32(node + KeySubkeyList), 0, nodes);
  // The number may be what is damaged.
  const bool plausible = count <= m_bytes.size() / KeyName;
  subkeys.refused = nodes.size() >= count ? 0 : plausible ? count - nodes.size() : 1;
  subkeys.refused += RemoveTwins(nodes);

  subkeys.names.reserve(nodes.size());
  std::size_t kept = 0;
  for (const hive_node_h subkey : nodes) {
    std::string name;
    if (!ReadSubkey(node, subkey, name)) continue;
    subkeys.names.push_back(std::move(name));
    nodes[kept++] = subkey;
  }
  subkeys.refused += nodes.size() - kept;
  nodes.resize(kept);
}

bool clsRegfHive::ReadSubkey(hive_node_h parent, hive_node_h node, std::string& name) const {
  const std::string_view cell = Cell(node);
  if (cell.size() < KeyName - 4) return false;
  // A key belongs below the one that it names as its parent; so no key is its own ancestor, and no
  // walk runs in circles.
  if (node == m_root || FirstBin + Number32(node + KeyParent) != parent) return false;
  const std::size_t size = Number16(node + KeyNameSize);
  return cell.size() >= KeyName - 4 + size && hivex_node_struct_length(m_hive, node) != 0 &&
         ReadName(node + KeyName, size, (Number16(node + KeyFlags) & KeyNameLatin1) != 0, name) &&
         !name.empty() && name.find('\\') == std::string::npos;
}

void clsRegfHive::ReadValues(hive_node_h node, Values& values) {
  const std::size_t count = Number32(node + KeyValueCount);
  if (count == 0) return;
  const std::size_t list = FirstBin + Number32(node + KeyValueList);
  if (Cell(list).size() / 4 < count) {
    values.refused = count > m_bytes.size() / 4 ? 1 : count;
    return;
  }
  values.names.reserve(count);
  values.data.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::string name;
    ValueData data;
    if (ReadValue(FirstBin + Number32(list + 4 + 4 * i), name, data)) {
      values.names.push_back(std::move(name));
      values.data.push_back(data);
    } else {
      ++values.refused;
    }
  }
}

bool clsRegfHive::ReadValue(hive_value_h value, std::string& name, ValueData& data) const {
  const std::string_view cell = Cell(value);
  hive_type type{};
  if (cell.size() < ValueName - 4 || hivex_value_type(m_hive, value, &type, &data.size) != 0)
    return false;
  const std::size_t nameSize = Number16(value + ValueNameSize);
  if (cell.size() < ValueName - 4 + nameSize ||
      !ReadName(value + ValueName, nameSize, (Number16(value + ValueFlags) & ValueNameLatin1) != 0,
                name)) {
    return false;
  }
  data.type = Number32(value + ValueType);
  if ((Number32(value + ValueDataSize) & ValueDataInline) != 0) {
    data.content = m_bytes.substr(value + ValueDataPlace, data.size);
    return data.size <= 4;
  }
  if (data.size == 0) return true;
  data.content = Cell(hivex_value_data_cell_offset(m_hive, value, nullptr));
  data.isSplit = data.size > data.content.size();
  if (data.isSplit) return ReadSplitData(data.content, data.size, nullptr);
  data.content = data.content.substr(0, data.size);
  return true;
}

// Data too long for one cell: "db", the number of cells it is split over, the place of their list.
// False when they don't hold it; with null nothing is read.
bool clsRegfHive::ReadSplitData(std::string_view cell, std::size_t size, std::string* data) const {
  if (cell.size() < 8 || cell.substr(0, 2) != "db") return false;
  const auto at = static_cast<std::size_t>(cell.data() - m_bytes.data());
  const std::size_t count = Number16(at + 2);
  const std::string_view list = Cell(FirstBin + Number32(at + 4));
  if (list.size() / 4 < count || size > count * SplitSegment) return false;
  const auto places = static_cast<std::size_t>(list.data() - m_bytes.data());
  if (data != nullptr) data->clear();
  for (std::size_t i = 0, done = 0; done < size; ++i) {
    const std::size_t wanted = std::min(SplitSegment, size - done);
    const std::string_view segment = Cell(FirstBin + Number32(places + 4 * i));
    if (segment.size() < wanted) return false;
    if (data != nullptr) data->append(segment, 0, wanted);
    done += wanted;
  }
  return true;
}

bool clsRegfHive::IsLink(hive_node_h node) const {
  return (Number16(node + KeyFlags) & KeyIsLink) != 0;
}

}  // namespace sandrel
