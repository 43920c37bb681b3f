#include "TestMachine.h"

#include "command/Command.h"
#include "inventory/FindDevice.h"
#include "machine/MachineFileActor.h"
#include "machine/MachineFileInventory.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ; // NOLINT: POSIX's own

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMachine = R"({
  "format": 1,
  "password": "secret",
  "nextDisk": 5,
  "owner": "somebody",
  "disks": [
    {
      "identifier": "disk0",
      "mediaName": "Internal SSD",
      "scheme": "GUID_partition_scheme",
      "protocol": "PCI-Express",
      "isSolidState": true,
      "smart": "verified",
      "sizeBytes": 500000000000,
      "partitions": [
        {
          "identifier": "disk0s1",
          "type": "EFI",
          "uuid": "11111111-0000-4000-8000-000000000001",
          "offsetBytes": 20480,
          "sizeBytes": 209715200,
          "volume": {"fileSystem": "vfat", "version": "FAT32", "name": "EFI", "uuid": "67E3-17ED"}
        },
        {
          "identifier": "disk0s2",
          "type": "Apple_APFS",
          "uuid": "11111111-0000-4000-8000-000000000002",
          "offsetBytes": 209735680,
          "sizeBytes": 499000000000,
          "volume": {"fileSystem": "apfs"},
          "apfs": {
            "identifier": "disk1",
            "volumes": [
              {"identifier": "disk1s1", "name": "Macintosh HD", "uuid": "APFS-1", "sizeBytes": 15000000000},
              {"identifier": "disk1s2", "name": "Data", "uuid": "APFS-2", "sizeBytes": 85000000000},
              {"identifier": "disk1s3", "name": "Spare", "uuid": "APFS-3", "sizeBytes": 1000000000}
            ]
          }
        }
      ]
    },
    {
      "identifier": "disk2",
      "mediaName": "Stick",
      "scheme": "GUID_partition_scheme",
      "protocol": "USB",
      "isExternal": true,
      "isRemovable": true,
      "sizeBytes": 16000000000,
      "partitions": [
        {
          "identifier": "disk2s1",
          "type": "EFI",
          "uuid": "22222222-0000-4000-8000-000000000001",
          "offsetBytes": 20480,
          "sizeBytes": 209715200,
          "volume": {"fileSystem": "vfat", "version": "FAT32", "name": "OPENCORE", "uuid": "1234-ABCD"}
        },
        {
          "identifier": "disk2s2",
          "type": "Microsoft Basic Data",
          "uuid": "22222222-0000-4000-8000-000000000002",
          "offsetBytes": 211812352,
          "sizeBytes": 15000000000,
          "note": "kept",
          "volume": {"fileSystem": "exfat", "name": "DATA", "uuid": "AAAA-BBBB"}
        }
      ]
    },
    {
      "identifier": "disk3",
      "mediaName": "Linux Disk",
      "scheme": "FDisk_partition_scheme",
      "protocol": "USB",
      "isExternal": true,
      "smart": "failing",
      "sizeBytes": 1000000000000,
      "partitions": [
        {
          "identifier": "disk3s1",
          "type": "Linux",
          "offsetBytes": 1048576,
          "sizeBytes": 900000000000,
          "volume": {"fileSystem": "ext4", "name": "root", "uuid": "ext4-uuid"}
        },
        {
          "identifier": "disk3s2",
          "type": "Linux_Swap",
          "offsetBytes": 900001048576,
          "sizeBytes": 8000000000,
          "holder": "swap",
          "volume": {"fileSystem": "swap", "uuid": "swap-uuid"}
        }
      ]
    }
  ],
  "shelf": [
    {
      "identifier": "disk4",
      "mediaName": "Card",
      "protocol": "Secure Digital",
      "isExternal": true,
      "isRemovable": true,
      "sizeBytes": 32000000000,
      "volume": {"fileSystem": "exfat", "name": "PHOTOS", "uuid": "CCCC-DDDD"}
    }
  ],
  "mounts": [
    {"carrier": "disk1s1", "mountPoint": "/", "isReadOnly": true},
    {"carrier": "disk1s2", "mountPoint": "/System/Volumes/Data"},
    {"carrier": "disk2s2", "mountPoint": "Volumes/DATA"}
  ],
  "nvram": [
    {"guid": "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102", "name": "opencore-version", "value": "REL-097-2023-12-04"},
    {"guid": "7C436110-AB2A-4BBB-A880-FE41995C9F82", "name": "odd", "valueHex": "00ff41"},
    {"guid": "7C436110-AB2A-4BBB-A880-FE41995C9F82", "name": "prev-lang:kbd", "value": "en-US:0"}
  ],
  "hardware": {"model": "iMac19,1"}
}
)";

class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe2(m_ends.data(), O_CLOEXEC), 0); }
    ~Pipe()
    {
        closeReader();
        closeWriter();
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    [[nodiscard]] int reader() const { return m_ends[0]; }
    [[nodiscard]] int writer() const { return m_ends[1]; }
    void closeReader() { close(m_ends[0]); }
    void closeWriter() { close(m_ends[1]); }

    [[nodiscard]] std::string readAll() const
    {
        std::string text;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::read(reader(), buffer.data(), buffer.size())) > 0;)
            text.append(buffer.data(), static_cast<std::size_t>(count));
        return text;
    }

private:
    static void close(int &descriptor)
    {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }

    std::array<int, 2> m_ends{-1, -1};
};

} // namespace

TestMachine::TestMachine()
{
    std::string folder = (fs::temp_directory_path() / "brindle-machine-XXXXXX").string();
    EXPECT_NE(::mkdtemp(folder.data()), nullptr);
    m_root = folder;
    write(sampleMachineText());
}

TestMachine::~TestMachine()
{
    fs::remove_all(m_root);
}

std::string TestMachine::text() const
{
    std::ifstream stream(m_root / "machine.json");
    return {std::istreambuf_iterator<char>(stream), {}};
}

nlohmann::ordered_json TestMachine::json() const
{
    return nlohmann::ordered_json::parse(text());
}

void TestMachine::write(std::string_view text) const
{
    writeFile("machine.json", text);
}

void TestMachine::writeFile(std::string_view path, std::string_view text) const
{
    fs::create_directories((m_root / path).parent_path());
    std::ofstream(m_root / path) << text;
}

bool TestMachine::hasFile(std::string_view path) const
{
    return fs::exists(m_root / path);
}

Outcome TestMachine::diskutil(const std::vector<std::string> &arguments, bool isPrivileged) const
{
    const MachineFile machine = file();
    MachineFileInventory inventory(machine);
    MachineFileActor actor(machine, isPrivileged);
    Context context{.source = inventory, .out = {}, .err = {}, .actor = &actor};
    const std::vector<std::string_view> words(arguments.begin(), arguments.end());
    const int status = runDiskutil(context, words);
    return {status, context.out, context.err};
}

std::string TestMachine::mountPointOf(const std::string &carrier) const
{
    for (const Mount &mount : file().read().inventory.mounts) {
        if (mount.carrier == carrier)
            return mount.mountPoint;
    }
    return {};
}

std::string TestMachine::labelOf(const std::string &carrier) const
{
    const MachineFile machine = file();
    const Inventory inventory = machine.read().inventory;
    const auto device = findDevice(inventory, carrier);
    if (device->apfsVolume)
        return device->apfsVolume->name;
    return device->partition ? device->partition->volume->name : device->disk->volume->name;
}

void TestMachine::install(std::string_view link, std::string_view program) const
{
    fs::create_directories((m_root / link).parent_path());
    fs::create_symlink(program, m_root / link);
}

std::string sampleMachineText()
{
    return std::string(kMachine);
}

Outcome runProgram(const std::vector<std::string> &commandLine, std::string_view input)
{
    Pipe in;
    Pipe out;
    Pipe err;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in.reader(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out.writer(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, err.writer(), STDERR_FILENO);
    std::vector<std::string> words = commandLine;
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    pid_t child = 0;
    const int error = ::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return {127, {}, std::generic_category().message(error)};
    out.closeWriter();
    err.closeWriter();
    EXPECT_EQ(::write(in.writer(), input.data(), input.size()), static_cast<ssize_t>(input.size()));
    in.closeWriter();
    Outcome outcome{0, out.readAll(), err.readAll()};
    int status = 0;
    ::waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

} // namespace brindle::tools
