#include "print/frmPrintSetup.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QRadioButton>
#include <QVBoxLayout>

#include "platform/qt/clsQtPrinter.h"
#include "platform/qt/modGuard.h"

namespace sandrel {

frmPrintSetup::frmPrintSetup(clsQtPrinter& printer, QWidget* parent)
    : QDialog(parent),
      m_printer(printer),
      cbxPrinter(new QComboBox(this)),
      cbxPaper(new QComboBox(this)),
      optPortrait(new QRadioButton("P&ortrait", this)),
      optLandscape(new QRadioButton("&Landscape", this)) {
  setObjectName("frmPrintSetup");
  setWindowTitle("Print Setup");
  cbxPrinter->setObjectName("cbxPrinter");
  cbxPaper->setObjectName("cbxPaper");
  optPortrait->setObjectName("optPortrait");
  optLandscape->setObjectName("optLandscape");

  for (const QString& name : clsQtPrinter::Names()) {
    cbxPrinter->addItem(name.isEmpty() ? QString("PDF file") : name, name);
  }
  cbxPrinter->setCurrentIndex(cbxPrinter->findData(printer.Name()));
  FillPapers();
  qt::Connect(cbxPrinter, &QComboBox::currentIndexChanged, this, [this] { FillPapers(); });
  const bool landscape = printer.Layout().orientation() == QPageLayout::Landscape;
  (landscape ? optLandscape : optPortrait)->setChecked(true);

  auto* const form = new QFormLayout;
  form->addRow("&Printer:", cbxPrinter);
  form->addRow("P&aper:", cbxPaper);
  form->addRow("Orientation:", optPortrait);
  form->addRow("", optLandscape);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  qt::Connect(buttons, &QDialogButtonBox::accepted, this, &frmPrintSetup::accept);
  qt::Connect(buttons, &QDialogButtonBox::rejected, this, &frmPrintSetup::reject);
  auto* const column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(buttons);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

// The paper in force stays, where the printer has it.
void frmPrintSetup::FillPapers() {
  const QPageSize wanted = cbxPaper->count() > 0 ? cbxPaper->currentData().value<QPageSize>()
                                                 : m_printer.Layout().pageSize();
  cbxPaper->clear();
  int chosen = -1;
  for (const QPageSize& paper : clsQtPrinter::Papers(cbxPrinter->currentData().toString())) {
    if (chosen < 0 && paper.isEquivalentTo(wanted)) chosen = cbxPaper->count();
    cbxPaper->addItem(paper.name(), QVariant::fromValue(paper));
  }
  if (chosen < 0 && cbxPaper->count() == 0) {
    chosen = 0;
    cbxPaper->addItem(wanted.name(), QVariant::fromValue(wanted));
  }
  cbxPaper->setCurrentIndex(std::max(0, chosen));
}

void frmPrintSetup::accept() {
  qt::Guard(this, [&] {
    m_printer.Choose(cbxPrinter->currentData().toString(),
                     cbxPaper->currentData().value<QPageSize>(),
                     optLandscape->isChecked() ? QPageLayout::Landscape : QPageLayout::Portrait);
    QDialog::accept();
  });
}

}  // namespace sandrel
