// The text of a machine file: read, changed in every way and read again.

#include "Require.h"

#include "acting/ActionWords.h"
#include "machine/JsonObject.h"
#include "machine/JsonPositions.h"
#include "machine/Machine.h"
#include "machine/MachineEdit.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>
#include <optional>

using namespace brindle;
using namespace brindle::tools;

namespace {

using Json = nlohmann::ordered_json;

/// Leaves numbers for the disks and containers that come to a machine here.
constexpr std::uint64_t kLastDiskNumber = std::numeric_limits<std::uint32_t>::max() / 2;

std::optional<Machine> described(const Json &json)
{
    try {
        return readMachine(json);
    } catch (const JsonValueError &) {
        return std::nullopt;
    }
}

void eraseDisks(Json json, const Machine &machine, const Format &format)
{
    json["mounts"] = Json::array();
    for (const Disk &disk : machine.inventory.disks) {
        if (disk.sizeBytes < kSmallestDiskBytes)
            continue;
        Json &partition = makeTable(*findObject(json, disk.identifier), format);
        const std::string carrier = tools::format(json, partition, format, "NEW");
        addMount(json, carrier, "Volumes/a name of our own");
        require(described(json).has_value(), "an erased disk is one");
        removeMount(json, carrier);
    }
}

void replug(Json json, const Machine &machine)
{
    json["mounts"] = Json::array();
    for (const Disk &disk : machine.inventory.disks) {
        unplug(json, disk.identifier);
        require(described(json).has_value(), "a machine without a disk is one");
        (void)plug(json, disk.identifier);
        require(described(json).has_value(), "a disk that is plugged in again is one");
    }
}

void rename(Json json, const Machine &machine)
{
    for (const auto &[identifier, carrier] : machine.carriers) {
        Json *const volume = findVolume(json, identifier);
        if (volume && !carrier.content.empty())
            setName(*volume, "NEW");
    }
    require(described(json).has_value(), "renamed volumes are volumes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    try {
        const JsonPositions positions(text);
        const Json json = Json::parse(text);
        require(positions.line("disks[0]") >= 1, "lines count from 1");
        const auto machine = described(json);
        if (!machine || machine->nextDisk > kLastDiskNumber)
            return 0;
        require(described(Json::parse(json.dump(2))).has_value(), "what is written is read");
        rename(json, *machine);
        replug(json, *machine);
        eraseDisks(json, *machine, *findFormat("ExFAT"));
        eraseDisks(json, *machine, *findFormat("APFS"));
    } catch (const JsonSyntaxError &error) {
        require(error.line() >= 1, "lines count from 1");
    }
    return 0;
}
