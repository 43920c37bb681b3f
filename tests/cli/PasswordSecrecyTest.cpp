// The password goes from standard input to sudo and nowhere else, as seen from outside.

#include "cli/ActingFixture.h"

#include <QStandardPaths>

#include <algorithm>
#include <fstream>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class PasswordSecrecy : public ActingFixture {
protected:
    /// Lets \a program watch what sudo is started with, before it becomes sudo.
    void replaceSudo(const std::string &script)
    {
        const fs::path sudo = root() + "/usr/bin/sudo";
        fs::rename(sudo, sudo.string() + ".real");
        writeFile(sudo, script);
        fs::permissions(sudo, fs::perms(0755));
        giveAllToOrdinaryUser();
    }

    /// The files below the machine and the home folder that hold the password; the machine's description has to.
    std::vector<std::string> filesWithPassword() const
    {
        std::vector<std::string> found;
        for (const auto &entry : fs::recursive_directory_iterator(folder())) {
            if (entry.is_regular_file() && !entry.is_symlink() && entry.path().filename() != "machine.json" &&
                contentsOf(entry.path()).find(kAdminPassword) != std::string::npos)
                found.push_back(entry.path());
        }
        return found;
    }
};

TEST_F(PasswordSecrecy, ShowsThePasswordInNoCommandLineEnvironmentLogOrFile)
{
    replaceSudo("#!/bin/sh\n"
                "cat /proc/$PPID/cmdline /proc/$PPID/environ /proc/$$/cmdline /proc/$$/environ >> \"$HOME/seen\"\n"
                "exec \"$0.real\" \"$@\"\n");

    const Outcome mount = runWithPassword({"mount", "disk2s1", "--verbose"});

    EXPECT_EQ(mount.status, 0) << mount.error;
    EXPECT_THAT(mount.output + mount.error, Not(HasSubstr(kAdminPassword)));
    EXPECT_THAT(contentsOf(home() + "/seen"), HasSubstr("--password-stdin"));
    EXPECT_THAT(filesWithPassword(), testing::IsEmpty());
}

TEST_F(PasswordSecrecy, WritesThePasswordOnceAndToSudosPipe)
{
    const std::string strace = QStandardPaths::findExecutable(QStringLiteral("strace")).toStdString();
    if (strace.empty())
        GTEST_SKIP() << "strace is not installed";
    const std::string trace = home() + "/trace";

    const Outcome mount = runProgram(
        strace, {"-f", "-y", "-v", "-s", "100000", "-o", trace, BRINDLECTL, "mount", "disk2s1", "--password-stdin"},
        std::string(kAdminPassword) + "\n", environment());
    if (mount.status != 0 && mount.error.find("ptrace") != std::string::npos)
        GTEST_SKIP() << "nothing may be traced here";

    ASSERT_EQ(mount.status, 0) << mount.error;
    std::vector<std::string> calls;
    std::ifstream file(trace);
    for (std::string line; std::getline(file, line);) {
        const bool isOfMachineFile = line.find("\\\"password\\\"") != std::string::npos; // its own tools read that
        if (line.find(kAdminPassword) != std::string::npos && !isOfMachineFile)
            calls.push_back(line);
    }
    ASSERT_EQ(calls.size(), 1U) << testing::PrintToString(calls);
    EXPECT_THAT(calls[0], testing::ContainsRegex(R"(write\([0-9]+<pipe:\[[0-9]+\]>, "Gr4n-dmother-Sky\\n", 17)"));
}

} // namespace
} // namespace brindle
