// The least widths of a printed grid's columns.
#pragma once

#include <vector>

namespace sandrel {

struct clsMinColWidth {
  int Column = 0;    ///< from 1
  double Width = 0;  ///< inches
};

class clsMinColWidths {
 public:
  void Add(int column, double width) { m_widths.push_back({column, width}); }
  int Count() const { return static_cast<int>(m_widths.size()); }
  /// By its number from 1, in the order of adding. Raises 9 when there is none.
  clsMinColWidth& Item(int index);
  const clsMinColWidth& Item(int index) const;
  void Clear() { m_widths.clear(); }

  auto begin() const { return m_widths.begin(); }
  auto end() const { return m_widths.end(); }

 private:
  std::vector<clsMinColWidth> m_widths;
};

}  // namespace sandrel
