#include "support/RegfBuilder.h"

#include <algorithm>

#include "common/text.h"

namespace sandrel::test {
namespace {

constexpr std::uint32_t NoCell = 0xFFFFFFFFu;
constexpr std::size_t PageSize = 4096;
constexpr std::size_t BinHeader = 32;
constexpr std::size_t LongestCellData = 16344;  // longer data is split
constexpr std::uint32_t Written = 0x01D00000;   // the high half of every time

void Put16(std::string& out, std::uint32_t number) {
  out.push_back(static_cast<char>(number));
  out.push_back(static_cast<char>(number >> 8));
}

void Put32(std::string& out, std::uint32_t number) {
  Put16(out, number);
  Put16(out, number >> 16);
}

// Sizes of lists and cells among them, so any number that fits.
std::string Words(std::initializer_list<std::size_t> numbers) {
  std::string out;
  for (const std::size_t number : numbers) Put32(out, static_cast<std::uint32_t>(number));
  return out;
}

void Set32(std::string& out, std::size_t at, std::size_t number) {
  out.replace(at, 4, Words({number}));
}

// Names are Latin-1 where they can be, else UTF-16.
bool Encode(const std::string& name, std::string& encoded) {
  const std::string utf16 = text::ToUtf16Le(name);
  encoded.clear();
  for (std::size_t i = 0; i < utf16.size(); i += 2) {
    if (utf16[i + 1] != '\0' || utf16[i] == '\0') {
      encoded = utf16;
      return false;
    }
    encoded.push_back(utf16[i]);
  }
  return true;
}

}  // namespace

RegfKey& RegfKey::Key(std::string_view path) {
  if (path.empty()) return *this;
  const std::size_t end = path.find('\\');
  const std::string_view part = path.substr(0, end);
  const std::string_view rest = end == std::string_view::npos ? "" : path.substr(end + 1);
  const auto found = std::find_if(subkeys.begin(), subkeys.end(),
                                  [&](const RegfKey& key) { return key.name == part; });
  return (found != subkeys.end() ? *found : Add(std::string(part))).Key(rest);
}

RegfKey& RegfKey::Add(std::string subkeyName) {
  RegfKey& key = subkeys.emplace_back();
  key.name = std::move(subkeyName);
  return key;
}

RegfKey& RegfKey::Value(std::string valueName, std::uint32_t type, std::string data) {
  values.push_back({std::move(valueName), type, std::move(data)});
  return *this;
}

RegfKey& RegfKey::Text(std::string valueName, std::string_view text) {
  return Value(std::move(valueName), 1, text::ToUtf16Le(text) + std::string(2, '\0'));
}

RegfKey& RegfKey::Dword(std::string valueName, std::uint32_t number) {
  return Value(std::move(valueName), 4, Words({number}));
}

RegfKey& RegfKey::LinkTo(std::string_view target) {
  link = true;
  return Value("SymbolicLinkValue", 6, text::ToUtf16Le(target));
}

void RegfBuilder::EndBin() {
  // What is left of a bin is one free cell.
  if (m_used < m_binEnd) Set32(m_bins, m_used, m_binEnd - m_used);
  m_used = m_binEnd;
}

// Places are counted from the first bin.
std::uint32_t RegfBuilder::AddCell(std::string_view content) {
  const std::size_t size = (content.size() + 4 + 7) / 8 * 8;
  if (m_used + size > m_binEnd) {
    EndBin();
    const std::size_t binSize = (BinHeader + size + PageSize - 1) / PageSize * PageSize;
    m_binStart = m_binEnd;
    m_bins += "hbin" + Words({m_binStart, binSize});
    m_binEnd = m_binStart + binSize;
    m_bins.resize(m_binEnd, '\0');
    m_used = m_binStart + BinHeader;
  }
  const std::size_t place = m_used;
  Set32(m_bins, place, 0 - size);
  m_bins.replace(place + 4, content.size(), content);
  m_used += size;
  m_cells.push_back(PageSize + place);
  return static_cast<std::uint32_t>(place);
}

std::uint32_t RegfBuilder::AddData(const std::string& data) {
  if (data.size() <= LongestCellData) return AddCell(data);
  std::string segments;
  std::uint32_t count = 0;
  for (std::size_t at = 0; at < data.size(); at += LongestCellData, ++count) {
    Put32(segments, AddCell(std::string_view(data).substr(at, LongestCellData)));
  }
  std::string cell = "db";
  Put16(cell, count);
  return AddCell(cell + Words({AddCell(segments), 0}));
}

std::uint32_t RegfBuilder::AddValue(const RegfValue& value) {
  std::string name;
  const bool latin1 = Encode(value.name, name);
  std::string cell = "vk";
  Put16(cell, static_cast<std::uint32_t>(name.size()));
  const std::size_t size = value.data.size();
  if (size <= 4) {
    cell += Words({size | 0x80000000u}) + value.data;
    cell.resize(12, '\0');
  } else {
    cell += Words({size, AddData(value.data)});
  }
  return AddCell(cell + Words({value.type, latin1}) + name);
}

std::uint32_t RegfBuilder::AddSubkeyList(const std::vector<std::uint32_t>& subkeys) {
  const auto listOf = [&](std::size_t from, std::size_t to) {
    std::string cell = list == List::Li ? "li" : list == List::Lf ? "lf" : "lh";
    Put16(cell, static_cast<std::uint32_t>(to - from));
    for (std::size_t i = from; i < to; ++i) {
      Put32(cell, subkeys[i]);
      if (list != List::Li) Put32(cell, 0);  // a hint of the name, which readers don't need
    }
    return AddCell(cell);
  };
  if (subkeys.size() <= longestList) return listOf(0, subkeys.size());
  std::string parts;
  std::uint32_t count = 0;
  for (std::size_t from = 0; from < subkeys.size(); from += longestList, ++count) {
    Put32(parts, listOf(from, std::min(from + longestList, subkeys.size())));
  }
  std::string cell = "ri";
  Put16(cell, count);
  return AddCell(cell + parts);
}

std::uint32_t RegfBuilder::AddKey(const RegfKey& key, std::uint32_t parent, bool isRoot) {
  std::string name;
  const bool latin1 = Encode(key.name, name);
  std::string cell = "nk";
  Put16(cell, (latin1 ? 0x20u : 0u) | (isRoot ? 0x0Cu : 0u) | (key.link ? 0x10u : 0u));
  // The lists of subkeys (at 28) and of values (at 40) are filled in when they stand.
  cell += Words({0, Written, 0, parent, key.subkeys.size(), 0, NoCell, NoCell, key.values.size(),
                 NoCell, NoCell, NoCell, 0, 0, 0, 0, 0, name.size()});
  const std::uint32_t place = AddCell(cell + name);
  if (!key.values.empty()) {
    std::string values;
    for (const RegfValue& value : key.values) Put32(values, AddValue(value));
    Set32(m_bins, place + 4 + 40, AddCell(values));
  }
  if (!key.subkeys.empty()) {
    std::vector<std::uint32_t> subkeys;
    for (const RegfKey& subkey : key.subkeys) subkeys.push_back(AddKey(subkey, place, false));
    Set32(m_bins, place + 4 + 28, AddSubkeyList(subkeys));
  }
  return place;
}

std::string RegfBuilder::Build() {
  m_bins.clear();
  m_cells.clear();
  m_binStart = m_binEnd = m_used = 0;
  if (root.name.empty()) root.name = "ROOT";
  const std::uint32_t place = AddKey(root, 0, true);
  EndBin();
  std::string hive =
      "regf" + Words({sequence1, sequence2, 0, Written, 1, 5, 0, 1, place, m_bins.size(), 1});
  hive.resize(PageSize, '\0');
  SetChecksum(hive);
  return hive + m_bins;
}

std::vector<std::size_t> RegfBuilder::CellsOf(std::string_view kind) const {
  std::vector<std::size_t> places;
  for (const std::size_t place : m_cells) {
    if (std::string_view(m_bins).substr(place - PageSize + 4, kind.size()) == kind)
      places.push_back(place);
  }
  return places;
}

void RegfBuilder::SetChecksum(std::string& hive) {
  constexpr std::size_t Place = 508;
  std::string sum(4, '\0');
  for (std::size_t at = 0; at < Place; ++at) sum[at % 4] ^= hive[at];
  hive.replace(Place, 4, sum);
}

}  // namespace sandrel::test
