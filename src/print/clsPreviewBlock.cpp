#include "print/clsPreviewBlock.h"

#include <algorithm>

namespace sandrel {

int clsPreviewBlock::SizeAt(double zoomPercent) {
  if (zoomPercent >= 150) return 2;
  return zoomPercent >= 100 ? 5 : 10;
}

void clsPreviewBlock::SetZoom(double zoomPercent) {
  m_size = SizeAt(zoomPercent);
  if (!Holds(m_current)) m_first = m_current;
}

bool clsPreviewBlock::SetTotalPages(int total) {
  m_total = std::max(1, total);
  if (m_current <= m_total) return false;
  m_current = m_total;
  return MoveTo(m_total);
}

// The pages that the reader comes to next are in the block.
bool clsPreviewBlock::MoveTo(int page) {
  m_current = page;
  if (Holds(page)) return false;
  m_first = page > m_first ? page : std::max(1, page - m_size + 1);
  return true;
}

bool clsPreviewBlock::MoveLast() {
  if (m_total == 1) return false;
  m_current = m_total;
  const int first = std::max(1, m_total - m_size + 1);
  if (first == m_first || (m_total <= m_size && Holds(m_total))) return false;
  m_first = first;
  return true;
}

}  // namespace sandrel
