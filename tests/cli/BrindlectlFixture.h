#pragma once

#include "support/Patience.h"
#include "support/SimulatedMachine.h"

#include <QProcess>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle {

/// How a run of brindlectl ended.
struct Outcome {
    int status = -1;
    std::string output;
    std::string error;

    [[nodiscard]] std::vector<std::string> identifiers() const
    {
        std::vector<std::string> result;
        for (const auto &disk : nlohmann::json::parse(output))
            result.push_back(disk.at("identifier"));
        return result;
    }
};

/// Reads what a program prints, until it goes away.
class Reader {
public:
    /// Of \a process, which has not started.
    explicit Reader(QProcess &process)
    {
        EXPECT_EQ(pipe2(m_ends.data(), O_CLOEXEC), 0);
        process.setChildProcessModifier([end = m_ends[1]] {
            dup2(end, STDOUT_FILENO);
            dup2(end, STDERR_FILENO);
        });
    }
    ~Reader()
    {
        for (const int end : m_ends)
            close(end);
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    /// Of a program that has started; fails the test where it ends before.
    void readUntil(std::string_view text)
    {
        close(std::exchange(m_ends[1], -1));
        std::string read;
        for (char character = 0; read.find(text) == std::string::npos; read += character) {
            if (::read(m_ends[0], &character, 1) != 1) {
                ADD_FAILURE() << text << " is not in " << read;
                return;
            }
        }
    }
    void go() { close(std::exchange(m_ends[0], -1)); }

private:
    std::array<int, 2> m_ends{-1, -1};
};

/// brindlectl as a process on a simulated machine, with settings and temporary files of its own.
class Brindlectl : public testing::Test {
protected:
    Brindlectl() { std::filesystem::create_directory(temporary); }

    void start(QProcess &process, const std::vector<std::string> &arguments)
    {
        start(process, arguments, machine.root().string(), program.string());
    }

    void start(QProcess &process, const std::vector<std::string> &arguments, const std::string &toolRoot,
               const std::string &executable = BRINDLECTL)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("BRINDLE_TOOL_ROOT"), QString::fromStdString(toolRoot));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                           QString::fromStdString((machine.root() / "config").string()));
        environment.insert(QStringLiteral("HOME"), QString::fromStdString(machine.root().string()));
        environment.insert(QStringLiteral("TMPDIR"), QString::fromStdString(temporary.string()));
        QStringList list;
        for (const std::string &argument : arguments)
            list << QString::fromStdString(argument);
        process.setProcessEnvironment(environment);
        process.start(QString::fromStdString(executable), list);
    }

    Outcome run(const std::vector<std::string> &arguments, const QString &standardOutput = {})
    {
        QProcess process;
        if (!standardOutput.isEmpty())
            process.setStandardOutputFile(standardOutput);
        start(process, arguments);
        EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    SimulatedMachine machine;
    std::filesystem::path program = BRINDLECTL;
    std::filesystem::path temporary = machine.root() / "tmp";
};

} // namespace brindle
