#pragma once

/// The keys of the user defaults: all settings and the small persistent state, in one flat store.
///
/// Several processes share the store: the application, the one that it starts again in the other launch mode, and the
/// command line. A key, once released, keeps its name and the type of its values: older stores hold them, and no value
/// is ever migrated. The types and what stands in for a missing value are in records/Preferences.h.
namespace brindle::DefaultsKeys {

// Bool, except where a line says otherwise.
inline constexpr const char *kPreferencesInitialized = "PreferencesInitialized";
inline constexpr const char *kShowInternalDisks = "ShowInternalDisks";
inline constexpr const char *kShowExternalDisks = "ShowExternalDisks";
inline constexpr const char *kShowRemovableDisks = "ShowRemovableDisks";
inline constexpr const char *kShowDiskImages = "ShowDiskImages";
inline constexpr const char *kShowNotifications = "ShowNotifications";
inline constexpr const char *kAutoOpenFinderOnMount = "AutoOpenFinderOnMount";
inline constexpr const char *kAutoOpenConfigOnMount = "AutoOpenConfigOnMount";
inline constexpr const char *kOpenEFIOnNotificationClick = "OpenEFIOnNotificationClick";
inline constexpr const char *kEnableGlobalHotkey = "EnableGlobalHotkey";
inline constexpr const char *kShowDiskSpaceIndicator = "ShowDiskSpaceIndicator";
/// A key of its own, which nobody writes: it differs from the one above by the case of its first letter.
inline constexpr const char *kLowerCaseShowDiskSpaceIndicator = "showDiskSpaceIndicator";
inline constexpr const char *kShowSMARTStatus = "ShowSMARTStatus";
inline constexpr const char *kLaunchMode = "LaunchMode"; ///< Text: "menubar" or "window".
inline constexpr const char *kIsModeSwitchRelaunch = "IsModeSwitchRelaunch";
inline constexpr const char *kHasLaunchedBefore = "HasLaunchedBefore";
inline constexpr const char *kHasRunBundleIDMigration = "HasRunBundleIDMigration";
inline constexpr const char *kAutoMountDiskUUIDs = "AutoMountDiskUUIDs";                     ///< Dictionary of texts.
inline constexpr const char *kLastRefreshTime = "DiskManager.LastRefreshTime";               ///< Date.
inline constexpr const char *kPersistedDisks = "DiskManager.PersistedDisks";                 ///< Data: JSON.
inline constexpr const char *kPersistedExpandedDisks = "DiskManager.PersistedExpandedDisks"; ///< Array of texts.
inline constexpr const char *kLaunchAtLogin = "LaunchAtLogin";

// The update service's own.
inline constexpr const char *kSUEnableAutomaticChecks = "SUEnableAutomaticChecks";
inline constexpr const char *kSUScheduledCheckInterval = "SUScheduledCheckInterval"; ///< Double: seconds.
inline constexpr const char *kSUAutomaticallyUpdate = "SUAutomaticallyUpdate";
inline constexpr const char *kSUShowReleaseNotes = "SUShowReleaseNotes";
inline constexpr const char *kSUEnableSystemProfiling = "SUEnableSystemProfiling";

} // namespace brindle::DefaultsKeys
