#include "assembly/DemoMachine.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

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
    EXPECT_TRUE(sudo.waitForFinished());
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

} // namespace
} // namespace brindle
