#include "machine/MachineFileInventory.h"

#include "text/Words.h"

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

using namespace std::string_view_literals;

// A plain name is the system's own variable, else the boot loader's.
constexpr std::array kUsualGuids{"7C436110-AB2A-4BBB-A880-FE41995C9F82"sv, "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102"sv};

std::optional<NvramVariable> findVariable(const Machine &machine, std::string_view guid, std::string_view name)
{
    const auto found = std::ranges::find_if(machine.nvram, [&](const NvramVariable &variable) {
        return upperCased(variable.guid) == upperCased(guid) && variable.name == name;
    });
    return found == machine.nvram.end() ? std::nullopt : std::optional(*found);
}

} // namespace

MachineFileInventory::MachineFileInventory(const MachineFile &file) : m_file(file) {}

Inventory MachineFileInventory::read(const Scope &scope)
{
    Machine machine = m_file.read();
    for (Mount &mount : machine.inventory.mounts) {
        if (scope.withSpace)
            mount.space = spaceOf(machine, mount.carrier);
    }
    for (Mount &mount : machine.inventory.mounts) {
        if (!isSystemMount(mount))
            mount.mountPoint = (m_file.root() / mount.mountPoint).string();
    }
    return std::move(machine.inventory);
}

std::optional<NvramVariable> MachineFileInventory::nvramVariable(std::string_view name)
{
    const Machine machine = m_file.read();
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos)
        return findVariable(machine, name.substr(0, colon), name.substr(colon + 1));
    for (const std::string_view guid : kUsualGuids) {
        if (auto variable = findVariable(machine, guid, name))
            return variable;
    }
    return std::nullopt;
}

Space MachineFileInventory::spaceOf(const Machine &machine, const std::string &carrier) const
{
    const Carrier &described = machine.carriers.at(carrier);
    if (described.space)
        return *described.space;
    Space space{.totalBytes = described.sizeBytes};
    space.usedBytes = std::min(m_file.folders().usedBytes(machine, carrier), described.sizeBytes);
    space.availableBytes = described.sizeBytes - space.usedBytes;
    return space;
}

} // namespace brindle::tools
