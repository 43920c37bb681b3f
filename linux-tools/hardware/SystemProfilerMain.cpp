// system_profiler: prints model, processor, memory and graphics of this machine, or of the simulated one that it
// belongs to.

#include "hardware/HardwareJson.h"
#include "hardware/KernelHardware.h"
#include "hardware/ProfilerRequest.h"
#include "machine/MachineFile.h"

#include <algorithm>
#include <cstdio>

namespace {

using namespace brindle::tools;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr const char *kHelp = R"(usage: system_profiler [-detailLevel mini|basic|full] [DATATYPE ...]
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

std::string answer(const ProfilerRequest &request)
{
    if (request.wantsHelp)
        return kHelp;
    return request.wantsNames ? namesOfDataTypes() : profilerText(request, readFacts());
}

int run(std::span<const char *const> arguments)
{
    const std::string text = answer(readProfilerRequest(arguments));
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!isWritten)
        std::perror("system_profiler: standard output");
    return isWritten ? 0 : kFailed;
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return run({argv + 1, static_cast<std::size_t>(std::max(argc - 1, 0))});
    } catch (const ProfilerUsageError &error) {
        std::fprintf(stderr, "system_profiler: %s\nTry 'system_profiler --help'.\n", error.what());
        return kWrongUsage;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "system_profiler: %s\n", error.what());
        return kFailed;
    }
}
