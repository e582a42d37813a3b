#include "wizard/frmWizard.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QScopedValueRollback>
#include <QStackedLayout>
#include <functional>

#include "browser/clsMainControls.h"
#include "platform/qt/Icons.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modText.h"
#include "platform/qt/modTwips.h"
#include "wizard/clsControlsWorks.h"

namespace sandrel {
namespace {

constexpr int FormHeight = 3300;     // twips, at least
constexpr int BesidePicture = 6271;  // twips, at least
constexpr int PictureSize = 48;      // pixels

// Only a text that differs is set: the cursor stays where the user types.
void Show(QLineEdit& edit, const std::string& text) {
  if (edit.text() != qt::FromText(text)) edit.setText(qt::FromText(text));
}

QLabel* Wrapped(const QString& text, QWidget* parent) {
  auto* const label = new QLabel(text, parent);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  return label;
}

}  // namespace

frmWizard::frmWizard(clsWizardCommands& commands, QWidget* owner)
    : QDialog(owner),
      m_flow(commands, *this),
      picWiz(new QLabel(this)),
      lblMachine(Wrapped("", this)),
      lblBeforeSnapshotAge(new QLabel(this)),
      lblAfterSnapshotAge(new QLabel(this)),
      lblWait1(new QLabel("&Wait", this)),
      lblWait2(new QLabel("minute(s) for the install to complete", this)),
      txtRun(AddEdit("txtRun")),
      txtWait(AddEdit("txtWait")),
      txtViewName(AddEdit("txtViewName")),
      cmdBrowse(AddButton("cmdBrowse", "&Browse...")),
      cmdSaveAnalysisBrowse(AddButton("cmdSaveAnalysisBrowse", "&Browse...")),
      cmdPrevious(AddButton("cmdPrevious", "&Previous")),
      cmdNext(AddButton("cmdNext", "&Next")),
      cmdFinish(AddButton("cmdFinish", "&Finish")),
      cmdCancel(AddButton("cmdCancel", "&Cancel")) {
  setObjectName("frmWizard");
  setWindowTitle("Snapshot / Analysis Wizard");
  picWiz->setObjectName("picWiz");
  lblMachine->setObjectName("lblMachine");
  lblBeforeSnapshotAge->setObjectName("lblBeforeSnapshotAge");
  lblAfterSnapshotAge->setObjectName("lblAfterSnapshotAge");
  lblWait1->setObjectName("lblWait1");
  lblWait2->setObjectName("lblWait2");
  cmdNext->setDefault(true);
  MakePages();
  Arrange();
  Connect();
  clsControlsWorks::Load(this);
  m_flow.Load();
}

// A text box that goes while it has the focus tells that its text is finished.
frmWizard::~frmWizard() {
  txtViewName->disconnect(this);
  clsControlsWorks::Unload(this);
}

QLineEdit* frmWizard::AddEdit(const char* name) {
  auto* const edit = new QLineEdit(this);
  edit->setObjectName(name);
  return edit;
}

QPushButton* frmWizard::AddButton(const char* name, const char* text) {
  auto* const button = new QPushButton(text, this);
  button->setObjectName(name);
  return button;
}

QVBoxLayout* frmWizard::MakePage(int index, const char* caption, const char* text) {
  QWidget* page = nullptr;
  if (*caption == '\0') {
    page = new QWidget(this);
  } else {
    page = new QGroupBox(caption, this);
  }
  page->setObjectName(qt::FromText(clsMainControls::Element("picPage", index)));
  picPage[static_cast<std::size_t>(index)] = page;
  auto* const lines = new QVBoxLayout(page);
  lines->setSpacing(10);
  if (*text != '\0') lines->addWidget(Wrapped(text, page));
  return lines;
}

QRadioButton* frmWizard::AddOption(int page, const char* name, int index, const char* text) {
  QWidget* const parent = picPage[static_cast<std::size_t>(page)];
  auto* const option = new QRadioButton(text, parent);
  option->setObjectName(qt::FromText(clsMainControls::Element(name, index)));
  parent->layout()->addWidget(option);
  return option;
}

void frmWizard::MakePages() {
  QVBoxLayout* const first = MakePage(0, "", "");
  lblmain = Wrapped(qt::FromText(clsWizardFlow::MainText()).trimmed(), picPage[0]);
  lblmain->setObjectName("lblmain");
  first->addWidget(lblmain);
  first->addStretch();

  MakePage(1, "&Scan Settings",
           "Different scan settings are available to customize speed and analysis detail. You may "
           "alter the settings now if desired.");
  optScanSettings = {AddOption(1, "optScanSettings", 0, "Leave the settings alone"),
                     AddOption(1, "optScanSettings", 1, "View / Manually customize the settings")};

  QVBoxLayout* const before =
      MakePage(2, "&Before Snapshot",
               "A 'Before Snapshot' must exist before software is installed. If a recent 'After "
               "Snaphot' exists it can be used to replace an existing 'Before Snapshot'. This can "
               "save time if not to much activity has occurred since the snapshot was taken.");
  optBeforeSS[0] = AddOption(2, "optBeforeSS", 0, "Create a new snapshot");
  optBeforeSS[2] = AddOption(2, "optBeforeSS", 2, "Use the existing snapshot");
  optBeforeSS[1] =
      AddOption(2, "optBeforeSS", 1, "Replace the 'Before Snapshot' with the 'After Snapshot'");
  before->addWidget(lblMachine);
  before->addWidget(lblBeforeSnapshotAge);
  before->addWidget(lblAfterSnapshotAge);

  MakePage(3, "&Install Software",
           "You may now install your software. You will be returned to this screen when the "
           "software installation completes. If the software requires a reboot, start Sandrel "
           "after rebooting and you will be returned to the Snapshot / Analysis Wizard.");
  MakeBrowsePage(3, "&Run:", txtRun, cmdBrowse);

  MakeWaitPage();

  MakePage(5, "Save Analysis As",
           "An 'After Snapshot' and Analysis will now be created. The analysis information is "
           "stored as views that represent the changes that were made to your computer between "
           "the time the 'Before' and 'After' snapshots were taken.");
  MakeBrowsePage(5, "Name:", txtViewName, cmdSaveAnalysisBrowse);

  QVBoxLayout* const last = MakePage(6, "", "");
  auto* const done = new QHBoxLayout;
  auto* const picFinish = new QLabel(picPage[6]);
  picFinish->setObjectName("picFinish");
  picFinish->setPixmap(
      icons::Window().pixmap(QSize(PictureSize, PictureSize), devicePixelRatioF()));
  done->addWidget(picFinish);
  done->addWidget(Wrapped("Snapshot / Analysis complete!", picPage[6]), 1);
  last->addStretch();
  last->addLayout(done);
  last->addStretch();

  for (const int page : {1, 2, 3, 4, 5}) {
    static_cast<QVBoxLayout*>(picPage[static_cast<std::size_t>(page)]->layout())->addStretch();
  }
}

void frmWizard::MakeBrowsePage(int page, const char* label, QLineEdit* edit, QPushButton* browse) {
  auto* const line = new QHBoxLayout;
  auto* const words = new QLabel(label, picPage[static_cast<std::size_t>(page)]);
  words->setBuddy(edit);
  edit->setAccessibleName(QString(label).remove('&').remove(':'));
  line->addWidget(words);
  line->addWidget(edit, 1);
  line->addWidget(browse);
  static_cast<QVBoxLayout*>(picPage[static_cast<std::size_t>(page)]->layout())->addLayout(line);
}

void frmWizard::MakeWaitPage() {
  QVBoxLayout* const page =
      MakePage(4, "&Installation Complete Detected",
               "The Wizard has detected that the software installation is complete. Click the "
               "Next button to begin the 'After Snapshot' and Analysis. Select to wait a while "
               "longer if the installation is not yet complete.");
  optInstComplete = {
      AddOption(4, "optInstComplete", 0, "Create the 'After Snapshot and Analysis'"),
      AddOption(4, "optInstComplete", 1, "Wait - The installation is not complete yet")};
  lblWait1->setBuddy(txtWait);
  txtWait->setAccessibleName("Minutes to wait");
  txtWait->setFixedWidth(txtWait->fontMetrics().horizontalAdvance("000000000"));
  static const QRegularExpression digits("[0-9]*");
  txtWait->setValidator(new QRegularExpressionValidator(digits, txtWait));
  auto* const line = new QHBoxLayout;
  line->setContentsMargins(24, 0, 0, 0);
  line->addWidget(lblWait1);
  line->addWidget(txtWait);
  line->addWidget(lblWait2);
  line->addStretch();
  page->addLayout(line);
}

// As large as the largest page needs, so that nothing moves between them.
void frmWizard::Arrange() {
  picWiz->setPixmap(
      icons::Tool("Wizard").pixmap(QSize(PictureSize, PictureSize), devicePixelRatioF()));
  picWiz->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  picWiz->setContentsMargins(0, 16, 0, 0);
  picWiz->setFixedWidth(qt::ToPixels(clsWizard::PictureWidth));
  picWiz->setBackgroundRole(QPalette::Base);
  picWiz->setAutoFillBackground(true);

  m_pages = new QStackedLayout;
  for (QWidget* const page : picPage) m_pages->addWidget(page);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(6);
  buttons->addStretch();
  for (QPushButton* const button : {cmdPrevious, cmdNext, cmdFinish, cmdCancel}) {
    buttons->addWidget(button);
  }
  auto* const right = new QVBoxLayout;
  right->setContentsMargins(12, 12, 12, 12);
  right->setSpacing(10);
  right->addLayout(m_pages, 1);
  right->addLayout(buttons);
  auto* const all = new QHBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(0);
  all->addWidget(picWiz);
  all->addLayout(right, 1);

  const int width = qt::ToPixels(clsWizard::PictureWidth + BesidePicture);
  int height = qt::ToPixels(FormHeight);
  for (QWidget* const page : picPage) {
    // A wrapped text's height follows from its width.
    const int room = width - picWiz->width() - 24;
    height = std::max(height, page->layout()->totalHeightForWidth(room) + 24 + right->spacing() +
                                  buttons->sizeHint().height());
  }
  resize(QSize(width, height).expandedTo(minimumSizeHint()));
  setMinimumSize(size());
}

void frmWizard::Connect() {
  const auto act = [this](QPushButton* button, void (clsWizardFlow::*what)()) {
    qt::Connect(button, &QPushButton::clicked, this,
                [this, what] { Run([this, what] { (m_flow.*what)(); }); });
  };
  act(cmdNext, &clsWizardFlow::cmdNext_Click);
  act(cmdPrevious, &clsWizardFlow::cmdPrevious_Click);
  act(cmdBrowse, &clsWizardFlow::cmdBrowse_Click);
  act(cmdSaveAnalysisBrowse, &clsWizardFlow::cmdSaveAnalysisBrowse_Click);
  for (QPushButton* const button : {cmdFinish, cmdCancel}) {
    qt::Connect(button, &QPushButton::clicked, this, [this] { Unload(); });
  }
  for (int index = 0; index < 2; ++index) {
    qt::Connect(optScanSettings[static_cast<std::size_t>(index)], &QRadioButton::clicked, this,
                [this, index] { m_flow.optScanSettings_Click(index); });
    qt::Connect(optInstComplete[static_cast<std::size_t>(index)], &QRadioButton::clicked, this,
                [this, index] { m_flow.optInstComplete_Click(index); });
  }
  for (int index = 0; index < 3; ++index) {
    qt::Connect(optBeforeSS[static_cast<std::size_t>(index)], &QRadioButton::clicked, this,
                [this, index] { m_flow.optBeforeSS_Click(index); });
  }
  qt::Connect(txtRun, &QLineEdit::textEdited, this,
              [this](const QString& text) { m_flow.txtRun_Change(text.toStdString()); });
  qt::Connect(txtViewName, &QLineEdit::textEdited, this,
              [this](const QString& text) { m_flow.txtViewName_Change(text.toStdString()); });
  qt::Connect(txtViewName, &QLineEdit::editingFinished, this,
              [this] { m_flow.txtViewName_LostFocus(); });
  qt::Connect(txtWait, &QLineEdit::textEdited, this,
              [this](const QString& text) { m_flow.txtWait_Change(text.toStdString()); });
}

// One action at a time: messages pass while one runs.
void frmWizard::Run(const std::function<void()>& action) {
  if (m_running || m_unloaded) return;
  const QScopedValueRollback<bool> running(m_running, true);
  action();
}

void frmWizard::DisplayPage(std::int16_t& page, bool forward, bool runActions) {
  Run([&] { m_flow.DisplayPage(page, forward, runActions); });
}

void frmWizard::Refresh() {
  const clsWizardFlow::Controls& shown = m_flow.Shown();
  const auto choose = [](const auto& options, int chosen) {
    for (std::size_t i = 0; i < options.size(); ++i) {
      options[i]->setChecked(static_cast<int>(i) == chosen);
    }
  };
  choose(optScanSettings, shown.optScanSettings);
  choose(optBeforeSS, shown.optBeforeSS);
  choose(optInstComplete, shown.optInstComplete);
  optBeforeSS[1]->setEnabled(shown.canReplace);
  optBeforeSS[2]->setEnabled(shown.canUseExisting);
  lblMachine->setText(qt::FromText(shown.lblMachine));
  lblBeforeSnapshotAge->setText(qt::FromText(shown.lblBeforeSnapshotAge));
  lblAfterSnapshotAge->setText(qt::FromText(shown.lblAfterSnapshotAge));
  Show(*txtRun, shown.txtRun);
  Show(*txtWait, shown.txtWait);
  Show(*txtViewName, shown.txtViewName);
  for (QWidget* const part : std::initializer_list<QWidget*>{txtWait, lblWait1, lblWait2}) {
    part->setEnabled(shown.CanWait());
  }
  const QWidget* const before = m_pages->currentWidget();
  for (std::size_t i = 0; i < picPage.size(); ++i) {
    if (shown.picPage[i].Visible) m_pages->setCurrentWidget(picPage[i]);
  }
  cmdNext->setEnabled(shown.cmdNextEnabled);
  cmdPrevious->setEnabled(shown.cmdPreviousEnabled);
  cmdFinish->setEnabled(shown.cmdFinishEnabled);
  cmdCancel->setEnabled(shown.cmdCancelEnabled);
  (shown.cmdFinishEnabled ? cmdFinish : cmdNext)->setDefault(true);
  // Enter goes on, also on a page that no click has led to.
  if (m_pages->currentWidget() != before && cmdNext->isEnabled()) cmdNext->setFocus();
}

void frmWizard::SetFocus(WizardControl control) {
  switch (control) {
    case WizardControl::txtRun:
      return txtRun->setFocus();
    case WizardControl::txtViewName:
      return txtViewName->setFocus();
    case WizardControl::cmdFinish:
      return cmdFinish->setFocus();
  }
}

void frmWizard::SetWizardVisible(bool visible) {
  if (m_unloaded) return;
  setVisible(visible);
  if (!visible) return;
  raise();
  activateWindow();
}

void frmWizard::Unload() {
  if (m_unloaded) return;
  m_unloaded = true;
  clsControlsWorks::Unload(this);
  hide();
}

// Escape. The last page has only its one button.
void frmWizard::reject() {
  qt::Guard(this, [&] {
    if (cmdCancel->isEnabled()) Unload();
  });
}

void frmWizard::closeEvent(QCloseEvent* event) {
  qt::Guard(this, [&] {
    event->accept();
    Unload();
  });
}

}  // namespace sandrel
