#include "privileged/KeychainHelper.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <utility>

namespace brindle {

namespace {

constexpr std::chrono::seconds kProofTimeLimit{90};
constexpr std::chrono::seconds kCommandTimeLimit{45};

constexpr const char *kErrorDomain = "KeychainHelper";
constexpr int kNoPassword = 1;
constexpr int kCommandNotFound = 3;

bool fileExists(const std::string &path)
{
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// What sudo -S reads: a line.
Secret lineOf(Secret password)
{
    password.append("\n");
    return password;
}

} // namespace

QCoro::Task<bool> KeychainHelper::validateAdminPassword(Secret password)
{
    ChildProcessCommand sudo{.path = m_surroundings.toolPaths.sudo(),
                             .arguments = {"-S", "-v"},
                             .standardInput = lineOf(std::move(password))};
    auto proof = m_processes.run(std::move(sudo), kProofTimeLimit);
    const ChildProcessEnd end = co_await proof;
    co_return !end.failure && end.terminationStatus == 0;
}

QCoro::Task<std::string> KeychainHelper::runPrivileged(std::string command, std::vector<std::string> arguments)
{
    if (!fileExists(command))
        throw Error(kErrorDomain, kCommandNotFound, fmt::format("Command not found: {}", command));
    if (m_surroundings.isRoot) {
        auto tool =
            outputOf({.path = std::move(command), .arguments = std::move(arguments), .standardInput = Secret()});
        co_return co_await tool;
    }
    std::optional<Secret> password = retrievePassword();
    if (!password) {
        auto prompt = promptForPassword();
        const bool isStored = co_await prompt;
        if (isStored)
            password = retrievePassword();
    }
    if (!password)
        throw Error(kErrorDomain, kNoPassword, "Administrator password required");
    auto sudo = performSudoCommand(std::move(command), std::move(arguments), *std::move(password));
    co_return co_await sudo;
}

QCoro::Task<std::string> KeychainHelper::performSudoCommand(std::string command, std::vector<std::string> arguments,
                                                            Secret password)
{
    ChildProcessCommand sudo{.path = m_surroundings.toolPaths.sudo(),
                             .arguments = {"-S", "-k", std::move(command)},
                             .standardInput = lineOf(std::move(password))};
    sudo.arguments.insert(sudo.arguments.end(), arguments.begin(), arguments.end());
    return outputOf(std::move(sudo));
}

QCoro::Task<std::string> KeychainHelper::outputOf(ChildProcessCommand command)
{
    const UnfinishedWork::Piece piece(m_surroundings.unfinishedWork);
    auto run = m_processes.run(std::move(command), kCommandTimeLimit);
    ChildProcessEnd end = co_await run;
    co_return standardOutputOf(std::move(end), "SudoError");
}

} // namespace brindle
