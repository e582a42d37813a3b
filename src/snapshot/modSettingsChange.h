// Changing what a snapshot scans. Snapshots that were taken under other settings can't be compared
// with later ones, so such a change clears them.
#pragma once

#include <functional>
#include <string_view>

#include "common/clsShell.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "store/clsTableMaint.h"

namespace sandrel {

/// True when scans and analyses read the setting.
bool IsScanSetting(std::string_view section, std::string_view key);

/// Asks whether snapshots of this level may be cleared; without any there is nothing to ask.
bool ConfirmSettingsChange(clsShell& shell, SnapshotLevel level);

/// Asks, then stores what `save` saves and clears the home's snapshots: both or neither. False when
/// the user refused. Raises errnum::HomeBusy while another process scans, and the number of what
/// failed; nothing is changed then.
bool ChangeScanSettings(clsShell& shell, clsSettings& settings, const clsHome& home,
                        const std::function<void()>& save);

}  // namespace sandrel
