#include "kernel/acting/Dissenters.h"

#include "kernel/Files.h"
#include "text/LineReading.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

bool isWithin(const std::string &path, const std::string &folder)
{
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

bool holds(const std::string &process, const std::string &mountPoint)
{
    constexpr std::array kPlaces{"/cwd", "/root", "/exe"};
    const auto leadsThere = [&](const std::string &link) { return isWithin(linkTarget(link), mountPoint); };
    if (std::ranges::any_of(kPlaces, [&](const char *place) { return leadsThere(process + place); }))
        return true;
    const auto files = namesIn(process + "/fd");
    return std::ranges::any_of(files, [&](const std::string &file) { return leadsThere(process + "/fd/" + file); });
}

/// What the process runs: its program, else the name that it gives itself.
std::string programOf(const std::string &process)
{
    std::string program = linkTarget(process + "/exe");
    if (!program.empty())
        return program;
    const std::string name = fileBytes(process + "/comm");
    return name.substr(0, name.find('\n'));
}

/// The fourth field of "stat"; the second may hold blanks, but ends with the last bracket.
std::uint64_t parentOf(const std::string &process)
{
    const std::string status = fileBytes(process + "/stat");
    const std::size_t bracket = status.rfind(')');
    constexpr std::size_t kToParent = 4; // ") S "
    return bracket == std::string::npos || bracket + kToParent > status.size()
               ? 0
               : leadingNumber(std::string_view(status).substr(bracket + kToParent)).value_or(0);
}

} // namespace

std::optional<Dissenter> findDissenter(const std::string &processes, const std::string &mountPoint)
{
    for (const std::string &name : namesIn(processes)) {
        const auto pid = leadingNumber(name);
        const std::string process = fmt::format("{}/{}", processes, name);
        if (!pid || !holds(process, mountPoint))
            continue;
        const std::uint64_t parent = parentOf(process);
        return Dissenter{*pid, programOf(process), parent, programOf(fmt::format("{}/{}", processes, parent))};
    }
    return std::nullopt;
}

} // namespace brindle::tools
