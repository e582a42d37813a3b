#include "cli/clsExports.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "browser/FormatCell.h"
#include "browser/Pages.h"
#include "browser/clsPageReader.h"
#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/modOverwrite.h"
#include "common/text.h"
#include "export/clsRegExport.h"
#include "export/clsSandrelFileCopy.h"
#include "store/modTarget.h"

namespace sandrel {
namespace {

// A copy's dialog on the terminal: the progress line.
class clsTerminalProgress final : public clsCopyProgress {
 public:
  explicit clsTerminalProgress(clsCliShell& shell) : m_shell(shell) {}
  void Show() override {}
  void SetFile(std::string_view name) override {
    m_shell.SetStatusText("Copying " + std::string(name) + "...");
  }
  void SetFolder(std::string_view) override {}
  void SetMessage(std::string_view) override {}
  void SetProgress(int percent) override { m_shell.SetProgress(percent); }
  bool CancelAnimate() const override { return clsCliShell::WasInterrupted(); }
  void Close() override {
    m_shell.SetProgress(0);
    m_shell.SetStatusText("");
  }

 private:
  clsCliShell& m_shell;
};

void NeedPage(int page, std::initializer_list<int> fitting, const char* what) {
  std::string known;
  for (const int index : fitting) {
    if (page == index) return;
    known += (known.empty() ? "" : ", ") + PageName(index);
  }
  throw clsError(errnum::InvalidArgument,
                 fmt::format("The page {} holds no {}. Pages: {}.", PageName(page), what, known));
}

std::string CellOf(const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values,
                   std::string_view name) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].Name == name) return values[i].ToText();
  }
  return {};
}

bool Holds(const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values,
           const std::string& folded) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (text::Fold(FormatCell(fields[i].Name, values[i])).find(folded) != std::string::npos) {
      return true;
    }
  }
  return folded.empty();
}

bool HasSeveralDrives(const std::vector<std::string>& files) {
  return std::any_of(files.begin(), files.end(), [&](const std::string& file) {
    return !text::EqualNoCase(file.substr(0, 1), files.front().substr(0, 1));
  });
}

}  // namespace

std::size_t clsExports::ExportRegistry(int page, const std::string& out, const std::string& match) {
  NeedPage(page,
           {page::NewRegistry, page::ChangedRegistry, page::DeletedRegistry, page::AllRegistry},
           "registry values");
  NeedTarget(out);
  clsRegExport registry;
  const std::string folded = text::Fold(match);
  clsPageReader(m_analysis)
      .Read(
          page, [](const std::vector<dao::Field>&) {},
          [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values, int) {
            if (!Holds(fields, values, folded)) return;
            registry.RegEntrys.Add(RegEntryOf(
                page == page::ChangedRegistry,
                [&](std::string_view column) { return CellOf(fields, values, column); }));
          });
  if (registry.RegEntrys.Count() == 0) return 0;
  if (!MayOverwrite(m_shell, out)) return 0;
  registry.WriteFile(out);
  for (const std::string& value : registry.LeftOut()) m_shell.Tell("Left out: " + value);
  return registry.Written();
}

std::string clsExports::CopyFiles(int page, const std::string& folder, clsMachine& machine) {
  NeedPage(page, {page::NewFiles, page::ChangedFiles, page::DeletedFiles, page::AllFiles}, "files");
  std::vector<std::string> files;
  std::int64_t deleted = 0;
  clsPageReader(m_analysis)
      .Read(
          page, [](const std::vector<dao::Field>&) {},
          [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values,
              int source) {
            const std::string name = CellOf(fields, values, "File Name");
            if (source == page::DeletedFiles) {
              ++deleted;
            } else if (!name.empty()) {  // a folder without files has none
              files.push_back(clsPathText::AddSeparator(CellOf(fields, values, "Path Name")) +
                              name);
            }
          });
  clsTerminalProgress progress(m_shell);
  std::vector<std::string> results;
  std::vector<std::string> failed;
  std::int64_t unknown = 0;
  clsSandrelFileCopy copy(m_shell, machine, progress);
  copy.DriveFolders = HasSeveralDrives(files);
  copy.OnError = [&](const std::string& file, const clsError& error) {
    failed.push_back(file.empty() ? error.Description() : file + ": " + error.Description());
    return Answer::Ignore;
  };
  copy.CopyFiles(files, folder, "C:", results, unknown);
  for (const std::string& failure : failed) m_shell.Fail(failure);
  if (copy.Copied() == 0 && !files.empty()) m_shell.Fail("No file was copied.");
  return clsSandrelFileCopy::Summary(results, deleted);
}

}  // namespace sandrel
