#include "cli/PasswordCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "base/Error.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <utility>

namespace brindle {

namespace {

[[noreturn]] void fail(const char *description)
{
    throw Error("Password", 1, description);
}

/// sudo asks root for nothing, so that it would take any password for right.
void refuseRoot(const Platform &platform)
{
    if (platform.isRoot)
        fail("Root needs no administrator password");
}

ExitStatus set(Platform platform)
{
    refuseRoot(platform);
    Assembly assembly(std::move(platform));
    if (!blockOn(assembly.keychainHelper().promptForPassword()))
        fail("No password was stored: the right one has to be typed in a terminal, and the secret store to take it");
    fmt::print("The administrator password is stored\n");
    return ExitStatus::done;
}

ExitStatus test(Platform platform)
{
    refuseRoot(platform);
    Assembly assembly(std::move(platform));
    KeychainHelper &keychain = assembly.keychainHelper();
    const std::optional<Secret> password = keychain.retrievePassword();
    if (!password)
        fail("No administrator password is stored");
    if (!blockOn(keychain.validateAdminPassword(*password)))
        fail("sudo refuses the administrator password");
    fmt::print("The administrator password is right\n");
    return ExitStatus::done;
}

ExitStatus forget(Platform platform)
{
    Assembly assembly(std::move(platform));
    if (!assembly.keychainHelper().deletePassword())
        fail("The secret store does not give the administrator password up");
    fmt::print("No administrator password is stored\n");
    return ExitStatus::done;
}

void addSubcommand(CLI::App *subcommand, const GlobalOptions &options, Command &command,
                   ExitStatus (*run)(Platform platform), const std::shared_ptr<ActingOptions> &acting)
{
    subcommand->callback([&options, &command, run, acting] {
        command = [&options, run, acting] { return onMachine(options, run, *acting); };
    });
}

} // namespace

void addPasswordCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *password = app.add_subcommand("password", "Store, test or remove the administrator password");
    password->require_subcommand(1);
    const auto acting = std::make_shared<ActingOptions>();
    addSubcommand(password->add_subcommand("set", "Ask for the password in the terminal, prove and store it"), options,
                  command, set, acting);
    CLI::App *testCommand = password->add_subcommand("test", "Prove the stored password, or a given one");
    addPasswordOption(*testCommand, *acting);
    addSubcommand(testCommand, options, command, test, acting);
    addSubcommand(password->add_subcommand("remove", "Remove the stored password"), options, command, forget, acting);
}

} // namespace brindle
