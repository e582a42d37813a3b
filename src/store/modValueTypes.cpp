#include "store/modValueTypes.h"

#include <fmt/format.h>

#include <array>

namespace sandrel {
namespace {

constexpr std::array<const char*, 12> Names = {"NONE",
                                               "STRING",
                                               "EXPAND_STRING",
                                               "BINARY",
                                               "DWORD",
                                               "BIG_ENDIAN",
                                               "LINK",
                                               "MULTI_STRING",
                                               "RESOURCE_LIST",
                                               "FULL_RESOURCE_DESCRIPTOR",
                                               "RESOURCE_REQUIREMENTS_LIST",
                                               "QWORD"};

}  // namespace

std::string ValueTypeName(std::int64_t type) {
  if (type >= 0 && type < static_cast<std::int64_t>(Names.size())) {
    return Names[static_cast<std::size_t>(type)];
  }
  return fmt::format("TYPE 0x{:08X}", static_cast<std::uint32_t>(type));
}

void AddValueTypes(dao::Database& analysis, const std::set<std::int64_t>& types) {
  std::set<std::int64_t> all = types;
  for (std::size_t type = 0; type < Names.size(); ++type) {
    all.insert(static_cast<std::int64_t>(type));
  }
  const auto rows = analysis.OpenRecordset("tblValueTypes", dao::RecordsetType::Table);
  rows->SetIndex("PrimaryKey");
  for (const std::int64_t type : all) {
    rows->Seek("=", {type});
    if (!rows->NoMatch()) continue;
    rows->AddNew();
    rows->Set("ValueType", type);
    rows->Set("Name", ValueTypeName(type));
    rows->Update();
  }
}

}  // namespace sandrel
