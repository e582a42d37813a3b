#include "print/clsMinColWidths.h"

#include "print/PrintErrors.h"

namespace sandrel {

const clsMinColWidth& clsMinColWidths::Item(int index) const {
  if (index < 1 || index > Count()) {
    throw clsError(errnum::SubscriptOutOfRange, "Subscript out of range", "clsMinColWidths.Item");
  }
  return m_widths[static_cast<std::size_t>(index) - 1];
}

clsMinColWidth& clsMinColWidths::Item(int index) {
  return const_cast<clsMinColWidth&>(static_cast<const clsMinColWidths*>(this)->Item(index));
}

}  // namespace sandrel
