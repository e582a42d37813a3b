#include "browser/clsMainControls.h"

#include <fmt/format.h>

namespace sandrel {
namespace {

struct ItemText {
  const char* Parent;
  const char* Name;
  const char* Caption;
  const char* Shortcut = "";
};

constexpr ItemText Items[] = {
    {"", "mnuFile", "&File"},
    {"mnuFile", "mnuFileOpen", "&Open...", "Ctrl+O"},
    {"mnuFile", "mnuFileClose", "&Close", "Ctrl+W"},
    {"mnuFile", "mnuFileSep0", "-"},
    {"mnuFile", "mnuFileExport", "&Export"},
    {"mnuFileExport", "mnuFileExportToRegFile", "To &Registry File..."},
    {"mnuFileExport", "mnuFileExportFiles", "Copy &Files..."},
    {"mnuFile", "mnuFileSep1", "-"},
    {"mnuFile", "mnuFilePrintSetup", "Print Set&up..."},
    {"mnuFile", "mnuFilePrintPreview", "Print Pre&view"},
    {"mnuFile", "mnuFilePrint", "&Print", "Ctrl+P"},
    {"mnuFile", "mnuFileSep3", "-"},
    {"mnuFile", "mnuFileExit", "E&xit", "Ctrl+Q"},
    {"mnuFile", "mnuFileSep2", "-"},
    {"mnuFile", "mnuFileRecent(1)", ""},
    {"mnuFile", "mnuFileRecent(2)", ""},
    {"mnuFile", "mnuFileRecent(3)", ""},
    {"mnuFile", "mnuFileRecent(4)", ""},
    {"mnuFile", "mnuFileRecent(5)", ""},
    {"", "mnuEdit", "&Edit"},
    {"mnuEdit", "mnuEditUndo", "&Undo", "Ctrl+Z"},
    {"mnuEdit", "mnuEditSep0", "-"},
    {"mnuEdit", "mnuEditCopy", "&Copy", "Ctrl+C"},
    {"mnuEdit", "mnuEditDelete", "&Delete", "Del"},
    {"mnuEdit", "mnuEditSep1", "-"},
    {"mnuEdit", "mnuEditSelectAll", "Select &All", "Ctrl+A"},
    {"", "mnuSnapShot", "&SnapShot"},
    {"mnuSnapShot", "mnuSnapShotBefore", "&Before Snapshot"},
    {"mnuSnapShot", "mnuSnapShotAfter", "A&fter Snapshot and Analysis..."},
    {"mnuSnapShot", "mnuSnapShotSep0", "-"},
    {"mnuSnapShot", "mnuSnapShotRollUp", "&Replace Before With After"},
    {"mnuSnapShot", "mnuSnapShotSep1", "-"},
    {"mnuSnapShot", "mnuSnapShotWizard", "&Wizard..."},
    {"mnuSnapShot", "mnuSnapShotSep2", "-"},
    {"mnuSnapShot", "mnuSnapShotCancelOperation", "Stop / &Cancel Scanning..."},
    {"", "mnuColumns", "Se&ttings"},
    {"mnuColumns", "mnuSettingsConfig", "&Configuration..."},
    {"mnuColumns", "mnuSettingsPrintFont", "Print &Font..."},
    {"mnuColumns", "mnuSettingsMachine", "&Machine..."},
    {"mnuColumns", "mnuSettingsSep0", "-"},
    {"mnuColumns", "mnuSettingsColumnsResetWidths", "Reset Column &Widths"},
    {"mnuSettingsColumnsResetWidths", "mnuSettingsColumnsResetWidthsCurrent", "&Current Page"},
    {"mnuSettingsColumnsResetWidths", "mnuSettingsColumnsResetWidthsAll", "&All Pages"},
    {"mnuColumns", "mnuSettingsColumnsResetOrder", "Reset Column &Order"},
    {"mnuSettingsColumnsResetOrder", "mnuSettingsColumnsResetOrderCurrent", "&Current Page"},
    {"mnuSettingsColumnsResetOrder", "mnuSettingsColumnsResetOrderAll", "&All Pages"},
    {"mnuColumns", "mnuSettingsSep1", "-"},
    {"mnuColumns", "mnuSettingsSystray", "&Run In System Tray"},
    {"", "mnuView", "&View"},
    {"mnuView", "mnuViewToolbar", "&Toolbar"},
    {"mnuView", "mnuViewStatusbar", "&Status Bar"},
    {"mnuView", "mnuViewSep0", "-"},
    {"mnuView", "mnuViewExpandCurrent", "&Expand Current"},
    {"mnuView", "mnuViewCollapseCurrent", "&Collapse Current"},
    {"mnuView", "mnuViewExpandAll", "E&xpand All"},
    {"mnuView", "mnuViewCollapseAll", "C&ollapse All"},
    {"", "mnuHelp", "&Help"},
    {"mnuHelp", "mnuHelpContents", "&Contents", "F1"},
    {"mnuHelp", "mnuHelpIndex", "&Index"},
    {"mnuHelp", "mnuHelpSep0", "-"},
    {"mnuHelp", "mnuHelpAbout", "&About Sandrel..."},
    {"", "mnuSysTrayPopup", "Systray Menu"},
    {"mnuSysTrayPopup", "mnuSysTrayPopupRestore", "&Restore Sandrel"},
    {"mnuSysTrayPopup", "mnuSysTrayPopupWizard", "Snapshot / Analysis &Wizard"},
    {"mnuSysTrayPopup", "mnuSysTrayPopupExit", "&Exit Sandrel"},
};

// A button with an empty key is a separator.
constexpr std::array<std::array<const char*, 3>, 19> Buttons = {{
    {"Open", "Open", "mnuFileOpen"},
    {"Close", "Close", "mnuFileClose"},
    {"", "", ""},
    {"PrintPreview", "Print Preview", "mnuFilePrintPreview"},
    {"Print", "Print", "mnuFilePrint"},
    {"", "", ""},
    {"Undo", "Undo", "mnuEditUndo"},
    {"Copy", "Copy", "mnuEditCopy"},
    {"Delete", "Delete", "mnuEditDelete"},
    {"", "", ""},
    {"BeforeSnapshot", "Before Snapshot", "mnuSnapShotBefore"},
    {"AfterSnapshot", "After Snapshot And Analysis", "mnuSnapShotAfter"},
    {"ReplaceBeforeSnapshot", "Replace Before Snapshot With After", "mnuSnapShotRollUp"},
    {"Wizard", "Snapshot / Analysis Wizard", "mnuSnapShotWizard"},
    {"StopScanning", "Stop / Cancel Scanning", "mnuSnapShotCancelOperation"},
    {"", "", ""},
    {"Help", "Help", "mnuHelpContents"},
    {"", "", ""},
    {"lastssplaceholder", "Time of last before Snapshot", ""},
}};

}  // namespace

std::string clsMainControls::Element(std::string_view name, int index) {
  return fmt::format("{}({})", name, index);
}

void clsMainControls::SetCaption(std::string caption) {
  m_caption = std::move(caption);
  if (CaptionChanged) CaptionChanged();
}

void clsMainControls::EnableButton(std::string_view key, bool enabled) {
  const std::string& item = tlbarMain.Button(key).Item;
  tlbarMain.Enable(key, enabled && Menus[item].Click != nullptr);
}

void clsMainControls::HideLists() {
  for (ListView& list : listView) list.SetVisible(false);
}

clsMainControls::clsMainControls() : clsMainControls(std::make_index_sequence<page::Count>()) {}

template <std::size_t... Index>
clsMainControls::clsMainControls(std::index_sequence<Index...>)
    : listView{((void)Index, ListView(Texts))...} {
  for (const ItemText& text : Items) {
    Menus.Add(text.Parent, text.Name, text.Caption).Shortcut = text.Shortcut;
  }
  Menus["mnuSysTrayPopup"].SetVisible(false);  // not on the bar
  for (const char* checked : {"mnuSettingsSystray", "mnuViewToolbar", "mnuViewStatusbar"}) {
    Menus[checked].CanCheck = true;
  }
  for (const auto& [key, tip, item] : Buttons) tlbarMain.Buttons.push_back({key, tip, item});
}

}  // namespace sandrel
