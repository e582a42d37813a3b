#include "cli/clsExports.h"

#include <fmt/format.h>

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

}  // namespace

std::size_t clsExports::ExportRegistry(int page, const std::string& out, const std::string& match) {
  NeedPage(page,
           {page::NewRegistry, page::ChangedRegistry, page::DeletedRegistry, page::AllRegistry},
           "registry values");
  clsRegExport registry;
  const std::string folded = text::Fold(match);
  clsPageReader(m_analysis)
      .Read(
          page, [](const std::vector<dao::Field>&) {},
          [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values, int) {
            if (!Holds(fields, values, folded)) return;
            const auto cell = [&](const char* name) { return CellOf(fields, values, name); };
            clsRegEntry& entry = registry.RegEntrys.Add();
            entry.Branch = cell("Hive") + "\\" + cell("Branch");
            entry.ValueName = cell("Value Name");
            entry.Value = cell(page == page::ChangedRegistry ? "New Value" : "Value");
            entry.RegType = GetRegEntryType(cell("Value Type"));
          });
  if (registry.RegEntrys.Count() == 0) return 0;
  if (!MayOverwrite(m_shell, out)) return 0;
  registry.WriteFile(out);
  if (registry.Lost() > 0) {
    m_shell.Tell(fmt::format("{} character(s) that code page 1252 lacks are written as ?.",
                             registry.Lost()));
  }
  return registry.RegEntrys.Count();
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
  std::int64_t unknown = 0;
  clsSandrelFileCopy(m_shell, machine, progress).CopyFiles(files, folder, "C:", results, unknown);
  return clsSandrelFileCopy::Summary(results, deleted);
}

}  // namespace sandrel
