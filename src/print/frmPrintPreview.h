// The preview: shows the pages of the current list at a chosen zoom, drawn by the same code as on
// paper.
#pragma once

#include <QDialog>
#include <functional>

#include "common/clsShell.h"
#include "config/clsSettings.h"
#include "platform/qt/clsQtPrinter.h"
#include "print/clsPreviewBlock.h"
#include "print/clsPrintCommands.h"

class QComboBox;
class QLabel;
class QScrollBar;
class QTimer;
class QToolBar;
class QToolButton;

namespace sandrel {

class clsPreviewPane;

class frmPrintPreview final : public QDialog {
 public:
  /// All but `parent`, which may be null, must outlive the form. The pages are drawn when the form
  /// is first shown.
  frmPrintPreview(clsShell& shell, clsSettings& settings, clsQtPrinter& printer,
                  const PrintData& printed, QWidget* parent);
  ~frmPrintPreview() override;

  /// Prints what is shown.
  std::function<void()> Print;

  const std::string& PageCaption() const { return m_pageCaption; }
  void SetPageCaption(std::string caption) { m_pageCaption = std::move(caption); }

  /// Lays all pages out and draws those of the block. What fails is reported; the form stays on
  /// what is drawn.
  void FillPages();
  void LoadGrid(clsPrintGrid& grid);

  const clsPreviewBlock& Block() const { return m_block; }

  void done(int result) override;

 protected:
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void MakeToolbar();
  void AddButton(const char* key, const char* tip, const QKeySequence& shortcut,
                 std::function<void()> click);
  void Command(const char* method, const std::function<void()>& body);
  void Fill();
  void LoadZoom();
  double Zoom() const;
  void cbxZoomList_Click();
  void StepZoom(int by);
  void Timer_Tick();
  void Move(bool (clsPreviewBlock::*to)());
  void ShowCurrentPage();
  void LayOutPanes();
  void MovePages();
  void Wheel(QWheelEvent& event);

  clsShell& m_shell;
  clsSettings& m_settings;
  clsQtPrinter& m_printer;
  const PrintData& m_data;
  std::string m_pageCaption;
  clsPreviewBlock m_block;
  bool m_told = false;  // what is left out
  bool m_filling = false;
  bool m_shown = false;

  QToolBar* tlbToolbar;  // owned by Qt, as are the others
  QComboBox* cbxZoomList;
  QLabel* lblPage;
  clsPreviewPane* picBack;
  QScrollBar* HScroll;
  QScrollBar* VScroll;
  QTimer* Timer;
  std::string m_drawnZoom;  // "50%"; is saved where that can be done
};

}  // namespace sandrel
