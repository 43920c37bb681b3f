// system_profiler: prints model, processor, memory and graphics of this machine, or of the simulated one that it
// belongs to.

#include "command/Answer.h"
#include "hardware/HardwareJson.h"
#include "hardware/KernelHardware.h"
#include "hardware/ProfilerRequest.h"
#include "machine/MachineFile.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

using namespace brindle::tools;

constexpr const char *kHelp = R"(Usage:  system_profiler [-detailLevel mini|basic|full] [DATATYPE ...]
        system_profiler -listDataTypes
        system_profiler --help

Prints the hardware of this machine. Without a DATATYPE, all are printed.

  SPHardwareDataType   model, serial number, processor, size of the memory
  SPMemoryDataType     the memory modules
  SPDisplaysDataType   the graphics cards and their displays

  -detailLevel mini    no serial numbers, and of graphics the cards alone
  -detailLevel basic   no serial numbers
  -detailLevel full    everything (the default)
  -listDataTypes       prints the names of the data types

Root learns more: the serial number, and the memory modules where udev does not keep them.
)";

HardwareFacts readFacts()
{
    const auto root = MachineFile::findRoot(programPath());
    return root ? readHardware(MachineFile(*root)) : KernelHardware().read();
}

std::string namesOfDataTypes()
{
    std::string text = "Available Datatypes:\n";
    for (const DataType &type : dataTypes())
        text.append(type.name).append("\n");
    return text;
}

std::string textFor(const ProfilerRequest &request)
{
    if (request.wantsHelp)
        return kHelp;
    return request.wantsNames ? namesOfDataTypes() : profilerText(request, readFacts());
}

Answer answerOf(std::span<const char *const> arguments)
{
    try {
        return {.status = kDone, .out = textFor(readProfilerRequest(arguments)), .err = {}};
    } catch (const ProfilerUsageError &error) {
        return {.status = kWrongUsage,
                .out = {},
                .err = fmt::format("system_profiler: {}\nTry 'system_profiler --help'.\n", error.what())};
    }
}

} // namespace

int main(int argc, char *argv[])
{
    return tellAnswer([&] { return answerOf({argv + 1, static_cast<std::size_t>(std::max(argc - 1, 0))}); });
}
