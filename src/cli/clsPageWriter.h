// Writes a page of an analysis as text: tab-separated lines, or JSON.
#pragma once

#include <cstdio>
#include <string>

#include "common/clsShell.h"
#include "config/clsSettings.h"

namespace sandrel {

/// The number of a page by its name, without regard to case. Raises 5 for a name that no page with
/// rows of its own has; the description lists the names.
int PageByName(const std::string& name);

class clsPageWriter {
 public:
  /// `analysis` is a host path, `out` is not closed.
  clsPageWriter(std::string analysis, std::FILE* out)
      : m_analysis(std::move(analysis)), m_out(out) {}

  /// A header line and a line for each row, cells as the window shows them, separated by tabs; a
  /// tab in a cell is written \t, line ends are \r and \n. Raises 3078 for a file that is no
  /// analysis.
  void WriteText(int page);

  /// An array of objects, one for each row: names of columns with their values. Numbers are
  /// numbers, Null is null, dates are UTC.
  void WriteJson(int page);

 private:
  template <class Header, class Row>
  void EachRow(int page, Header&& header, Row&& row);
  std::string GetStat(std::string_view description) const;
  std::int64_t CountRows(int page) const;

  std::string m_analysis;
  std::FILE* m_out;
};

}  // namespace sandrel
