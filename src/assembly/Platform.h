#pragma once

#include "base/Secret.h"
#include "platform/Appearance.h"
#include "platform/BundleInfo.h"
#include "platform/ChildProcess.h"
#include "platform/Dialogs.h"
#include "platform/DiskEvents.h"
#include "platform/FileManager.h"
#include "platform/Scheduler.h"
#include "platform/SecretStore.h"
#include "platform/SystemValues.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotifications.h"
#include "platform/Workspace.h"
#include "records/ToolPaths.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace brindle {

/// What the system supplies, one object for each platform interface. A test puts its own in their place.
struct Platform {
    std::unique_ptr<Scheduler> scheduler;
    std::unique_ptr<ChildProcessLauncher> childProcesses;
    std::unique_ptr<UserDefaults> userDefaults;
    std::unique_ptr<SecretStore> secretStore;
    std::unique_ptr<DiskEvents> diskEvents;
    std::unique_ptr<FileManager> fileManager;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<UserNotifications> userNotifications;
    std::unique_ptr<Dialogs> dialogs; ///< A program that can ask somebody puts its own here: makePlatform() can't.
    std::unique_ptr<SystemValues> systemValues;
    BundleInfo bundle;
    ToolPaths toolPaths;
    bool isRoot = false;                 ///< The process has root's rights on the machine that the tools are of.
    bool isSecretStoreTemporary = false; ///< What it holds ends with the process.
    bool mountsMarkedDisks = true;       ///< When they are plugged in.
};

/// What stands in place of the system's own; absent for what does not.
struct PlatformChanges {
    /// A folder that is put in front of every tool's path, so that a folder of programs stands for a whole machine,
    /// whose events are those of its machine file. The real secret store is never opened then, so that a replaced
    /// sudo can't be handed a real password.
    std::optional<std::string> toolRoot = {};
    std::optional<std::filesystem::path> userDefaultsFile = {};
    /// The administrator's password: all that the secret store holds then, which ends with the process.
    std::optional<Secret> password = {};
    /// The process ends before anybody clicks on its notifications: they offer nothing to click on.
    bool endsSoon = false;
};

/// The running system's platform, but for \a changes.
[[nodiscard]] Platform makePlatform(const PlatformChanges &changes);

/// The changes that the environment asks for: BRINDLE_TOOL_ROOT names the tool root.
[[nodiscard]] PlatformChanges changesOfEnvironment();

/// The colour scheme that the environment asks for: BRINDLE_SCHEME is "light" or "dark"; nullopt for anything else.
[[nodiscard]] std::optional<ColorScheme> colorSchemeOfEnvironment();

/// The value of an environment variable; nullopt where it is unset or empty.
[[nodiscard]] std::optional<std::string> environmentValue(const char *name);

} // namespace brindle
