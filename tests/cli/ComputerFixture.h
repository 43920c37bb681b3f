#pragma once

#include "cli/BrindlectlFixture.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace brindle {

using Arguments = std::vector<std::string>;

/// brindlectl as a process on a copy of the demo's machine, with its sudo and its password.
class Computer : public Brindlectl {
protected:
    Computer() { runMachine({"new", root()}); }

    [[nodiscard]] std::string root() const { return machine.root() / "computer"; }

    /// The machine's own program.
    static void runMachine(const Arguments &arguments)
    {
        QStringList list;
        for (const std::string &argument : arguments)
            list << QString::fromStdString(argument);
        EXPECT_EQ(QProcess::execute(QStringLiteral(BRINDLE_MACHINE), list), 0);
    }

    /// Starts the program, which takes the password from standard input; none where it is empty.
    void startThere(QProcess &process, Arguments arguments, const std::string &password = "brindle")
    {
        if (!password.empty())
            arguments.emplace_back("--password-stdin");
        start(process, arguments, root());
        process.write(QByteArray::fromStdString(password + '\n'));
        process.closeWriteChannel();
    }

    Outcome runThere(Arguments arguments, const std::string &password = "brindle")
    {
        QProcess process;
        startThere(process, std::move(arguments), password);
        EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    [[nodiscard]] nlohmann::json machineFile() const
    {
        return nlohmann::json::parse(contentsOf(std::filesystem::path(root()) / "machine.json"));
    }
};

} // namespace brindle
