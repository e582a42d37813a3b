#include "platform/qt/clsQtPrinter.h"

#include <fmt/format.h>
#include <langinfo.h>

#include <QBuffer>
#include <QFile>
#include <QFont>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "platform/qt/clsQtPrintDevice.h"

namespace sandrel {
namespace {

constexpr int TwipsPerInch = 1440;

clsError DeviceError(std::string description) {
  return {errnum::DeviceIo, std::move(description), "clsQtPrinter.StartDoc"};
}

void NeedFonts() {
  if (clsTextMeasure::IsThere(QFont())) return;
  throw clsError(errnum::FileNotFound,
                 "No fonts are installed, so that no text can be printed. Install a font package, "
                 "such as fonts-liberation.",
                 "clsQtPrinter.StartDoc");
}

// The C library knows the paper of the user's locale, in millimetres.
QPageSize LocalePaper() {
  const auto height = reinterpret_cast<std::intptr_t>(nl_langinfo(_NL_PAPER_HEIGHT));
  constexpr int LetterHeight = 279;
  return QPageSize(height == LetterHeight ? QPageSize::Letter : QPageSize::A4);
}

// What can't be printed on is known by the printer for each paper.
QPageLayout LayoutOf(const QString& name, const QPageSize& paper,
                     QPageLayout::Orientation orientation) {
  QPageLayout layout(paper, orientation, QMarginsF(), QPageLayout::Point);
  if (name.isEmpty()) return layout;
  QPrinter printer(QPrinterInfo::printerInfo(name), QPrinter::HighResolution);
  if (!printer.isValid()) return layout;
  printer.setPageSize(paper);
  printer.setPageOrientation(orientation);
  layout = printer.pageLayout();
  layout.setUnits(QPageLayout::Point);
  layout.setMargins(layout.minimumMargins());
  return layout;
}

// Pages on paper, or in a file.
class clsPagesDevice final : public clsPainterDevice {
 public:
  /// `pages` must outlive it and have the layout.
  clsPagesDevice(std::shared_ptr<clsTextMeasure> measure, QPagedPaintDevice& pages)
      : clsPainterDevice(std::move(measure), pages.width(), pages.height()), m_pages(pages) {
    const QRect paintable = pages.pageLayout().paintRectPixels(qt::PrintDpi);
    m_offset = paintable.topLeft();
    SetPixels(paintable.width(), paintable.height());
  }

  bool Begin() { return m_painter.begin(&m_pages); }
  bool End() {
    ForgetPainter();
    return m_painter.end();
  }

  bool IsPrinter() const override { return true; }
  int PhysicalOffsetX() const override { return m_offset.x(); }
  int PhysicalOffsetY() const override { return m_offset.y(); }
  void NewPage() override {
    if (!m_pages.newPage()) throw DeviceError("The printer takes no further page.");
  }
  void Cls() override {}
  void SetSize(double, double) override {}

 private:
  QPainter& Painter() override { return m_painter; }
  double FontDpi() const override { return m_pages.logicalDpiY(); }

  QPagedPaintDevice& m_pages;
  QPoint m_offset;
  QPainter m_painter;
};

// The file is replaced when the document is whole, so that a failure costs no older one.
class clsPdfDocument final : public clsPrintDocument {
 public:
  clsPdfDocument(const std::shared_ptr<clsTextMeasure>& measure, const QPageLayout& layout,
                 const std::string& title, std::string file)
      : m_name(std::move(file)) {
    // What can be known of the target is told before the pages are laid out.
    const std::string folder = std::filesystem::absolute(m_name).parent_path().string();
    if (!clsFileWorks::FolderExists(folder)) {
      throw clsError(errnum::PathFileAccess,
                     fmt::format("Can't write {}: there is no folder {}.", m_name, folder),
                     "clsQtPrinter.StartDoc");
    }
    m_content.open(QIODevice::WriteOnly);
    m_writer.setResolution(qt::PrintDpi);
    m_writer.setPageLayout(layout);
    m_writer.setTitle(QString::fromStdString(title));
    m_writer.setCreator("Sandrel");
    m_device = std::make_unique<clsPagesDevice>(measure, m_writer);
    if (!m_device->Begin()) throw NotWritten();
  }

  clsPrintDevice& Device() override { return *m_device; }
  void EndDoc() override {
    if (!m_device->End()) throw NotWritten();
    RaiseAs("clsQtPrinter.EndDoc",
            [this] { clsFileWorks::ReplaceWhole(m_name, m_content.data().toStdString()); });
  }

 private:
  clsError NotWritten() const {
    return {errnum::DeviceIo, fmt::format("Can't write {}: no page can be drawn.", m_name),
            "clsQtPrinter.StartDoc"};
  }

  QBuffer m_content;
  std::string m_name;
  QPdfWriter m_writer{&m_content};
  std::unique_ptr<clsPagesDevice> m_device;
};

class clsPrinterDocument final : public clsPrintDocument {
 public:
  clsPrinterDocument(const std::shared_ptr<clsTextMeasure>& measure, const QString& name,
                     const QPageLayout& layout, const std::string& title)
      : m_name(name), m_printer(QPrinterInfo::printerInfo(name), QPrinter::HighResolution) {
    Look();
    m_printer.setResolution(qt::PrintDpi);
    m_printer.setPageLayout(layout);
    m_printer.setDocName(QString::fromStdString(title));
    m_printer.setCreator("Sandrel");
    m_device = std::make_unique<clsPagesDevice>(measure, m_printer);
    if (!m_device->Begin()) throw Gone();
  }
  ~clsPrinterDocument() override {
    if (!m_ended) m_printer.abort();
  }

  clsPrintDevice& Device() override { return *m_device; }
  // The pages go to the print service in one go now; a printer that went away meanwhile is told.
  void EndDoc() override {
    Look();
    m_ended = m_device->End() && m_printer.printerState() != QPrinter::Error;
    if (!m_ended) throw Gone();
  }

 private:
  void Look() const {
    if (!m_printer.isValid() || QPrinterInfo::printerInfo(m_name).isNull()) throw Gone();
  }
  clsError Gone() const {
    return DeviceError(
        fmt::format("The printer {} can't be reached, so that nothing was printed. "
                    "Choose another one with Print Setup.",
                    m_name.toStdString()));
  }

  QString m_name;
  QPrinter m_printer;
  std::unique_ptr<clsPagesDevice> m_device;
  bool m_ended = false;
};

}  // namespace

clsQtPrinter::clsQtPrinter(bool fileOnly)
    : m_measure(std::make_shared<clsTextMeasure>()), m_found(fileOnly) {
  m_layout = LayoutOf({}, LocalePaper(), QPageLayout::Portrait);
}

// Asking the print service takes time, and it may not answer: not before something is printed.
void clsQtPrinter::Find() const {
  if (m_found) return;
  m_found = true;
  const QPrinterInfo printer = QPrinterInfo::defaultPrinter();
  if (printer.isNull()) return;
  m_name = printer.printerName();
  const QPageSize paper = printer.defaultPageSize();
  m_layout = LayoutOf(m_name, paper.isValid() ? paper : LocalePaper(), QPageLayout::Portrait);
}

const QString& clsQtPrinter::Name() const {
  Find();
  return m_name;
}

const QPageLayout& clsQtPrinter::Layout() const {
  Find();
  return m_layout;
}

QStringList clsQtPrinter::Names() {
  return QPrinterInfo::availablePrinterNames() + QStringList{QString()};
}

std::vector<QPageSize> clsQtPrinter::Papers(const QString& name) {
  std::vector<QPageSize> papers;
  if (name.isEmpty()) {
    for (const auto id : {QPageSize::A4, QPageSize::Letter, QPageSize::Legal, QPageSize::A3,
                          QPageSize::Tabloid, QPageSize::A5}) {
      papers.emplace_back(id);
    }
  } else {
    const QList<QPageSize> known = QPrinterInfo::printerInfo(name).supportedPageSizes();
    papers.assign(known.begin(), known.end());
  }
  return papers;
}

void clsQtPrinter::Choose(const QString& name, const QPageSize& paper,
                          QPageLayout::Orientation orientation) {
  m_found = true;
  m_name = name;
  m_layout = LayoutOf(name, paper, orientation);
}

QSizeF clsQtPrinter::Sheet() const {
  return Layout().fullRect(QPageLayout::Inch).size();
}

int clsQtPrinter::Width() const {
  return static_cast<int>(std::lround(Sheet().width() * TwipsPerInch));
}

int clsQtPrinter::Height() const {
  return static_cast<int>(std::lround(Sheet().height() * TwipsPerInch));
}

double clsQtPrinter::PrintableWidth() const {
  return Layout().paintRect(QPageLayout::Inch).width();
}

double clsQtPrinter::PrintableHeight() const {
  return Layout().paintRect(QPageLayout::Inch).height();
}

double clsQtPrinter::OffsetX() const {
  return Layout().paintRect(QPageLayout::Inch).x();
}

double clsQtPrinter::OffsetY() const {
  return Layout().paintRect(QPageLayout::Inch).y();
}

std::unique_ptr<clsPrintDocument> clsQtPrinter::StartDoc(const std::string& title,
                                                         const std::string& file) {
  NeedFonts();
  if (WritesFile()) return std::make_unique<clsPdfDocument>(m_measure, m_layout, title, file);
  return std::make_unique<clsPrinterDocument>(m_measure, m_name, m_layout, title);
}

std::unique_ptr<clsPrintDevice> clsQtPrinter::MakeSizer() const {
  NeedFonts();
  return std::make_unique<clsPictureDevice>(m_measure, Sheet(), 1.0);
}

}  // namespace sandrel
