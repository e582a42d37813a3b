// Writes a page of an analysis as text: tab-separated lines, or JSON.
#pragma once

#include <cstdio>
#include <string>
#include <utility>

#include "browser/clsPageReader.h"

namespace sandrel {

class clsPageWriter {
 public:
  /// `analysis` is a host path, `out` is not closed.
  clsPageWriter(std::string analysis, std::FILE* out) : m_reader(std::move(analysis)), m_out(out) {}

  /// A header line and a line for each row, cells as the window shows them, separated by tabs; a
  /// tab in a cell is written \t, line ends are \r and \n. Raises 3078 for a file that is no
  /// analysis.
  void WriteText(int page);

  /// An array of objects, one for each row: names of columns with their values. Numbers are
  /// numbers, Null is null, dates are UTC.
  void WriteJson(int page);

 private:
  clsPageReader m_reader;
  std::FILE* m_out;
};

}  // namespace sandrel
