// The dialog that chooses the printer, its paper and its orientation for the session.
#pragma once

#include <QDialog>

class QComboBox;
class QRadioButton;

namespace sandrel {

class clsQtPrinter;

class frmPrintSetup final : public QDialog {
 public:
  /// Shows what is in force; OK makes the choice the printer's. `parent` may be null.
  frmPrintSetup(clsQtPrinter& printer, QWidget* parent);

  void accept() override;

 private:
  void FillPapers();

  clsQtPrinter& m_printer;
  QComboBox* cbxPrinter;  // owned by Qt, as are the others
  QComboBox* cbxPaper;
  QRadioButton* optPortrait;
  QRadioButton* optLandscape;
};

}  // namespace sandrel
