#include "privileged/KeychainFixture.h"

#include "platform/linux/LinuxChildProcess.h"

#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace brindle {
namespace {

constexpr char kMask = 0x5A;

constexpr std::array kMaskedPassword = [] {
    std::array masked{'T', 'u', '5', '-', 'p', 'e', 'r', 'r', 'y', '-', 'W', 'i', 'n', 'k', 'l', 'e'};
    for (char &character : masked)
        character = static_cast<char>(character ^ kMask);
    return masked;
}();

/// Held nowhere else in the clear, so that every place where it is found is a copy.
Secret password()
{
    Secret secret;
    secret.resize(kMaskedPassword.size());
    std::ranges::transform(kMaskedPassword, secret.data(),
                           [](char character) { return static_cast<char>(character ^ kMask); });
    return secret;
}

bool holdsPassword(std::string_view bytes)
{
    const auto isUnmasked = [](char byte, char masked) { return byte == static_cast<char>(masked ^ kMask); };
    return std::ranges::search(bytes, kMaskedPassword, isUnmasked).begin() != bytes.end();
}

/// Whether the writable memory of this process holds the password anywhere.
bool isPasswordInMemory()
{
    constexpr std::size_t kLargestHeap = 256UL * 1024 * 1024; // larger ones are a sanitizer's own, and nearly all empty
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::ifstream maps("/proc/self/maps");
    bool isFound = false;
    std::vector<char> bytes;
    for (std::string line; std::getline(maps, line);) {
        std::size_t separator = 0;
        const std::size_t begin = std::stoull(line, &separator, 16);
        const std::size_t end = std::stoull(line.substr(separator + 1), nullptr, 16);
        const bool isWritable = line.find(" rw") != std::string::npos;
        if (!isWritable || end - begin > kLargestHeap)
            continue;
        bytes.resize(end - begin);
        const ssize_t count = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(begin));
        isFound = isFound || (count > 0 && holdsPassword({bytes.data(), static_cast<std::size_t>(count)}));
        std::ranges::fill(bytes, '\0');
    }
    close(memory);
    return isFound;
}

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
                .toolPaths = paths};
    }

    LinuxChildProcessLauncher realLauncher;

private:
    QTemporaryDir m_folder;
};

TEST_F(PasswordInMemory, IsFoundWhileItIsHeld)
{
    const Secret held = password();

    EXPECT_TRUE(isPasswordInMemory());
}

TEST_F(PasswordInMemory, IsGoneAfterItWasAskedForProvedStoredAndUsed)
{
    KeychainHelper helper(realProcesses());
    dialogs.secureAnswers.emplace_back(password());

    const std::string output = resultOf(helper.runPrivileged("/bin/echo", {"mounted"}));
    helper.deletePassword();

    EXPECT_EQ(output, "mounted\n");
    EXPECT_FALSE(isPasswordInMemory());
}

TEST_F(PasswordInMemory, IsGoneAfterAFailure)
{
    KeychainHelper helper(realProcesses());
    (void)store.add(kPasswordKey, password());

    const Error error = errorOf(helper.runPrivileged("/bin/false", {}));
    store.remove(kPasswordKey);

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_FALSE(isPasswordInMemory());
}

} // namespace
} // namespace brindle
