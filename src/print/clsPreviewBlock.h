// Which pages of a preview are drawn: a block of a few, since each takes much memory, that follows
// the page on show.
#pragma once

namespace sandrel {

class clsPreviewBlock {
 public:
  int CurrentPage() const { return m_current; }
  int TotalPages() const { return m_total; }
  int FirstPage() const { return m_first; }
  /// Pages in a block.
  int Size() const { return m_size; }

  /// How many pages a block has at a zoom, in percent.
  static int SizeAt(double zoomPercent);
  /// Makes the block that of a zoom. It begins where it did, unless the current page would be out.
  void SetZoom(double zoomPercent);
  /// The count of pages is known after a fill. True when the current page is another one by that
  /// and the block has to be filled again.
  bool SetTotalPages(int total);

  // These move to a page, and are true when the block moved as well and has to be filled.
  bool MoveFirst() { return MoveTo(1); }
  bool MovePrevious() { return m_current > 1 && MoveTo(m_current - 1); }
  bool MoveNext() { return m_current < m_total && MoveTo(m_current + 1); }
  /// The block reaches the last page with its end.
  bool MoveLast();

 private:
  bool MoveTo(int page);
  bool Holds(int page) const { return page >= m_first && page < m_first + m_size; }

  int m_current = 1;
  int m_total = 1;
  int m_first = 1;
  int m_size = 10;
};

}  // namespace sandrel
