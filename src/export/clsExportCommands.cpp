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
#include "snapshot/clsStatements.h"
#include "snapshot/modFileDialogs.h"
#include "store/modTarget.h"

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

std::string CellOf(const ListView& list, std::size_t row, std::string_view column) {
  const std::vector<ListColumn>& columns = list.Columns();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].Text == column) return std::string(list.Cell(row, i));
  }
  return {};
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

// Asks until the answer is a file that may be written; empty when the user cancelled.
std::string clsExportCommands::ChooseRegFile() {
  for (;;) {
    std::string file = SaveDialog(m_shell, m_home.Path(), "Export To Registry File", "reg",
                                  "Registry File *.reg|*.reg|All Files *.*|*.*");
    if (file.empty()) return file;
    try {
      NeedTarget(file);
      return MayOverwrite(m_shell, file) ? file : std::string();
    } catch (const clsError& error) {
      m_shell.Ask({error.Description(), "Sandrel Manager", Buttons::Ok, BoxIcon::Exclamation});
    }
  }
}

void clsExportCommands::mnuFileExportToRegFile_Click() {
  clsStatements run(m_shell, "frmSandrel.mnuFileExportToRegFile");
  run.Command([&] { ExportToRegFile(run); }, [] {});
}

void clsExportCommands::ExportToRegFile(clsStatements& run) {
  clsRegExport registry;
  {
    const clsPointerGuard pointer(m_shell, pointer::Hourglass);
    int source = 0;
    const std::vector<std::size_t> rows = SelectedSourceRows(source);
    const ListView& list = m_controls.List(source);
    for (const std::size_t row : rows) {
      registry.RegEntrys.Add(
          RegEntryOf(source == page::ChangedRegistry,
                     [&](std::string_view column) { return CellOf(list, row, column); }));
    }
  }
  if (registry.RegEntrys.Count() == 0) return;
  const std::string file = ChooseRegFile();
  if (file.empty()) return;
  run([&] {
    const clsPointerGuard pointer(m_shell, pointer::Hourglass);
    registry.DoEvents = [this] { m_shell.DoEvents(); };
    registry.WriteFile(file);
  });
  if (const std::string told = registry.LeftOutText(); !told.empty()) m_shell.Tell(told);
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
