#pragma once

#include "assembly/Platform.h"
#include "records/PhysicalDisk.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

class SimulatedMachine;

/// What a tool of a simulated machine does when it is called in one way.
struct SimulatedAnswer {
    std::string standardOutput;
    std::string standardError;
    int status = 0;
    std::string delay; ///< Milliseconds, "hang", or "die" for a tool that is killed.
};

/// One disk of a simulated machine. Each call changes the machine's answers at once.
class SimulatedDisk {
public:
    SimulatedDisk &named(std::string mediaName);
    SimulatedDisk &sized(std::string size); ///< "16.0 GB"
    SimulatedDisk &onBus(std::string protocol);
    SimulatedDisk &removable();
    SimulatedDisk &diskImage(); ///< In `diskutil list` and not in `diskutil list physical`.
    SimulatedDisk &withInfoLine(std::string line);
    /// The next partition, of type "EFI"; mounted where a mount point is given.
    SimulatedDisk &withEFI(std::string volumeName, std::optional<std::string> mountPoint = {});
    /// The next partition, as a line of the list says it: "Microsoft Basic Data", "Windows", "99.0 GB".
    SimulatedDisk &withPartition(std::string type, std::string name, std::string size);
    SimulatedDisk &infoFails(); ///< `diskutil info` of the whole disk ends with status 1.
    SimulatedDisk &infoAnswers(SimulatedAnswer answer);

private:
    friend class SimulatedMachine;
    SimulatedDisk(SimulatedMachine &machine, std::string identifier);
    [[nodiscard]] std::string section() const;
    [[nodiscard]] std::string infoText() const;
    void publish();

    struct Partition {
        std::string type;
        std::string name;
        std::string size;
    };

    SimulatedMachine &m_machine;
    std::string m_identifier;
    std::string m_name = "Simulated Disk";
    std::string m_size = "500.1 GB";
    std::string m_protocol = "SATA";
    bool m_isRemovable = false;
    bool m_isDiskImage = false;
    std::vector<std::string> m_moreInfoLines;
    std::vector<Partition> m_partitions;
    std::optional<SimulatedAnswer> m_infoAnswer;
};

/// What a scan of a simulated machine found.
struct SimulatedScan {
    std::vector<PhysicalDisk> disks;
    [[nodiscard]] std::vector<std::string> identifiers() const;
};

/// A machine as a folder of small programs, for BRINDLE_TOOL_ROOT: each prints the text prepared for its arguments.
///
/// Described by disks, or by raw texts for any call; what was set last holds. Its folder goes with it.
class SimulatedMachine {
public:
    SimulatedMachine();
    ~SimulatedMachine();
    SimulatedMachine(const SimulatedMachine &) = delete;
    SimulatedMachine &operator=(const SimulatedMachine &) = delete;

    [[nodiscard]] const std::filesystem::path &root() const { return m_root; }

    SimulatedDisk &addDisk(std::string identifier);

    /// What `tool arguments` does from now on; \a tool is a bare name such as "diskutil".
    void answer(const std::string &tool, const std::string &arguments, const SimulatedAnswer &answer);

    /// Puts any file in the tool's place, with any permissions; removes it where \a contents is absent.
    void replaceTool(const std::string &tool, std::optional<std::string> contents, bool executable = true);

    /// The lines "start diskutil list" and "end diskutil list" in the order in which the calls came and went.
    [[nodiscard]] std::vector<std::string> calls() const;

    /// The parts that a program of the application is wired from, on this machine, with user defaults in memory.
    [[nodiscard]] Platform platform() const;

    /// One scan in this process.
    SimulatedScan scan();

    /// The log lines of the scans so far.
    [[nodiscard]] const std::vector<std::string> &log() const { return m_log; }

private:
    friend class SimulatedDisk;
    [[nodiscard]] std::filesystem::path pathOf(const std::string &tool) const;
    void publishLists();

    std::filesystem::path m_root;
    std::vector<std::unique_ptr<SimulatedDisk>> m_disks;
    std::vector<std::string> m_log;
};

} // namespace brindle
