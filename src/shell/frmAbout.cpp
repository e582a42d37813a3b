#include "shell/frmAbout.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <utility>

#include "platform/dao/Workspace.h"
#include "platform/qt/Icons.h"
#include "platform/qt/modGuard.h"
#include "shell/modSystemInfo.h"

namespace sandrel {
namespace {

constexpr const char* Title = "Sandrel";
constexpr int IconSize = 64;

}  // namespace

frmAbout::frmAbout(clsShell& shell, std::function<std::shared_ptr<clsMachine>()> openMachine,
                   const QString& version, QWidget* parent)
    : QDialog(parent),
      m_shell(shell),
      m_openMachine(std::move(openMachine)),
      imgIcon(AddLabel("imgIcon", QString())),
      lblProgramNameAndVersion(
          AddLabel("lblProgramNameAndVersion", Title + (" - Version " + version))),
      cmdSysinfo(new QPushButton("&System Info...", this)) {
  setObjectName("frmAbout");
  setWindowTitle(QString("About ") + Title);
  imgIcon->setPixmap(icons::Window().pixmap(QSize(IconSize, IconSize), devicePixelRatioF()));
  imgIcon->setAccessibleName(Title);
  QFont large = lblProgramNameAndVersion->font();
  large.setPointSizeF(large.pointSizeF() * 1.4);
  large.setBold(true);
  lblProgramNameAndVersion->setFont(large);
  cmdSysinfo->setObjectName("cmdSysinfo");
  qt::Connect(cmdSysinfo, &QPushButton::clicked, this, [this] { cmdSysinfo_Click(); });

  auto* const texts = new QVBoxLayout;
  texts->setSpacing(8);
  texts->addWidget(lblProgramNameAndVersion);
  texts->addWidget(
      AddLabel("lblPurpose", "Finds out what an installation does to a Windows machine."));
  texts->addSpacing(8);
  texts->addWidget(AddLabel("lblLicence", "Copyright © 2026 The Sandrel authors. MIT licence."));
  texts->addWidget(AddLabel(
      "lblLibraries", QString("With Qt %1 and %2.")
                          .arg(qVersion(), QString::fromStdString(dao::DBEngine::Version()))));
  auto* const top = new QHBoxLayout;
  top->setSpacing(20);
  top->addWidget(imgIcon, 0, Qt::AlignTop);
  top->addLayout(texts, 1);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  buttons->addButton(cmdSysinfo, QDialogButtonBox::ActionRole);
  buttons->button(QDialogButtonBox::Ok)->setDefault(true);
  buttons->button(QDialogButtonBox::Ok)->setFocus();
  qt::Connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(20, 20, 20, 14);
  column->setSpacing(20);
  column->addLayout(top);
  column->addWidget(buttons);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

QLabel* frmAbout::AddLabel(const char* name, const QString& text) {
  auto* const label = new QLabel(text, this);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

void frmAbout::cmdSysinfo_Click() {
  if (StartSystemInfo(m_openMachine)) return;
  m_shell.Ask({"System Information Is Unavailable At This Time", "About Sandrel"});
}

}  // namespace sandrel
