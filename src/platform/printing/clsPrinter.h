// The printer that documents go to, with its paper.
#pragma once

#include <memory>
#include <string>

#include "platform/printing/clsPrintDevice.h"

namespace sandrel {

/// A document from its start to its end; one that isn't ended prints nothing.
class clsPrintDocument {
 public:
  virtual ~clsPrintDocument() = default;
  virtual clsPrintDevice& Device() = 0;
  /// Hands the pages to the printer, or replaces the file by them. Raises what fails.
  virtual void EndDoc() = 0;
};

class clsPrinter : public clsPaper {
 public:
  /// True for the printer that stands in where the machine has no other: it writes a PDF file.
  virtual bool WritesFile() const = 0;
  /// Begins a document. `title` is UTF-8; `file` is the host path of the file that is written, and
  /// nothing to a real printer. Raises 57 for a printer that isn't there (any more), 75 for a file
  /// that can't be written, 53 where no fonts are installed.
  virtual std::unique_ptr<clsPrintDocument> StartDoc(const std::string& title,
                                                     const std::string& file) = 0;
  /// A picture of the paper that measures texts as documents do. Raises 53 like StartDoc.
  virtual std::unique_ptr<clsPrintDevice> MakeSizer() const = 0;
};

}  // namespace sandrel
