#include "ActingKernel.h"

#include "command/Command.h"
#include "kernel/KernelInventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>

#include <sys/stat.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kSectors = 1048576;

std::string usbPath(const std::string &name)
{
    return "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/" + name + "/block/" + name;
}

/// The inventory of the files, and what happens once it was read.
class LookUp : public InventorySource {
public:
    LookUp(KernelRoots roots, const std::function<void()> &afterwards)
        : m_inventory(std::move(roots)),
          m_afterwards(afterwards)
    {
    }

    Inventory read(const Scope &scope) override
    {
        Inventory inventory = m_inventory.read(scope);
        if (m_afterwards)
            m_afterwards();
        return inventory;
    }

    std::optional<NvramVariable> nvramVariable(std::string_view) override { return std::nullopt; }

private:
    KernelInventory m_inventory;
    const std::function<void()> &m_afterwards;
};

std::vector<std::string> linesOf(const fs::path &path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

ActingKernel::ActingKernel()
{
    fs::create_directories(m_kernel.root() / "programs");
    fs::create_directories(m_kernel.root() / "proc");
    m_kernel.setMounts({});
    for (const char *name : {"mkfs.fat", "mkfs.exfat", "mkapfs", "mkfs.hfsplus", "fatlabel", "exfatlabel", "e2label"})
        addProgram(name);
}

void ActingKernel::own(const fs::path &node, std::uint64_t sequence)
{
    struct stat status {};
    ::stat(node.c_str(), &status);
    m_sequences[status.st_ino] = sequence;
}

void ActingKernel::plug(const std::string &name, int minor, std::uint64_t sequence)
{
    const std::string number = fmt::format("8:{}", minor);
    m_kernel.addDisk(number, usbPath(name), kSectors, {{"diskseq", std::to_string(sequence)}});
    m_kernel.addUdevRecord(number, {"ID_PART_TABLE_TYPE=gpt", "ID_BUS=usb"});
    m_kernel.writeNode(name, "");
    fs::resize_file(m_kernel.node(name), kSectors * 512);
    own(m_kernel.node(name), sequence);
}

void ActingKernel::addPartition(const std::string &disk, int minor, int number, const std::string &typeGuid,
                                const std::vector<std::string> &properties)
{
    const std::string name = disk + std::to_string(number);
    const std::string device = fmt::format("8:{}", minor);
    m_kernel.addPartition(device, usbPath(disk) + '/' + name, 2048, 204800);
    std::vector<std::string> told{"ID_PART_ENTRY_SCHEME=gpt", "ID_PART_ENTRY_TYPE=" + typeGuid};
    told.insert(told.end(), properties.begin(), properties.end());
    m_kernel.addUdevRecord(device, told);
    m_kernel.writeNode(name, "");
    fs::resize_file(m_kernel.node(name), 204800 * 512);
    struct stat status {};
    ::stat(m_kernel.node(disk).c_str(), &status);
    own(m_kernel.node(name), m_sequences[status.st_ino]);
}

void ActingKernel::setRemovable(const std::string &disk)
{
    m_kernel.setAttribute(usbPath(disk), "removable", "1");
}

void ActingKernel::unplug(const std::string &name)
{
    for (const auto &entry : fs::directory_iterator(m_kernel.root() / "sys/dev/block")) {
        if (fs::read_symlink(entry).string().find("/" + name + "/block/") != std::string::npos) {
            fs::remove(m_kernel.root() / "run/udev/data" / ("b" + entry.path().filename().string()));
            fs::remove(entry);
        }
    }
    fs::remove_all(m_kernel.root() / "sys/devices" / usbPath(name));
    for (const auto &entry : fs::directory_iterator(m_kernel.root() / "dev")) {
        if (entry.path().filename().string().starts_with(name))
            fs::remove(entry);
    }
}

void ActingKernel::plugStick()
{
    plug("sdb", 16, 7);
    addPartition("sdb", 17, 1, kEfiGuid, {"ID_FS_TYPE=vfat", "ID_FS_VERSION=FAT32", "ID_FS_LABEL_ENC=EFI"});
    addPartition("sdb", 18, 2, kDataGuid, {"ID_FS_TYPE=vfat", "ID_FS_VERSION=FAT32", "ID_FS_LABEL_ENC=STICK"});
}

void ActingKernel::hold(const std::string &device, const std::string &holder)
{
    const std::string disk = device.substr(0, 3);
    const std::string path = device == disk ? usbPath(disk) : usbPath(disk) + '/' + device;
    fs::create_directories(m_kernel.root() / "sys/devices" / path / "holders" / holder);
}

void ActingKernel::addMountLine(const std::string &line)
{
    m_mountLines.push_back(line);
    m_kernel.setMounts(fmt::format("{}\n", fmt::join(m_mountLines, "\n")));
}

void ActingKernel::addMount(const std::string &number, const std::string &place, const std::string &type)
{
    std::string escaped; // As the kernel writes a blank.
    for (const char character : place)
        escaped += character == ' ' ? "\\040" : std::string(1, character);
    addMountLine(fmt::format("36 25 {} / {} rw - {} /dev/some rw", number, escaped, type));
}

void ActingKernel::addProgram(const std::string &name, const std::string &script)
{
    const fs::path path = m_kernel.root() / "programs" / name;
    std::ofstream(path) << "#!/bin/sh\nfor word in \"$0\" \"$@\"; do printf '%s\\037' \"$word\"; done >>"
                        << (m_kernel.root() / "called").string() << "\necho >>" << (m_kernel.root() / "called").string()
                        << "\n"
                        << script << "\n";
    fs::permissions(path, fs::perms::owner_all);
}

void ActingKernel::removeProgram(const std::string &name)
{
    fs::remove(m_kernel.root() / "programs" / name);
}

Outcome ActingKernel::run(std::vector<std::string_view> words)
{
    LookUp inventory(m_kernel.roots(), afterLookUp);
    KernelActor actor(m_kernel.roots(),
                      {.media = media(),
                       .processes = m_kernel.root() / "proc",
                       .user =
                           [] {
                               return VolumeUser{1000, 1001, "ann"};
                           },
                       .programs = Programs({m_kernel.root() / "programs"})},
                      *this);
    Context context{.source = inventory, .out = {}, .err = {}, .actor = &actor};
    const int status = runDiskutil(context, words);
    return {status, context.out, context.err};
}

std::vector<std::string> ActingKernel::called() const
{
    std::vector<std::string> calls;
    for (const std::string &line : linesOf(m_kernel.root() / "called")) {
        std::vector<std::string> words;
        std::istringstream stream(line);
        for (std::string word; std::getline(stream, word, '\037');) {
            const bool isOurs = word.starts_with(m_kernel.root().string());
            words.push_back(isOurs ? fs::path(word).filename().string() : word);
        }
        calls.push_back(fmt::format("{}", fmt::join(words, " ")));
    }
    return calls;
}

std::vector<std::string> ActingKernel::mountPoints() const
{
    std::vector<std::string> places;
    for (const MountEntry &entry : parseMountTable(fmt::format("{}", fmt::join(m_mountLines, "\n"))))
        places.push_back(entry.mountPoint);
    return places;
}

std::optional<std::uint64_t> ActingKernel::diskSequence(int descriptor)
{
    struct stat status {};
    ::fstat(descriptor, &status);
    const auto found = m_sequences.find(status.st_ino);
    return knowsSequences && found != m_sequences.end() ? std::optional(found->second) : std::nullopt;
}

int ActingKernel::mount(const MountCall &call)
{
    if (mountError != 0)
        return mountError;
    mounted.push_back(call);
    const std::string name = fs::path(call.source).filename();
    for (const auto &entry : fs::directory_iterator(m_kernel.root() / "sys/dev/block")) {
        if (fs::read_symlink(entry).filename() == name)
            addMount(entry.path().filename(), call.target, call.fileSystem);
    }
    return 0;
}

int ActingKernel::unmount(const std::string &mountPoint)
{
    if (unmountError != 0)
        return unmountError;
    const auto places = mountPoints();
    const auto place = std::ranges::find(places, mountPoint);
    if (place == places.end())
        return EINVAL;
    m_mountLines.erase(m_mountLines.begin() + (place - places.begin()));
    m_kernel.setMounts(m_mountLines.empty() ? "" : fmt::format("{}\n", fmt::join(m_mountLines, "\n")));
    return 0;
}

int ActingKernel::detach(const std::string &mountPoint)
{
    detached.push_back(mountPoint);
    unmountError = 0;
    return unmount(mountPoint);
}

int ActingKernel::addPartition(int, const PartitionExtent &extent)
{
    asked.push_back(fmt::format("addPartition {}", extent.number));
    const std::string name = "sdb" + std::to_string(extent.number);
    m_kernel.writeNode(name, "");
    fs::resize_file(m_kernel.node(name), extent.sizeBytes);
    struct stat status {};
    ::stat(m_kernel.node("sdb").c_str(), &status);
    own(m_kernel.node(name), m_sequences[status.st_ino]);
    return 0;
}

int ActingKernel::removePartition(int, int number)
{
    asked.push_back(fmt::format("removePartition {}", number));
    return 0;
}

int ActingKernel::ejectMedium(int disk)
{
    touched.push_back(diskSequence(disk).value_or(0));
    asked.emplace_back("ejectMedium");
    return ejectError;
}

int ActingKernel::detachImage(int)
{
    asked.emplace_back("detachImage");
    return 0;
}

} // namespace brindle::tools
