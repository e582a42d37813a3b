#include "export/clsExportCommands.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <unordered_set>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/modOverwrite.h"
#include "export/clsRegExport.h"
#include "export/clsSandrelFileCopy.h"
#include "snapshot/modFileDialogs.h"

namespace sandrel {
namespace {

// The folder that a node stands for, as the tree writes it; empty above the folders.
std::string FolderOf(const Node* node) {
  std::string folder;
  for (; node != nullptr; node = node->Parent()) {
    const std::string& key = node->Key();
    if (key == "NewFiles" || key == "ChangedFiles" || key == "DeletedFiles" || key == "Files") {
      break;
    }
    folder.insert(0, "\\" + node->Text());
  }
  return folder.size() >= 2 ? folder.substr(1) : folder;
}

bool IsInOneOf(const std::vector<std::string>& folders, std::string_view path) {
  if (folders.empty()) return false;
  const std::string folder = clsPathText::AddSeparator(clsPages::FolderText(path));
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& above) {
    return folder.starts_with(clsPathText::AddSeparator(above));
  });
}

}  // namespace

clsExportCommands::clsExportCommands(clsShell& shell, clsMainControls& controls, clsPages& pages,
                                     const clsHome& home)
    : m_shell(shell), m_controls(controls), m_pages(pages), m_home(home) {}

// The selected rows of the page on show, as rows of the list `source` in its order. Rows of the
// view of a hive or a folder stand for the rows of the same key on the page that they come from; a
// folder stands for all files in it and below.
std::vector<std::size_t> clsExportCommands::SelectedSourceRows(int& source) const {
  const int index = m_pages.CurrentListIndex();
  const ListView& shown = m_controls.List(index);
  std::vector<std::size_t> rows;
  const bool isView = index == page::SharedPage || index == page::FilteredPage;
  source = isView && shown.RowCount() > 0 ? shown.RowTag(0) : index;
  const ListView& list = m_controls.List(source);
  std::unordered_set<std::uint32_t> numbers;
  std::vector<std::string> folders;
  for (std::size_t row = 0; row < shown.RowCount(); ++row) {
    if (!shown.Selected(row)) continue;
    if (shown.Key(row).Statement != 0) {
      numbers.insert(shown.Key(row).Number);
    } else if (const Node* const node = m_controls.treeView.Find(shown.KeyText(row))) {
      folders.push_back(FolderOf(node));
    }
  }
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    const bool chosen =
        isView ? numbers.count(list.Key(row).Number) != 0 || IsInOneOf(folders, list.Text(row))
               : list.Selected(row);
    if (chosen) rows.push_back(row);
  }
  return rows;
}

void clsExportCommands::AddEntry(const ListView& list, std::size_t row, bool hasOldValueColumn,
                                 clsRegEntrys& entries) {
  clsRegEntry& entry = entries.Add();
  entry.Branch = std::string(list.Text(row)) + "\\" + std::string(list.Cell(row, 1));
  entry.ValueName = list.Cell(row, 2);
  entry.Value = list.Cell(row, 3);
  entry.RegType = GetRegEntryType(list.Cell(row, hasOldValueColumn ? 5 : 4));
}

void clsExportCommands::mnuFileExportToRegFile_Click() {
  clsRegExport registry;
  {
    const clsPointerGuard pointer(m_shell, pointer::Hourglass);
    int source = 0;
    const std::vector<std::size_t> rows = SelectedSourceRows(source);
    for (const std::size_t row : rows) {
      AddEntry(m_controls.List(source), row, source == page::ChangedRegistry, registry.RegEntrys);
    }
  }
  if (registry.RegEntrys.Count() == 0) return;
  const std::string file = SaveDialog(m_shell, m_home.Path(), "Export To Registry File", "reg",
                                      "Registry File *.reg|*.reg|All Files *.*|*.*");
  if (file.empty()) return;
  std::error_code ignored;
  if (std::filesystem::equivalent(file, m_shell.State.AnalysisPath, ignored)) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't write {}: that file holds the open analysis. Choose another "
                               "file.",
                               file));
  }
  if (!MayOverwrite(m_shell, file)) return;
  {
    const clsPointerGuard pointer(m_shell, pointer::Hourglass);
    registry.DoEvents = [this] { m_shell.DoEvents(); };
    registry.WriteFile(file);
  }
  if (registry.Lost() > 0) {
    m_shell.Tell(
        fmt::format("{} character(s) can't stand in a registry file, which is written in "
                    "code page 1252. A ? stands in the place of each.",
                    registry.Lost()));
  }
}

std::string clsExportCommands::RootPrefix() const {
  return FolderOf(m_controls.treeView.SelectedItem());
}

void clsExportCommands::mnuFileExportFiles_Click() {
  const std::string folder =
      ChooseDestination("Selection a destination folder for the selected file(s)");
  if (folder.empty()) return;
  const std::shared_ptr<clsMachine> machine = Machine();
  if (machine == nullptr) {
    throw clsError(errnum::Machine,
                   "There is no machine to copy from. Choose one with Machine... in the Settings "
                   "menu.");
  }
  int source = 0;
  std::vector<std::string> files;
  std::int64_t totalBytes = 0;
  std::int64_t deleted = 0;
  for (const std::size_t row : SelectedSourceRows(source)) {
    const ListView& list = m_controls.List(source);
    if (list.RowTag(row) == page::DeletedFiles) {
      ++deleted;
      continue;
    }
    if (list.Cell(row, 1).empty()) continue;  // a folder's own record
    files.push_back(clsPathText::AddSeparator(list.Text(row)) + std::string(list.Cell(row, 1)));
    std::error_code ignored;
    if (const auto host = machine->HostPath(files.back())) {
      const std::uintmax_t size = std::filesystem::file_size(*host, ignored);
      if (!ignored) totalBytes += static_cast<std::int64_t>(size);
    }
  }
  std::vector<std::string> results;
  const std::unique_ptr<clsCopyProgress> progress = MakeProgress();
  clsSandrelFileCopy(m_shell, *machine, *progress)
      .CopyFiles(files, folder, RootPrefix(), results, totalBytes);
  m_shell.Ask({clsSandrelFileCopy::Summary(results, deleted), "Sandrel Manager Copy Results",
               Buttons::Ok, BoxIcon::Information});
}

}  // namespace sandrel
