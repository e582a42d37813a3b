// The printer in force: the system's own, or a PDF file where it has none, with the paper and the
// orientation that were chosen for the session.
#pragma once

#include <QPageLayout>
#include <QString>
#include <QStringList>
#include <memory>
#include <string>
#include <vector>

#include "platform/printing/clsPrinter.h"
#include "platform/qt/clsTextMeasure.h"

namespace sandrel {

class clsQtPrinter final : public clsPrinter {
 public:
  /// The system's default printer, looked up at first use; with `fileOnly`, PDF files at once.
  explicit clsQtPrinter(bool fileOnly = false);

  // The paper.
  int Width() const override;
  int Height() const override;
  double PrintableWidth() const override;
  double PrintableHeight() const override;
  double OffsetX() const override;
  double OffsetY() const override;

  bool WritesFile() const override { return Name().isEmpty(); }
  std::unique_ptr<clsPrintDocument> StartDoc(const std::string& title,
                                             const std::string& file) override;
  std::unique_ptr<clsPrintDevice> MakeSizer() const override;

  // What Print Setup chooses from and sets. An empty name is the PDF file.
  static QStringList Names();
  const QString& Name() const;
  const QPageLayout& Layout() const;
  /// The papers that a printer takes; none for one that isn't there.
  static std::vector<QPageSize> Papers(const QString& name);
  /// Holds until the program ends.
  void Choose(const QString& name, const QPageSize& paper, QPageLayout::Orientation orientation);

  /// The whole sheet, inches.
  QSizeF Sheet() const;
  /// Measures texts for documents, sizers and pictures alike.
  const std::shared_ptr<clsTextMeasure>& Measure() const { return m_measure; }

 private:
  void Find() const;

  std::shared_ptr<clsTextMeasure> m_measure;
  mutable bool m_found = false;
  mutable QString m_name;
  mutable QPageLayout m_layout;  // its margins are what the printer can't print on
};

}  // namespace sandrel
