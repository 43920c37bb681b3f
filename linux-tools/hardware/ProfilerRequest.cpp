#include "hardware/ProfilerRequest.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

constexpr std::array kDataTypes{DataType{"SPHardwareDataType", hardwareText}, DataType{"SPMemoryDataType", memoryText},
                                DataType{"SPDisplaysDataType", displaysText}};

struct Level {
    std::string_view name;
    DetailLevel value;
};

constexpr std::array kLevels{Level{"mini", DetailLevel::mini}, Level{"basic", DetailLevel::basic},
                             Level{"full", DetailLevel::full}};

DetailLevel readLevel(std::string_view name)
{
    const auto *const found = std::ranges::find(kLevels, name, &Level::name);
    if (found == kLevels.end())
        throw ProfilerUsageError(fmt::format("unknown detail level: {}", printable(name)));
    return found->value;
}

const DataType *findDataType(std::string_view name)
{
    const auto *const found = std::ranges::find(kDataTypes, name, &DataType::name);
    if (found == kDataTypes.end())
        throw ProfilerUsageError(fmt::format("unknown data type: {}", printable(name)));
    return found;
}

} // namespace

std::span<const DataType> dataTypes()
{
    return kDataTypes;
}

ProfilerRequest readProfilerRequest(std::span<const char *const> arguments)
{
    ProfilerRequest request;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        const std::string_view argument = *at;
        if (argument == "--help" || argument == "-h") {
            request.wantsHelp = true;
        } else if (argument == "-listDataTypes") {
            request.wantsNames = true;
        } else if (argument == "-detailLevel") {
            if (++at == arguments.end())
                throw ProfilerUsageError("-detailLevel needs a level: mini, basic or full");
            request.detail = readLevel(*at);
        } else if (argument.starts_with('-')) {
            throw ProfilerUsageError(fmt::format("unknown option: {}", printable(argument)));
        } else {
            request.dataTypes.push_back(findDataType(argument));
        }
    }
    if (request.dataTypes.empty())
        std::ranges::transform(kDataTypes, std::back_inserter(request.dataTypes),
                               [](const DataType &type) { return &type; });
    return request;
}

std::string profilerText(const ProfilerRequest &request, const HardwareFacts &facts)
{
    std::string text;
    for (const DataType *const type : request.dataTypes)
        text += type->text(facts, request.detail);
    return text;
}

} // namespace brindle::tools
