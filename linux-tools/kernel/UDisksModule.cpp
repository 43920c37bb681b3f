#include "kernel/UDisksModule.h"

#include "kernel/Module.h"

#include <array>
#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr const char *kModule = "brindle-udisks.so";

/// Whether it may be worth to load the module. A socket that is named by its path is looked for.
bool isThere(const std::string &busAddress)
{
    constexpr std::string_view kByPath = "unix:path=";
    if (!busAddress.starts_with(kByPath))
        return !busAddress.empty();
    return ::access(busAddress.substr(kByPath.size(), busAddress.find(',') - kByPath.size()).c_str(), F_OK) == 0;
}

} // namespace

Smart healthFromUDisks(const std::string &busAddress, const std::string &device)
{
    if (!isThere(busAddress))
        return Smart::notSupported;
    void *const function = moduleFunction(kModule, "brindleUDisksHealth");
    if (!function)
        return Smart::notSupported;
    return static_cast<Smart>(
        reinterpret_cast<decltype(&brindleUDisksHealth)>(function)(busAddress.c_str(), device.c_str()));
}

std::optional<std::string> ejectThroughUDisks(const std::string &busAddress, const std::string &device,
                                              const std::vector<std::string> &mounted)
{
    void *const function = isThere(busAddress) ? moduleFunction(kModule, "brindleUDisksEject") : nullptr;
    if (!function)
        return std::nullopt;
    std::vector<const char *> names;
    for (const std::string &name : mounted)
        names.push_back(name.c_str());
    std::array<char, 512> refusal{};
    (void)reinterpret_cast<decltype(&brindleUDisksEject)>(function)(busAddress.c_str(), device.c_str(), names.data(),
                                                                    static_cast<unsigned>(names.size()), refusal.data(),
                                                                    static_cast<unsigned>(refusal.size()));
    return std::string(refusal.data());
}

std::string systemBusAddress()
{
    const char *const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return address ? address : "unix:path=/run/dbus/system_bus_socket";
}

} // namespace brindle::tools
