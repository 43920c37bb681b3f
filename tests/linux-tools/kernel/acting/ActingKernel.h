#pragma once

#include "linux-tools/kernel/FakeKernel.h"

#include "kernel/acting/KernelActor.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace brindle::tools {

/// How a command of diskutil ended.
struct Outcome {
    int status = 0;
    std::string output;
    std::string errors;
};

/// A kernel of files that answers to acting as a real one: what is mounted stands in its mount table, and the nodes are
/// files that are written to. Programs of the system are scripts that write down how they were called.
class ActingKernel : public KernelCalls {
public:
    ActingKernel();

    /// A stick "sdb" and the like behind USB, of 512 MiB, that is counted by \a sequence.
    void plug(const std::string &name, int minor, std::uint64_t sequence);

    /// A partition of it: type and file system as udev tells them.
    void addPartition(const std::string &disk, int minor, int number, const std::string &typeGuid,
                      const std::vector<std::string> &properties);
    void setRemovable(const std::string &disk);
    void unplug(const std::string &name);

    /// A stick sdb, disk7, with an EFI partition "EFI" and a FAT volume "STICK".
    void plugStick();

    /// Another disk takes the place of a node.
    void takeOver(const std::string &name, std::uint64_t sequence) { own(m_kernel.node(name), sequence); }

    /// A folder beside a device that names who makes use of it.
    void hold(const std::string &device, const std::string &holder);

    /// A line of the mount table.
    void addMount(const std::string &number, const std::string &place, const std::string &type = "vfat");
    void addMountLine(const std::string &line);

    void addProgram(const std::string &name, const std::string &script = {});
    void removeProgram(const std::string &name);

    Outcome run(std::vector<std::string_view> words);

    [[nodiscard]] FakeKernel &files() { return m_kernel; }
    [[nodiscard]] std::filesystem::path media() const { return m_kernel.root() / "media"; }
    [[nodiscard]] std::vector<std::string> called() const; ///< "mkfs.fat -I -F 32 sdb1", paths without folders.
    [[nodiscard]] std::vector<std::string> mountPoints() const;

    // What the kernel is asked, and what it answers.
    std::optional<std::uint64_t> diskSequence(int descriptor) override;
    bool isPrivileged() override { return isRoot; }
    int mount(const MountCall &call) override;
    int unmount(const std::string &mountPoint) override;
    int detach(const std::string &mountPoint) override;
    int addPartition(int disk, const PartitionExtent &extent) override;
    int removePartition(int disk, int number) override;
    int ejectMedium(int disk) override;
    int detachImage(int disk) override;

    std::function<void()> afterLookUp;  ///< Called when a command has read the disks.
    std::vector<std::uint64_t> touched; ///< The disks that were asked to go.
    bool isRoot = true;
    bool knowsSequences = true;
    int mountError = 0;
    int unmountError = 0;
    int ejectError = 0;
    std::vector<MountCall> mounted;
    std::vector<std::string> detached;
    std::vector<std::string> asked; ///< "removePartition 1", "ejectMedium", …

private:
    void own(const std::filesystem::path &node, std::uint64_t sequence);

    FakeKernel m_kernel;
    std::vector<std::string> m_mountLines;
    std::map<ino_t, std::uint64_t> m_sequences;
};

inline constexpr const char *kEfiGuid = "c12a7328-f81f-11d2-ba4b-00a0c93ec93b";
inline constexpr const char *kDataGuid = "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";

} // namespace brindle::tools
