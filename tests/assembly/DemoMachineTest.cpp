#include "assembly/DemoMachine.h"

#include "base/Error.h"
#include "support/Patience.h"

#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// What the machine's sudo ends with when it is given \a password.
int statusOfSudo(const std::string &root, std::string_view password)
{
    QProcess sudo;
    sudo.start(QString::fromStdString(root + "/usr/bin/sudo"), {QStringLiteral("-S"), QStringLiteral("-v")});
    sudo.write(QByteArray(password.data(), static_cast<qsizetype>(password.size())) + '\n');
    sudo.closeWriteChannel();
    EXPECT_TRUE(sudo.waitForFinished(kPatienceMilliseconds));
    return sudo.exitCode();
}

TEST(DemoMachine, KeepsThePasswordThatItsSudoTakes)
{
    const DemoMachine demo;

    const PlatformChanges changes = demo.platformChanges();

    ASSERT_TRUE(changes.password);
    EXPECT_EQ(statusOfSudo(*changes.toolRoot, changes.password->view()), 0);
    EXPECT_EQ(statusOfSudo(*changes.toolRoot, "another"), 1);
}

TEST(DemoMachine, KeepsNoPasswordWhereItIsToBeAskedFor)
{
    const DemoMachine demo(DemoMachine::Password::missing);

    EXPECT_FALSE(demo.platformChanges().password);
}

TEST(DemoMachine, IsGoneAtItsEnd)
{
    std::string root;
    {
        const DemoMachine demo;
        root = demo.platformChanges().toolRoot.value();
        ASSERT_TRUE(fs::exists(root + "/machine.json"));
    }

    EXPECT_FALSE(fs::exists(root));
}

/// Lets nobody write to a machine until its end.
class ReadOnlyMachine {
public:
    explicit ReadOnlyMachine(fs::path root) : m_root(std::move(root)) { change(fs::perm_options::remove); }
    ~ReadOnlyMachine() { change(fs::perm_options::add); }
    ReadOnlyMachine(const ReadOnlyMachine &) = delete;
    ReadOnlyMachine &operator=(const ReadOnlyMachine &) = delete;

private:
    void change(fs::perm_options options) const
    {
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(m_root)) {
            if (!entry.is_symlink())
                fs::permissions(entry, fs::perms::owner_write, options);
        }
    }

    fs::path m_root;
};

std::vector<std::string> unwritableIn(const fs::path &machine)
{
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(machine)) {
        if (!entry.is_symlink() && (entry.status().permissions() & fs::perms::owner_write) == fs::perms::none)
            names.push_back(entry.path().lexically_relative(machine));
    }
    return names;
}

TEST(DemoMachine, MayBeChangedWhereTheShippedOneMayNot)
{
    const DemoMachine shipped;
    const std::string root = shipped.platformChanges().toolRoot.value();
    const ReadOnlyMachine readOnly(root);

    const DemoMachine demo(DemoMachine::Password::stored, root);

    ASSERT_THAT(unwritableIn(root), testing::Contains("machine.json"));
    EXPECT_THAT(unwritableIn(*demo.platformChanges().toolRoot), testing::IsEmpty());
}

TEST(DemoMachine, NamesTheMachineThatIsNotInstalled)
{
    try {
        const DemoMachine demo(DemoMachine::Password::stored, "/no-such-machine");
        FAIL() << "nothing was copied";
    } catch (const Error &error) {
        EXPECT_THAT(error.localizedDescription(), testing::StartsWith("The demo machine can't be copied: "));
        EXPECT_THAT(error.localizedDescription(), testing::HasSubstr("/no-such-machine"));
    }
}

} // namespace
} // namespace brindle
