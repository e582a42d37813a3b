#include "snapshot/StatsReport.h"

#include <fmt/format.h>

#include <algorithm>

#include "common/text.h"
#include "config/clsScanSettings.h"
#include "snapshot/clsSnapshots.h"

namespace sandrel {
namespace {

constexpr std::string_view Indent = "        ";

class clsReport {
 public:
  clsReport(dao::Recordset& stats, clsSettingsSource& settings)
      : m_stats(stats), m_settings(settings) {}

  void Folders();
  void Hives();
  void Exclusions(clsMachine& machine, const std::string& appPath);
  void LeftOut(const LeftOutReport& leftOut);

 private:
  void Row(std::string_view description, std::string_view value = {}) {
    AddStatsRow(m_stats, description, value);
  }
  void Blank() { Row(" "); }
  // Names of folders and entries can fill a description to its end; the row shows what has room.
  void Item(std::string_view text, std::string_view value = {}) {
    Row(text::Left(fmt::format("{}{}", Indent, text), 255), value);
  }
  void LeftOutOf(std::string_view which, const std::vector<LeftOutRow>& rows);
  static const char* YesNo(bool yes) { return yes ? "Yes" : "No"; }

  dao::Recordset& m_stats;
  clsScanSettings m_settings;
};

void clsReport::Folders() {
  Blank();
  Row("Disk Scan Settings");
  const auto folders = m_settings.List("ScanFolders");
  const bool any = m_settings.DiskScan() && !folders.empty();
  Row("    Folders Scanned", any ? "" : "None");
  if (!any) return;
  for (const std::string& folder : folders) Item(folder);
  Row("    Version Info Included", YesNo(m_settings.VersionInfo()));
  Row("    Size Info Included", YesNo(m_settings.SizeInfo()));
  Row("    Attribute Info Included", YesNo(m_settings.AttributeInfo()));
  Row("    Hidden Folders Included", YesNo(m_settings.HiddenFolders()));
}

void clsReport::Hives() {
  Blank();
  Row("Registry Scan Settings");
  Row("    Hives Scanned", m_settings.RegScan() ? "" : "None");
  if (!m_settings.RegScan()) return;
  const std::string name = m_settings.RemoteName();
  const std::string prefix = name.empty() ? name : "\\\\" + name + "\\";
  for (int i = 1;; ++i) {
    const ScanHive hive = clsSnapshots::HiveByIndex(i, !prefix.empty());
    if (hive.Name.empty()) return;
    Item(prefix + hive.Name, YesNo(m_settings.IsSelected(hive)));
  }
}

void clsReport::Exclusions(clsMachine& machine, const std::string& appPath) {
  Blank();
  Row("File Exclude Settings");
  Row("    Files / Folders Excluded", m_settings.FileExclude() ? "" : "None");
  if (!m_settings.FileExclude()) return;
  auto entries = m_settings.List("ExcludeFiles");
  if (entries.empty()) entries = DefaultExcludes(machine, appPath, m_settings);
  for (const std::string& entry : entries) {
    Item(entry, entry.ends_with('\\') ? "Folder Tree" : "File(s)");
  }
}

// A machine may leave out very many names; the working database has them all.
constexpr std::size_t MostListed = 500;

void clsReport::LeftOutOf(std::string_view which, const std::vector<LeftOutRow>& rows) {
  Row(fmt::format("    Left Out Of {}", which), rows.empty() ? "None" : "");
  for (std::size_t i = 0; i < std::min(rows.size(), MostListed); ++i) {
    Item(PlaceOf(rows[i]), rows[i].Reason);
  }
  if (rows.size() > MostListed) Item(fmt::format("and {} more", rows.size() - MostListed));
}

void clsReport::LeftOut(const LeftOutReport& leftOut) {
  Blank();
  Row("Left Out Of The Snapshots");
  LeftOutOf("Before", leftOut.Before);
  LeftOutOf("After", leftOut.After);
  Row("    Differences Not Compared", fmt::to_string(leftOut.NotCompared));
}

}  // namespace

std::string HiveName(std::int64_t hive) {
  for (const ScanHive& one : ScanHives(false)) {
    if (static_cast<std::int32_t>(one.Key) == hive) return one.Name;
  }
  return {};
}

std::string PlaceOf(const LeftOutRow& row) {
  if (row.Hive == 0) return row.Path + row.Name;
  std::string place = HiveName(row.Hive);
  for (const std::string* part : {&row.Path, &row.Name}) {
    if (!part->empty()) place += "\\" + *part;
  }
  return place;
}

void AddStatsRow(dao::Recordset& stats, std::string_view description, std::string_view value) {
  stats.AddNew();
  stats.Set("Description", description);
  stats.Set("Value", text::Left(value, 50));
  stats.Update();
}

void WriteStatsReport(dao::Recordset& stats, clsSettingsSource& settings, clsMachine& machine,
                      const std::string& appPath, const LeftOutReport& leftOut) {
  clsReport report(stats, settings);
  report.Folders();
  report.Hives();
  report.Exclusions(machine, appPath);
  report.LeftOut(leftOut);
}

std::string ReadStat(dao::Workspace& workspace, const std::string& analysis,
                     std::string_view description) {
  const auto stats =
      workspace.OpenDatabase(analysis)->OpenRecordset("tblStats", dao::RecordsetType::Table);
  stats->SetIndex("Description");
  stats->Seek("=", {description});
  return stats->NoMatch() ? std::string() : stats->Get("Value").ToText();
}

}  // namespace sandrel
