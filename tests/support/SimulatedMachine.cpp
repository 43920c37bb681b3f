#include "support/SimulatedMachine.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "base/Log.h"
#include "base/TemporaryFolder.h"
#include "platform/MemorySecretStore.h"
#include "platform/NoDialogs.h"
#include "platform/NoNotifications.h"
#include "platform/NoWorkspace.h"
#include "platform/linux/LinuxBundleInfo.h"
#include "platform/linux/LinuxChildProcess.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxSystemValues.h"
#include "platform/qt/MachineFileEvents.h"
#include "platform/qt/QtScheduler.h"
#include "support/LogCapture.h"
#include "support/MemoryUserDefaults.h"
#include "support/Patience.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace brindle {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::pair<const char *, const char *>, 6> kPlaces{{{"diskutil", "usr/sbin"},
                                                                        {"df", "bin"},
                                                                        {"nvram", "usr/sbin"},
                                                                        {"system_profiler", "usr/sbin"},
                                                                        {"sudo", "usr/bin"},
                                                                        {"open", "usr/bin"}}};

void write(const fs::path &path, const std::string &text)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    if (!file.flush())
        throw std::runtime_error("can't write " + path.string());
}

std::string infoLine(const std::string &label, const std::string &value)
{
    return fmt::format("   {:<26}{}\n", label, value);
}

} // namespace

SimulatedDisk::SimulatedDisk(SimulatedMachine &machine, std::string identifier)
    : m_machine(machine),
      m_identifier(std::move(identifier))
{
}

SimulatedDisk &SimulatedDisk::named(std::string mediaName)
{
    m_name = std::move(mediaName);
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::sized(std::string size)
{
    m_size = std::move(size);
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::onBus(std::string protocol)
{
    m_protocol = std::move(protocol);
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::removable()
{
    m_isRemovable = true;
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::diskImage()
{
    m_isDiskImage = true;
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::withInfoLine(std::string line)
{
    m_moreInfoLines.push_back(std::move(line));
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::withEFI(std::string volumeName, std::optional<std::string> mountPoint)
{
    m_partitions.push_back({"EFI", volumeName, "209.7 MB"});
    const std::string partition = fmt::format("{}s{}", m_identifier, m_partitions.size());
    m_machine.answer("diskutil", "info " + partition,
                     {.standardOutput = infoLine("Device Identifier:", partition) + infoLine("Whole:", "No") +
                                        infoLine("Volume Name:", volumeName) +
                                        (mountPoint ? infoLine("Mount Point:", *mountPoint) : "") +
                                        infoLine("Disk / Partition UUID:", "0E239BC6-F960-3107-89CF-1C97F78BB46B")});
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::withPartition(std::string type, std::string name, std::string size)
{
    m_partitions.push_back({std::move(type), std::move(name), std::move(size)});
    publish();
    return *this;
}

SimulatedDisk &SimulatedDisk::infoFails()
{
    return infoAnswers({.standardError = "Could not find disk: " + m_identifier + "\n", .status = 1});
}

SimulatedDisk &SimulatedDisk::infoAnswers(SimulatedAnswer answer)
{
    m_infoAnswer = std::move(answer);
    publish();
    return *this;
}

std::string SimulatedDisk::section() const
{
    const char *place = m_isDiskImage ? "disk image" : m_isRemovable ? "external, physical" : "internal, physical";
    std::string text = fmt::format("/dev/{} ({}):\n   #:                       TYPE NAME                    SIZE       "
                                   "IDENTIFIER\n",
                                   m_identifier, place);
    text += fmt::format("   0:      GUID_partition_scheme                        *{:<11}{}\n", m_size, m_identifier);
    for (std::size_t i = 0; i < m_partitions.size(); ++i) {
        const Partition &partition = m_partitions[i];
        text += fmt::format("{:4}: {:>26} {:<23} {:<11}{}s{}\n", i + 1, partition.type, partition.name, partition.size,
                            m_identifier, i + 1);
    }
    return text + '\n';
}

std::string SimulatedDisk::infoText() const
{
    std::string text = infoLine("Device Identifier:", m_identifier) + infoLine("Whole:", "Yes") +
                       infoLine("Device / Media Name:", m_name) +
                       infoLine("Content (IOContent):", "GUID_partition_scheme") +
                       infoLine("Disk Size:", m_size + " (exactly as sold)") + infoLine("Protocol:", m_protocol) +
                       infoLine("SMART Status:", "Verified") +
                       infoLine("Removable Media:", m_isRemovable ? "Yes" : "No") + infoLine("Read-Only Media:", "No");
    for (const std::string &line : m_moreInfoLines)
        text += line + '\n';
    return text;
}

void SimulatedDisk::publish()
{
    m_machine.answer("diskutil", "info " + m_identifier,
                     m_infoAnswer.value_or(SimulatedAnswer{.standardOutput = infoText()}));
    m_machine.publishLists();
}

std::vector<std::string> SimulatedScan::identifiers() const
{
    std::vector<std::string> result;
    std::transform(disks.begin(), disks.end(), std::back_inserter(result),
                   [](const PhysicalDisk &disk) { return disk.identifier; });
    return result;
}

SimulatedMachine::SimulatedMachine() : m_root(makeTemporaryFolder("machine"))
{
    for (const auto &[tool, place] : kPlaces) {
        fs::create_directories(m_root / place / (std::string(tool) + ".answers"));
        fs::create_symlink(SIMULATED_TOOL, pathOf(tool));
    }
    write(m_root / "calls.log", "");
    publishLists();
}

SimulatedMachine::~SimulatedMachine()
{
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

SimulatedDisk &SimulatedMachine::addDisk(std::string identifier)
{
    m_disks.push_back(std::unique_ptr<SimulatedDisk>(new SimulatedDisk(*this, std::move(identifier))));
    m_disks.back()->publish();
    return *m_disks.back();
}

void SimulatedMachine::answer(const std::string &tool, const std::string &arguments, const SimulatedAnswer &answer)
{
    std::string key = arguments;
    std::replace(key.begin(), key.end(), '/', '%');
    const fs::path folder = pathOf(tool).string() + ".answers/" + key;
    fs::create_directories(folder);
    write(folder / "stdout", answer.standardOutput);
    write(folder / "stderr", answer.standardError);
    write(folder / "status", std::to_string(answer.status));
    write(folder / "delay", answer.delay);
}

void SimulatedMachine::replaceTool(const std::string &tool, std::optional<std::string> contents, bool executable)
{
    fs::remove(pathOf(tool));
    if (!contents)
        return;
    write(pathOf(tool), *contents);
    fs::permissions(pathOf(tool), executable ? fs::perms::owner_all : fs::perms::owner_read);
}

std::vector<std::string> SimulatedMachine::calls() const
{
    std::ifstream file(m_root / "calls.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

Platform SimulatedMachine::platform() const
{
    return {.scheduler = std::make_unique<QtScheduler>(),
            .childProcesses = std::make_unique<LinuxChildProcessLauncher>(),
            .userDefaults = std::make_unique<MemoryUserDefaults>(),
            .secretStore = std::make_unique<MemorySecretStore>(),
            .diskEvents = std::make_unique<MachineFileEvents>(m_root),
            .fileManager = std::make_unique<LinuxFileManager>(),
            .workspace = std::make_unique<NoWorkspace>(),
            .userNotifications = std::make_unique<NoNotifications>(),
            .dialogs = std::make_unique<NoDialogs>(),
            .systemValues = std::make_unique<LinuxSystemValues>(),
            .bundle = linuxBundleInfo(),
            .toolPaths = ToolPaths::underRoot(m_root.string()),
            .isSecretStoreTemporary = true};
}

SimulatedScan SimulatedMachine::scan()
{
    LogCapture capture;
    Assembly assembly(platform());
    blockOn(assembly.diskManager().startScan(false), kPatience);
    m_log.insert(m_log.end(), capture.lines().begin(), capture.lines().end());
    return {assembly.diskManager().disks()};
}

fs::path SimulatedMachine::pathOf(const std::string &tool) const
{
    const auto place =
        std::find_if(kPlaces.begin(), kPlaces.end(), [&](const auto &entry) { return entry.first == tool; });
    if (place == kPlaces.end())
        throw std::invalid_argument("no such tool: " + tool);
    return m_root / place->second / tool;
}

void SimulatedMachine::publishLists()
{
    std::string physical;
    std::string all;
    for (const auto &disk : m_disks) {
        const std::string section = disk->section();
        all += section;
        if (!disk->m_isDiskImage)
            physical += section;
        answer("diskutil", "list " + disk->m_identifier, {.standardOutput = section});
    }
    answer("diskutil", "list", {.standardOutput = all});
    answer("diskutil", "list physical", {.standardOutput = physical});
}

} // namespace brindle
