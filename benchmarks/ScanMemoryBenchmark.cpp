// Anonymous memory over 1,000 scans of unchanged disks in one process: what scan 1,000 holds beyond scan 100.

#include "Verdict.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "base/Log.h"
#include "platform/linux/PlistUserDefaults.h"
#include "support/SimulatedMachine.h"

#include <QCoreApplication>

#include <fmt/format.h>

#include <fstream>
#include <memory>
#include <string>

namespace brindle {
namespace {

constexpr int kFirstMeasured = 100;
constexpr int kScans = 1000;
constexpr long kAllowedKilobytes = 256;

long anonymousKilobytes()
{
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("Anonymous:"))
            return std::stol(line.substr(line.find(':') + 1));
    }
    std::abort();
}

void fill(SimulatedMachine &machine)
{
    for (const char *identifier : {"disk0", "disk1", "disk2", "disk3"}) {
        machine.addDisk(identifier)
            .named("A Disk")
            .withEFI("EFI", "/Volumes/EFI")
            .withPartition("Microsoft Basic Data", "Data", "99.0 GB");
    }
    machine.answer("df", "-k", {.standardOutput = "/dev/disk0s2 1000 10 990 1% /Volumes/Data\n"});
}

} // namespace
} // namespace brindle

int main(int argc, char **argv)
{
    using namespace brindle;
    QCoreApplication application(argc, argv);
    Log::setSink({});
    SimulatedMachine machine;
    fill(machine);
    Platform platform = machine.platform();
    platform.userDefaults = std::make_unique<PlistUserDefaults>(machine.root() / "settings.plist");
    Assembly assembly(std::move(platform));

    long atFirst = 0;
    for (int scan = 1; scan <= kScans; ++scan) {
        blockOn(assembly.diskManager().startScan(false));
        if (scan == kFirstMeasured)
            atFirst = anonymousKilobytes();
    }
    const long growth = anonymousKilobytes() - atFirst;
    fmt::print("memory of scan {} beyond scan {}: {} KB of {} KB, allowed {} KB  {}\n", kScans, kFirstMeasured, growth,
               atFirst, kAllowedKilobytes, verdict(growth <= kAllowedKilobytes));
    return verdictStatus();
}
