#include "machine/Sudo.h"

#include <fmt/format.h>

#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr int kAttempts = 3;

struct Line {
    std::string text;
    bool isThere = false; ///< False at the end of the input.
};

// Byte by byte: what follows the password belongs to the command.
Line readLine(int input)
{
    Line line;
    char character = 0;
    while (::read(input, &character, 1) == 1) {
        line.isThere = true;
        if (character == '\n')
            break;
        line.text.push_back(character);
    }
    return line;
}

std::string giveUp(int attempts)
{
    if (attempts == 0)
        return "sudo: a password is required\n";
    return fmt::format("sudo: {} incorrect password attempt{}\n", attempts, attempts == 1 ? "" : "s");
}

} // namespace

std::optional<SudoRequest> readSudoRequest(std::span<const char *const> arguments)
{
    SudoRequest request;
    std::size_t index = 0;
    for (; index < arguments.size() && *arguments[index] == '-'; ++index) {
        const std::string_view option = arguments[index];
        if (option == "--") {
            ++index;
            break;
        }
        if (option == "-S")
            request.readsStandardInput = true;
        else if (option == "-v")
            request.onlyProves = true;
        else if (option != "-k") // nothing is cached, so that there is nothing to forget
            return std::nullopt;
    }
    for (const char *const argument : arguments.subspan(index))
        request.command.emplace_back(argument);
    return request.onlyProves == request.command.empty() ? std::optional(request) : std::nullopt;
}

bool provePassword(std::string_view password, int input, std::FILE *errors)
{
    for (int attempts = 0; attempts < kAttempts; ++attempts) {
        std::fputs("Password:", errors);
        const Line line = readLine(input);
        if (!line.isThere) {
            std::fputs("\nsudo: no password was provided\n", errors);
            std::fputs(giveUp(attempts).c_str(), errors);
            return false;
        }
        if (line.text == password)
            return true;
        std::fputs("Sorry, try again.\n", errors);
    }
    std::fputs(giveUp(kAttempts).c_str(), errors);
    return false;
}

std::filesystem::path programOf(const std::filesystem::path &root, const std::string &command)
{
    const std::filesystem::path path(command);
    if (!path.is_absolute())
        return path;
    std::filesystem::path within = root / path.relative_path();
    std::error_code error;
    return std::filesystem::exists(within, error) ? within : path;
}

} // namespace brindle::tools
