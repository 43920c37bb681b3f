#include "privileged/KeychainFixture.h"

#include "platform/linux/LinuxChildProcess.h"
#include "support/MaskedPassword.h"

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <string>

namespace brindle {
namespace {

/// The keychain helper on real processes, with a sudo that reads a line and runs the command.
class PasswordInMemory : public KeychainFixture {
protected:
    PasswordInMemory()
    {
        std::filesystem::create_directories(root() + "/usr/bin");
        std::ofstream(root() + "/usr/bin/sudo")
            << "#!/bin/sh\nread line\n[ \"$2\" = -v ] || { shift 2; exec \"$@\"; }\n";
        std::filesystem::permissions(root() + "/usr/bin/sudo", std::filesystem::perms::owner_all);
        paths = ToolPaths::underRoot(root());
    }

    std::string root() { return m_folder.path().toStdString(); }

    KeychainHelper::Surroundings realProcesses()
    {
        return {.secretStore = store,
                .dialogs = dialogs,
                .childProcesses = realLauncher,
                .scheduler = clock,
                .userDefaults = defaults,
                .toolPaths = paths,
                .unfinishedWork = unfinishedWork};
    }

    LinuxChildProcessLauncher realLauncher;

private:
    QTemporaryDir m_folder;
};

TEST_F(PasswordInMemory, IsFoundWhileItIsHeld)
{
    const Secret held = maskedPassword();

    EXPECT_TRUE(isMaskedPasswordInMemory());
}

TEST_F(PasswordInMemory, IsGoneAfterItWasAskedForProvedStoredAndUsed)
{
    KeychainHelper helper(realProcesses());
    dialogs.secureAnswers.emplace_back(maskedPassword());

    const std::string output = resultOf(helper.runPrivileged("/bin/echo", {"mounted"}));
    helper.deletePassword();

    EXPECT_EQ(output, "mounted\n");
    EXPECT_FALSE(isMaskedPasswordInMemory());
}

TEST_F(PasswordInMemory, IsGoneAfterAFailure)
{
    KeychainHelper helper(realProcesses());
    (void)store.add(kPasswordKey, maskedPassword());

    const Error error = errorOf(helper.runPrivileged("/bin/false", {}));
    store.remove(kPasswordKey);

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_FALSE(isMaskedPasswordInMemory());
}

} // namespace
} // namespace brindle
