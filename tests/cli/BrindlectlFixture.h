#pragma once

#include "support/SimulatedMachine.h"

#include <QProcess>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
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
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    SimulatedMachine machine;
    std::filesystem::path program = BRINDLECTL;
    std::filesystem::path temporary = machine.root() / "tmp";
};

} // namespace brindle
