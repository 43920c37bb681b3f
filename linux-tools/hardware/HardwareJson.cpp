#include "hardware/HardwareJson.h"

#include "machine/FileIo.h"
#include "machine/JsonObject.h"
#include "machine/JsonPositions.h"
#include "machine/MachineFile.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace brindle::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kKey = "hardware";

/// The object at \a key, which may be missing.
template <typename Record>
Record recordAt(const JsonObject &object, std::string_view key, Record (*read)(const JsonObject &))
{
    const auto found = object.object(key);
    return found ? read(*found) : Record();
}

template <typename Record>
std::vector<Record> recordsAt(const JsonObject &object, std::string_view key, Record (*read)(const JsonObject &))
{
    std::vector<Record> records;
    for (const JsonObject &each : object.objectsIfPresent(key))
        records.push_back(read(each));
    return records;
}

/// A number of the PCI bus, which is missing where it is 0.
std::optional<std::uint16_t> pciNumber(const JsonObject &object, std::string_view key)
{
    const std::uint64_t number = object.numberOr(key, 0);
    if (number > std::numeric_limits<std::uint16_t>::max())
        object.refuse(key, "must be at most 65535");
    return number == 0 ? std::nullopt : std::optional(static_cast<std::uint16_t>(number));
}

Processor readProcessor(const JsonObject &object)
{
    return {.chip = object.textOr("chip", ""),
            .name = object.textOr("name", ""),
            .speedMegahertz = object.numberOr("speedMegahertz", 0),
            .packages = object.numberOr("packages", 0),
            .cores = object.numberOr("cores", 0)};
}

MemorySlot readSlot(const JsonObject &object)
{
    return {.name = object.text("name"),
            .sizeBytes = object.numberOr("sizeBytes", 0),
            .type = object.textOr("type", ""),
            .speedMegahertz = object.numberOr("speedMegahertz", 0),
            .manufacturer = object.textOr("manufacturer", ""),
            .partNumber = object.textOr("partNumber", ""),
            .serialNumber = object.textOr("serialNumber", "")};
}

Memory readMemory(const JsonObject &object)
{
    return {.sizeBytes = object.numberOr("sizeBytes", 0),
            .type = object.textOr("type", ""),
            .slots = recordsAt(object, "slots", readSlot)};
}

Display readDisplay(const JsonObject &object)
{
    return {.name = object.textOr("name", ""),
            .width = object.numberOr("width", 0),
            .height = object.numberOr("height", 0),
            .refreshHertz = object.numberOr("refreshHertz", 0),
            .connection = object.textOr("connection", ""),
            .isBuiltIn = object.flag("isBuiltIn"),
            .serialNumber = object.textOr("serialNumber", "")};
}

GraphicsCard readCard(const JsonObject &object)
{
    return {.name = object.text("name"),
            .vendor = object.textOr("vendor", ""),
            .vendorId = pciNumber(object, "vendorId"),
            .deviceId = pciNumber(object, "deviceId"),
            .isBuiltIn = object.flag("isBuiltIn"),
            .memoryBytes = object.numberOr("memoryBytes", 0),
            .sharesMainMemory = object.flag("sharesMainMemory"),
            .displays = recordsAt(object, "displays", readDisplay)};
}

[[noreturn]] void refuse(const MachineFile &file, const JsonValueError &error)
{
    const std::size_t line = JsonPositions(readFile(file.path())).line(error.path());
    throw MachineFileError(fmt::format("{}:{}: {}: {}", file.path().string(), line, error.path(), error.what()));
}

} // namespace

HardwareFacts hardwareFromJson(const Json &hardware)
{
    const JsonObject object(hardware, std::string(kKey));
    return {.modelName = object.textOr("modelName", ""),
            .modelIdentifier = object.textOr("modelIdentifier", ""),
            .serialNumber = object.textOr("serialNumber", ""),
            .processor = recordAt(object, "processor", readProcessor),
            .memory = recordAt(object, "memory", readMemory),
            .graphics = recordsAt(object, "graphics", readCard)};
}

HardwareFacts readHardware(const MachineFile &file)
{
    const std::string text = file.hardware();
    try {
        if (text.empty())
            throw JsonValueError(std::string(kKey), "the key is missing");
        return hardwareFromJson(Json::parse(text));
    } catch (const JsonValueError &error) {
        refuse(file, error);
    }
}

} // namespace brindle::tools
