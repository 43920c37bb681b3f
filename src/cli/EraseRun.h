#pragma once

#include "assembly/Assembly.h"
#include "cli/Command.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace brindle {

/// What the command line says for every erase.
struct EraseArguments {
    std::string identifier;
    std::optional<std::string> confirmName; ///< Absent: it is asked for.
    std::string format;                     ///< As the disk tool takes it; empty for an EFI partition.
    ActingOptions acting;
};

/// Adds to \a subcommand what all erases take, and lets it run \a erase.
std::shared_ptr<EraseArguments> addErase(CLI::App &subcommand, const GlobalOptions &options, Command &command,
                                         std::function<ExitStatus(Assembly &, const EraseArguments &)> erase);

/// Adds `--format` to a command that erases more than an EFI partition.
void addFormatOption(CLI::App &subcommand, EraseArguments &arguments);

/// The disk to be erased, after a scan; nullopt where there is none, which is told. Throws an Error for one that is
/// never erased: a built-in one or the one that the system runs from.
[[nodiscard]] std::optional<PhysicalDisk> findErasableDisk(Assembly &assembly, const std::string &identifier);

/// Opens the erase dialog for \a disk, and carries out what is confirmed there: an erase of \a scope.
ExitStatus eraseDisk(Assembly &assembly, const PhysicalDisk &disk, EraseScope scope, const EraseArguments &arguments);

/// Carries out what the open erase dialog asks for, once its name was typed, and tells how it ends. Without a name and
/// without anybody to ask it is wrong usage; another name is an Error.
ExitStatus confirmAndErase(Assembly &assembly, const EraseArguments &arguments);

} // namespace brindle
