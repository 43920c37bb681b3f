#include "machine/MachineFileInventory.h"

#include "inventory/NvramName.h"
#include "inventory/RealPath.h"
#include "text/Words.h"

#include <algorithm>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

std::optional<NvramVariable> findVariable(const Machine &machine, const NvramName &name)
{
    const auto found = std::ranges::find_if(machine.nvram, [&](const NvramVariable &variable) {
        return upperCased(variable.guid) == upperCased(name.guid) && variable.name == name.name;
    });
    return found == machine.nvram.end() ? std::nullopt : std::optional(*found);
}

/// A path without blank steps, ".." and slashes at its end, whether it leads anywhere or not.
fs::path plainPath(const fs::path &path)
{
    const fs::path plain = path.lexically_normal();
    return plain.has_filename() ? plain : plain.parent_path();
}

/// Whether a name on the command line is a path to a mount point. One of the simulated system's own may be nowhere on
/// the real machine.
bool leadsTo(const std::string &name, const std::string &mountPoint, bool isOfSystem)
{
    const std::string real = realPath(name);
    if (isOfSystem)
        return real == mountPoint || plainPath(name) == mountPoint;
    return !real.empty() && real == realPath(mountPoint);
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
        const bool isOfSystem = isSystemMount(mount);
        if (!isOfSystem)
            mount.mountPoint = (m_file.root() / mount.mountPoint).string();
        if (leadsTo(scope.name, mount.mountPoint, isOfSystem))
            machine.inventory.link = Link{.path = scope.name, .target = mount.mountPoint};
    }
    return std::move(machine.inventory);
}

std::optional<NvramVariable> MachineFileInventory::nvramVariable(std::string_view name)
{
    const Machine machine = m_file.read();
    for (const NvramName &candidate : nvramNames(name)) {
        if (auto variable = findVariable(machine, candidate))
            return variable;
    }
    return std::nullopt;
}

Space MachineFileInventory::spaceOf(const Machine &machine, const std::string &carrier) const
{
    const DescribedCarrier &described = machine.carriers.at(carrier);
    if (described.space)
        return *described.space;
    Space space{.totalBytes = described.sizeBytes};
    space.usedBytes = std::min(m_file.folders().usedBytes(machine, carrier), described.sizeBytes);
    space.availableBytes = described.sizeBytes - space.usedBytes;
    return space;
}

} // namespace brindle::tools
