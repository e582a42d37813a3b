#include "browser/clsAnalysisFiles.h"

#include <fmt/format.h>

#include <utility>

#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/modKeep.h"
#include "snapshot/modFileDialogs.h"

namespace sandrel {
namespace {

constexpr const char* Section = "Recent Files";
constexpr int Most = 5;
constexpr std::size_t LongestShown = 40;

std::string NameOf(const std::string& path) {
  return clsPathText::TextAfterLast(path, "/");
}

std::string Key(int index) {
  return fmt::format("RecentFile{}", index);
}

// The text without its first `units` UTF-16 units.
std::string_view Behind(std::string_view whole, std::size_t units) {
  return whole.substr(text::Left(whole, units).size());
}

}  // namespace

clsAnalysisFiles::clsAnalysisFiles(clsShell& shell, clsSettings& settings,
                                   clsMainControls& controls, clsPages& pages, const clsHome& home,
                                   std::function<bool(const std::string& path)> open)
    : m_shell(shell),
      m_settings(settings),
      m_controls(controls),
      m_pages(pages),
      m_home(home),
      m_open(std::move(open)) {}

std::string clsAnalysisFiles::RecentFile(int index) {
  return m_settings.GetSetting(Section, Key(index));
}

void clsAnalysisFiles::Store(int index, const std::string& path) {
  m_settings.SaveSetting(Section, Key(index), path);
}

void clsAnalysisFiles::mnuFileOpen_Click() {
  const std::string path = GetViewNameAndLocation(m_shell, m_home.Path(), "Open Sandrel Database");
  if (!path.empty()) OpenNamed(path);
}

void clsAnalysisFiles::OpenNamed(const std::string& path) {
  if (clsFileWorks::FileExists(path)) {
    m_open(path);
  } else {
    m_shell.Ask({"File " + path +
                     " not found. An analysis file must exist before it can be opened.\n\nIf you "
                     "wish to create a new file, select 'After Snapshot and Analysis' from "
                     "Sandrel's 'Snapshot' menu. If you wish to open an existing file, please try "
                     "again. ",
                 "Sandrel Manager", Buttons::Ok, BoxIcon::Critical});
  }
  m_shell.UpdateCommandState();
}

// The list may have been changed by another window since the menu was made.
void clsAnalysisFiles::mnuFileRecent_Click(int index) {
  const std::string path = m_shownRecent[static_cast<std::size_t>(index)];
  if (clsFileWorks::FileExists(path)) {
    m_open(path);
  } else {
    m_shell.Ask({"File " + path + " not found", "Sandrel Manager", Buttons::Ok, BoxIcon::Critical});
    RemoveFromRecentFileList(path);
    UpdateRecentFileMenu();
  }
  m_shell.UpdateCommandState();
}

void clsAnalysisFiles::mnuFile_Click() {
  const bool open = !m_shell.State.AnalysisPath.empty();
  for (const char* item : {"mnuFileClose", "mnuFilePrint", "mnuFilePrintPreview"}) {
    m_controls.Menus[item].SetEnabled(open);
  }
  for (const char* button : {"Close", "Print", "PrintPreview"}) {
    m_controls.EnableButton(button, open);
  }
  const bool rows = open && m_pages.CountSelected(true) > 0;  // folders are copied too
  bool registry = false;
  bool files = false;
  switch (m_pages.CurrentListIndex()) {
    case page::NewRegistry:
    case page::ChangedRegistry:
    case page::DeletedRegistry:
    case page::AllRegistry:
    case page::SharedPage:
      registry = rows;
      break;
    case page::NewFiles:
    case page::ChangedFiles:
    case page::AllFiles:
    case page::FilteredPage:
      files = rows;
      break;
    default:
      break;
  }
  m_controls.Menus["mnuFileExportToRegFile"].SetEnabled(registry);
  m_controls.Menus["mnuFileExportFiles"].SetEnabled(files);
  m_controls.Menus["mnuFileExport"].SetEnabled(registry || files);
}

// A failure costs the list, not the analysis that is being opened.
void clsAnalysisFiles::Keep(const std::function<void()>& save) {
  sandrel::Keep(m_shell, m_settings, "The list of recent files", save);
}

void clsAnalysisFiles::UpdateFileMenu(const std::string& path) {
  m_controls.SetCaption(NameOf(path) + " - Sandrel");
  Keep([&] {
    RemoveFromRecentFileList(path);
    AddToRecentFileList(path);
  });
  UpdateRecentFileMenu();
}

void clsAnalysisFiles::AddToRecentFileList(const std::string& path) {
  Keep([&] {
    for (int i = Most - 1; i >= 1; --i) {
      if (const std::string moved = RecentFile(i); !moved.empty()) Store(i + 1, moved);
    }
    Store(1, path);
  });
}

void clsAnalysisFiles::RemoveFromRecentFileList(const std::string& path) {
  int found = 1;
  while (found <= Most && text::Lower(RecentFile(found)) != text::Lower(path)) ++found;
  if (found > Most) return;
  Keep([&] {
    int last = found;
    for (; last < Most; ++last) {
      const std::string next = RecentFile(last + 1);
      if (next.empty()) break;
      Store(last, next);
    }
    Store(last, "");
    m_controls.Menus[clsMainControls::Element("mnuFileRecent", last)].SetVisible(false);
  });
  if (RecentFile(1).empty()) m_controls.Menus["mnuFileSep2"].SetVisible(false);
}

std::string clsAnalysisFiles::ShortPath(const std::string& path) {
  constexpr std::size_t Kept = LongestShown - 3;
  const std::size_t length = text::Length(path);
  if (length <= LongestShown) return path;
  if (text::Length(NameOf(path)) <= LongestShown) {
    return "..." + std::string(Behind(path, length - Kept));
  }
  return std::string(text::Left(path, Kept)) + "...";
}

void clsAnalysisFiles::UpdateRecentFileMenu() {
  const auto item = [&](int index) -> MenuItem& {
    return m_controls.Menus[clsMainControls::Element("mnuFileRecent", index)];
  };
  for (int i = 1; i <= Most; ++i) item(i).SetVisible(false);
  m_controls.Menus["mnuFileSep2"].SetVisible(!RecentFile(1).empty());
  for (int i = 1; i <= Most && !RecentFile(i).empty(); ++i) {
    std::string caption = fmt::format("&{}   ", i);
    for (const char c : ShortPath(RecentFile(i))) caption += c == '&' ? "&&" : std::string(1, c);
    item(i).SetCaption(caption);
    m_shownRecent[static_cast<std::size_t>(i)] = RecentFile(i);
    item(i).SetVisible(true);
  }
}

}  // namespace sandrel
