#pragma once

#include "base/Secret.h"
#include "base/UnfinishedWork.h"
#include "platform/Dialogs.h"
#include "platform/Scheduler.h"
#include "platform/SecretStore.h"
#include "platform/UserDefaults.h"
#include "records/ChildProcessRunner.h"
#include "records/ToolPaths.h"

#include <QCoroTask>

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Keeps the administrator's password and runs what needs root with it, through sudo.
///
/// Nothing else reads or writes the password. It stands in the secret store, in the standard input of sudo, and for the
/// length of one call in memory that is wiped; in no command line, environment, file, log line or error. A password is
/// proved before it is stored, and stays stored until it is deleted, also when it has changed on the system. Main
/// thread only.
class KeychainHelper {
public:
    /// What an application's password is stored under where its bundle tells nothing else.
    static constexpr const char *kService = "com.orlane.Brindle";
    static constexpr const char *kAccount = "admin-password";

    /// What the helper works with; all of it outlives the helper.
    struct Surroundings {
        SecretStore &secretStore;
        Dialogs &dialogs;
        ChildProcessLauncher &childProcesses;
        Scheduler &scheduler;
        UserDefaults &userDefaults;
        const ToolPaths &toolPaths;
        UnfinishedWork &unfinishedWork;
        /// What the password is stored under: the identifier of the application's bundle.
        std::string service = kService;
        /// The process has root's rights: sudo would ask for no password and hand it on to the tool, so that the tool
        /// is run directly and no password is asked for, stored or read.
        bool isRoot = false;
        /// What the store holds ends with the process: no place to carry a password over to.
        bool isSecretStoreTemporary = false;
    };

    /// Carries over, once, the password that an earlier version has stored under another name, to a store that lasts
    /// and unless the process is root's.
    explicit KeychainHelper(Surroundings surroundings);

    /// Replaces the stored password; false where \a password is empty or no UTF-8 or the store refuses it.
    bool storePassword(const Secret &password);

    /// The stored password, read from the store each time.
    [[nodiscard]] std::optional<Secret> retrievePassword() const;

    /// True where no password is stored any more.
    bool deletePassword();

    /// Asks the user for the password, once. True if a proven password is stored now.
    [[nodiscard]] QCoro::Task<bool> promptForPassword();

    /// What the application does at its start where no password is stored and one is needed: promptForPassword(), and a
    /// word on where to go after a refusal. Notes in the user defaults that the application has been launched.
    QCoro::Task<> promptForMissingPassword();

    /// Whether sudo takes \a password from this user, by the exit status of `sudo -S -v`. A sudo that doesn't end is
    /// asked to after 90 seconds.
    [[nodiscard]] QCoro::Task<bool> validateAdminPassword(Secret password);

    /// Runs the tool at the absolute path \a command as root and gives its standard output; the empty text where that
    /// isn't UTF-8. Takes the stored password, or asks for it where none is stored; a wrong one is not asked for again.
    ///
    /// Arguments reach the tool as they are. A run that lasts longer than 45 seconds is asked to end; runs may overlap,
    /// and each is unfinished work.
    /// Throws Error: "KeychainHelper" 3 where \a command doesn't exist, which is looked at first, and 1 where there is
    /// no password; "SudoError" with the exit status as the code and the standard error as the description ("Unknown
    /// error" where that isn't UTF-8) where sudo or the tool fails; else the system's own.
    [[nodiscard]] QCoro::Task<std::string> runPrivileged(std::string command, std::vector<std::string> arguments);

private:
    [[nodiscard]] SecretKey key() const;
    [[nodiscard]] std::optional<Secret> passwordOf(const std::string &service) const;
    [[nodiscard]] std::optional<Secret> readLegacyPassword(const std::string &service) const;
    void migrateLegacyPasswords();
    bool storeLegacyPassword();

    [[nodiscard]] QCoro::Task<std::string> performSudoCommand(std::string command, std::vector<std::string> arguments,
                                                              Secret password);
    [[nodiscard]] QCoro::Task<std::string> outputOf(ChildProcessCommand command);

    Surroundings m_surroundings;
    ChildProcessRunner m_processes;
};

} // namespace brindle
