#include "cli/modPagePrinter.h"

#include <vector>

#include "browser/FormatCell.h"
#include "browser/Pages.h"
#include "browser/clsAnalysisTree.h"
#include "browser/clsPageReader.h"
#include "common/clsPathText.h"
#include "platform/controls/ListView.h"
#include "print/clsPrintJob.h"
#include "store/modTarget.h"

namespace sandrel {
namespace {

// One row more than a grid holds tells that there are more.
void ReadList(const std::string& analysis, int page, ListView& list) {
  std::vector<TextPool::Id> cells;
  clsPageReader(analysis).Read(
      page,
      [&](const std::vector<dao::Field>& fields) {
        for (const dao::Field& field : fields) list.AddColumn(field.Name, 0);
      },
      [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values,
          int source) {
        if (list.RowCount() > clsPrintGrid::MaxRows) return;
        cells.clear();
        for (std::size_t i = 0; i < fields.size(); ++i) {
          cells.push_back(list.Texts().Intern(FormatCell(fields[i].Name, values[i])));
        }
        list.AddRow({static_cast<std::uint32_t>(list.RowCount() + 1), 1}, cells, source, 0);
      });
}

}  // namespace

int PrintPage(const std::string& analysis, int page, const std::string& out, clsPrinter& printer,
              clsShell& shell, clsSettings& settings) {
  NeedTarget(out);
  TextPool texts;
  ListView list(texts);
  ReadList(analysis, page, list);
  const std::string caption =
      clsAnalysisTree::CaptionStem(page) + " - " + clsPathText::TextAfterLast(analysis, "/");
  clsPrintJob job(shell, settings, printer, caption, out);
  return job.Print({job.LoadFields(list), PageName(page), caption}, clsPrintJob::Widths::OfPage);
}

}  // namespace sandrel
