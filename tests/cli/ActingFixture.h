#pragma once

#include "cli/BrindlectlFixture.h"

#include "support/FileTree.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <QDir>
#include <QTemporaryDir>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <unistd.h>

#include <map>
#include <optional>

namespace brindle {

/// A password that stands nowhere by chance, and is another than maskedPassword(): these tests leave it in memory.
inline constexpr const char *kAdminPassword = "Gr4n-dM0ther-Sky";

/// brindlectl as an ordinary user on a copy of the demo machine, whose own programs and sudo run. Root takes the rights
/// of "nobody" for it.
class ActingFixture : public testing::Test {
protected:
    ActingFixture()
    {
        QProcess maker;
        maker.start(QStringLiteral(BRINDLE_MACHINE), {QStringLiteral("new"), QString::fromStdString(root())});
        EXPECT_TRUE(maker.waitForFinished(kPatienceMilliseconds) && maker.exitCode() == 0)
            << maker.readAllStandardError().toStdString();
        std::string machine = contentsOf(root() + "/machine.json");
        const std::string shipped = "\"password\": \"brindle\"";
        machine.replace(machine.find(shipped), shipped.size(), fmt::format("\"password\": \"{}\"", kAdminPassword));
        writeFile(root() + "/machine.json", machine);
        std::filesystem::create_directory(home());
        giveAllToOrdinaryUser();
    }

    [[nodiscard]] std::string folder() const { return m_folder.path().toStdString(); }
    [[nodiscard]] std::string root() const { return folder() + "/machine"; }
    [[nodiscard]] std::string home() const { return folder() + "/home"; }

    /// What the program finds in its environment.
    [[nodiscard]] std::map<std::string, std::string> environment() const
    {
        return {{"PATH", "/usr/bin:/bin"},
                {"LANG", "C.UTF-8"},
                {"HOME", home()},
                {"TMPDIR", home()},
                {"BRINDLE_TOOL_ROOT", root()},
                {"XDG_CONFIG_HOME", home() + "/config"},
                {"ASAN_OPTIONS", "detect_leaks=0"}}; // which can't run under a tracer
    }

    Outcome run(const std::vector<std::string> &arguments, const std::string &input = "")
    {
        return runProgram(BRINDLECTL, arguments, input, environment());
    }

    Outcome runWithPassword(std::vector<std::string> arguments)
    {
        arguments.emplace(arguments.begin() + 1, "--password-stdin");
        return run(arguments, std::string(kAdminPassword) + "\n");
    }

    /// Runs without a terminal.
    static Outcome runProgram(const std::string &program, const std::vector<std::string> &arguments,
                              const std::string &input, const std::map<std::string, std::string> &environment)
    {
        QProcess process;
        QProcessEnvironment variables;
        for (const auto &[name, value] : environment)
            variables.insert(QString::fromStdString(name), QString::fromStdString(value));
        QStringList list;
        for (const std::string &argument : arguments)
            list << QString::fromStdString(argument);
        process.setProcessEnvironment(variables);
        process.setChildProcessModifier([] {
            ::setsid();
            becomeOrdinaryUser();
        });
        process.start(QString::fromStdString(program), list);
        process.write(QByteArray::fromStdString(input));
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    static void becomeOrdinaryUser()
    {
        if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(126);
    }

    /// Lets \a script run before the machine's program at \a path, which it becomes then.
    void putBefore(const std::string &path, const std::string &script) const
    {
        const std::filesystem::path program = root() + "/" + path;
        std::filesystem::rename(program, program.string() + ".real");
        writeFile(program, fmt::format("#!/bin/sh\n{}\nexec \"$0.real\" \"$@\"\n", script));
        std::filesystem::permissions(program, std::filesystem::perms(0755));
        giveAllToOrdinaryUser();
    }

    /// The EFI partition's record as the list tells it.
    nlohmann::json partition(const std::string &identifier)
    {
        for (const auto &disk : nlohmann::json::parse(run({"list", "--json"}).output)) {
            for (const auto &partition : disk.at("efiPartitions")) {
                if (partition.at("identifier") == identifier)
                    return partition;
            }
        }
        return {};
    }

    [[nodiscard]] bool isMounted(const std::string &identifier) { return partition(identifier).at("isMounted"); }

    void giveAllToOrdinaryUser() const
    {
        if (::geteuid() != 0)
            return;
        (void)::lchown(folder().c_str(), kNobody, kNobody);
        for (const auto &entry : std::filesystem::recursive_directory_iterator(folder()))
            (void)::lchown(entry.path().c_str(), kNobody, kNobody);
    }

private:
    static constexpr unsigned kNobody = 65534;

    QTemporaryDir m_folder;
};

} // namespace brindle
