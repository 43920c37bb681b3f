#include "cli/VerifyCommand.h"

#include "base/BlockOn.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"
#include "cli/Terminal.h"
#include "efi/EFICopyError.h"
#include "views/ByteCount.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

namespace fs = std::filesystem;

struct VerifyArguments {
    std::string first;
    std::string second;
};

std::string_view wordsOf(TreeDifference::Kind kind)
{
    switch (kind) {
    case TreeDifference::Kind::onlyInFirst:
        return "only in A";
    case TreeDifference::Kind::onlyInSecond:
        return "only in B";
    case TreeDifference::Kind::kind:
        return "of another kind";
    case TreeDifference::Kind::size:
        return "of another size";
    case TreeDifference::Kind::link:
        return "leads elsewhere";
    case TreeDifference::Kind::content:
        break;
    }
    return "of another content";
}

/// Identifiers have no slash and no folder of their name beside them: those need no scan.
bool isPath(const std::string &text)
{
    std::error_code ignored;
    return text.find('/') != std::string::npos || fs::is_directory(text, ignored);
}

/// The folder that is meant; nullopt where it is no path and no partition has the identifier.
std::optional<std::string> folderOf(const std::string &text, const DiskManager &manager)
{
    if (isPath(text))
        return fs::absolute(text).string();
    const auto found = findEFIPartition(manager, text);
    if (!found) {
        tellNotFound("EFI partition", text);
        return std::nullopt;
    }
    if (!found->partition.mountPoint)
        throw EFICopyError(EFICopyError::Case::efiNotMounted);
    return EFICopyManager::efiFolderOf(found->partition);
}

void print(const TreeComparison &comparison)
{
    for (const TreeDifference &difference : comparison.differences)
        fmt::print("{}: {}\n", wordsOf(difference.kind), visibleText(difference.path));
    const std::size_t count = comparison.differences.size();
    fmt::print("{} file{}, {}: {}\n", comparison.fileCount, comparison.fileCount == 1 ? "" : "s",
               fineByteCount(static_cast<std::int64_t>(comparison.bytesCompared)),
               count == 0 ? "no difference" : fmt::format("{} difference{}", count, count == 1 ? "" : "s"));
    if (comparison.bytesFromDevice < comparison.bytesCompared)
        tell(stderr, fmt::format("brindlectl: only {} of B came from its device, the rest from memory\n",
                                 fineByteCount(static_cast<std::int64_t>(comparison.bytesFromDevice))));
}

ExitStatus verify(Platform platform, const VerifyArguments &arguments)
{
    Assembly assembly(std::move(platform));
    if (!isPath(arguments.first) || !isPath(arguments.second))
        blockOn(assembly.diskManager().startScan(false));
    const auto first = folderOf(arguments.first, assembly.diskManager());
    if (!first)
        return ExitStatus::notFound;
    const auto second = folderOf(arguments.second, assembly.diskManager());
    if (!second)
        return ExitStatus::notFound;

    const TreeComparison comparison = blockOn(assembly.fileManager().compareItems(*first, *second));
    print(comparison);
    return comparison.differences.empty() ? ExitStatus::done : ExitStatus::failed;
}

} // namespace

void addVerifyCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("verify", "Compare two EFI folders whole, by name, size and SHA-256");
    const auto arguments = std::make_shared<VerifyArguments>();
    subcommand->add_option("A", arguments->first, "A mounted EFI partition such as disk0s1, or a folder")
        ->required()
        ->type_name("");
    subcommand->add_option("B", arguments->second, "The one to be checked, which is read from its device")
        ->required()
        ->type_name("");
    subcommand->callback([&options, &command, arguments] {
        command = [&options, arguments] {
            return onMachine(options, [&](Platform platform) { return verify(std::move(platform), *arguments); });
        };
    });
}

} // namespace brindle
