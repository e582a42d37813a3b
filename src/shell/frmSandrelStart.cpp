// How the main window comes up and goes down.
#include <fmt/format.h>

#include <QApplication>
#include <QLayout>
#include <algorithm>

#include "common/clsFileWorks.h"
#include "common/text.h"
#include "config/frmPlacement.h"
#include "config/modKeep.h"
#include "platform/qt/clsTreeWidget.h"
#include "platform/qt/modTwips.h"
#include "shell/frmSandrel.h"
#include "shell/frmSplash.h"
#include "snapshot/clsStatements.h"
#include "wizard/modActivateApp.h"

#ifndef SANDREL_VERSION
#define SANDREL_VERSION "0.0.0"
#endif

namespace sandrel {
namespace {

constexpr const char* Section = "Main Form";

}  // namespace

void frmSandrel::Form_Load() {
  clsStatements run(*this, "frmSandrel.Form_Load");
  run.Command(
      [&] {
        if (m_options.PrevInstance) {
          run([&] { ActivatePreviousInstance(); });
          Form_Unload();
          return;
        }
        m_loaded = true;
        run([&] { ShowSplash(); });
        m_controls.FormReady = true;
        run([&] { m_browser.Files.UpdateRecentFileMenu(); });
        m_controls.SetCaption("Untitled - Sandrel");
        run([&] { LoadWindowPlacement(); });
        State.Scanning = false;
        run([&] { UpdateCommandState(); });
        m_controls.SysTray.SetTip(m_controls.Caption());
        run([&] { ShowInTrayOrOnScreen(); });
        run([&] { DoEvents(false); });
        if (m_unloaded) return;
        run([&] { m_controls.Deletes.Start(); });
        bool checkBeforeSnapshot = false;
        run([&] { ReopenLast(checkBeforeSnapshot); });
        if (m_unloaded) return;
        run([&] { SetHelpFile(); });
        if (checkBeforeSnapshot) run([&] { AskForBefore(); });
        if (m_unloaded) return;
        if (m_options.Command == WizardCommand) run([&] { GoOnWithWizard(); });
        run([&] { m_snapshots.ShowLastBeforeSnapshot(); });
        run([&] { RefreshMenus(); });
      },
      [] {});
}

void frmSandrel::ActivatePreviousInstance() {
  if (m_options.CallPrevious && m_options.CallPrevious(m_options.File)) return;
  if (!m_options.File.empty()) {
    // Who opens a file waits for something to happen.
    Ask({"Sandrel is already running. Its File menu opens this file:\n\n" + m_options.File,
         "Sandrel Manager", Buttons::Ok, BoxIcon::Information});
    modActivateApp::ActivateApp(m_windows, " - Sandrel", modActivateApp::MatchBy::Ends, true,
                                false);
    return;
  }
  const WindowHandle window = modActivateApp::FindAppWindow(
      m_windows, "Sandrel - ", modActivateApp::MatchBy::Begins, true, false);
  m_windows.ShowWindow(window, SwRestore);
  m_windows.OpenIcon(window);
  m_windows.SetForegroundWindow(window);
}

// Another start of the program on this home has called.
void frmSandrel::ComeForward(const std::string& file) {
  if (m_unloaded) return;
  RestoreForm();
  if (file.empty()) return;
  // A box that waits for an answer, or a running command, goes first.
  if (State.Busy || QApplication::activeModalWidget() != nullptr) {
    Tell("Its File menu opens this file:\n\n" + file);
    return;
  }
  m_browser.Command("frmSandrel.ComeForward", [&] { m_browser.Files.OpenNamed(file); });
}

// The pass over waiting messages lets a held Shift key reach the splash.
void frmSandrel::ShowSplash() {
  m_splash = std::make_unique<frmSplash>(SANDREL_VERSION);
  m_splash->OnShift = [this] { m_noAutoLoadDatabase = true; };
  m_splash->OnUnload = [this] { m_splash.release()->deleteLater(); };
  m_splash->show();
  DoEvents(false);
  if (m_splash != nullptr && m_splash->ShiftIsDown()) m_noAutoLoadDatabase = true;
}

void frmSandrel::UnloadSplash() {
  if (m_splash != nullptr) m_splash->Unload();
}

void frmSandrel::ShowInTrayOrOnScreen() {
  MenuItem& item = m_controls.Menus["mnuSettingsSystray"];
  item.SetChecked(text::ReadBoolean(m_settings.GetSetting("Enabled", "Systray"), false));
  m_controls.SysTray.Look();
  item.SetEnabled(m_controls.SysTray.Available);
  m_controls.SysTray.SetInTray(item.Checked());
  if (m_controls.SysTray.InTray()) return;
  show();
  treeView->setFocus();
  if (m_splash != nullptr) m_splash->raise();
}

void frmSandrel::ReopenLast(bool& checkBeforeSnapshot) {
  if (!m_options.File.empty()) {
    m_browser.Files.OpenNamed(m_options.File);
    return;
  }
  const std::string path = m_browser.Files.RecentFile(1);
  if (path.empty()) {
    checkBeforeSnapshot = true;
  } else if (!m_noAutoLoadDatabase) {
    if (clsFileWorks::FileExists(path)) {
      m_browser.Open(path);
    } else {
      checkBeforeSnapshot = true;
    }
  }
}

void frmSandrel::AskForBefore() {
  if (clsFileWorks::FileExists(m_home.WorkingDatabase())) return;
  UnloadSplash();
  if (!HasMachine()) {
    if (Ask({"There is no Windows machine to look at yet.\n\nWould you like to choose one now?",
             "Sandrel Manager", Buttons::YesNo, BoxIcon::Question}) != Answer::Yes) {
      return;
    }
    mnuSettingsMachine_Click();
    if (!HasMachine()) return;
  }
  if (Ask({"A 'Before' Snapshot of your drive(s) and registry was not found!\n\nWould you like to "
           "create one now?",
           "Sandrel Manager", Buttons::YesNo, BoxIcon::Question}) == Answer::Yes) {
    m_controls.Menus.Run("mnuSnapShotBefore");
  }
}

void frmSandrel::LoadWindowPlacement() {
  placement::Load(*this, m_settings, Section);
  const std::string split = m_settings.GetSetting(Section, "SplitPos");
  m_controls.treeView.Width = split.empty()
                                  ? qt::ToTwips(width()) / 4
                                  : static_cast<int>(std::clamp(text::Val(split), 0.0, 1e6));
  layout()->activate();  // the pages' columns need the room before the window shows
  Form_Resize();
}

void frmSandrel::SaveWindowPlacement() {
  Keep(*this, m_settings, "The window's place", [&] {
    placement::Save(*this, m_settings, Section);
    m_settings.SaveSetting(Section, "SplitPos", fmt::to_string(m_controls.treeView.Width));
  });
}

// True when the window stays.
bool frmSandrel::Form_Unload() {
  if (m_unloaded) return false;
  if (m_unloading) return true;
  if (m_loaded) {
    m_controls.SysTray.Look();
    if (m_controls.SysTray.InTray()) {
      hide();
      return true;
    }
    if (State.Scanning) {
      State.CloseDown = m_snapshots.ConfirmCancelScan();
      return true;
    }
    m_unloading = true;
    TearDown();
    m_unloading = false;
  }
  m_unloaded = true;
  UnloadSplash();
  UnloadHelp();
  m_controls.FormReady = false;
  SetMousePointer(pointer::Default);
  hide();
  QCoreApplication::exit(0);
  return false;
}

void frmSandrel::TearDown() {
  Save();
  m_controls.Deletes.End();
  State.AnalysisPath.clear();  // pages that are being loaded stop here
}

void frmSandrel::Save() {
  clsStatements run(*this, "frmSandrel.Form_Unload");
  run.Command(
      [&] {
        run([&] { CommitPendingDeletes(); });
        run([&] { m_browser.SaveLayout(); });
        run([&] { SaveWindowPlacement(); });
      },
      [] {});
}

}  // namespace sandrel
