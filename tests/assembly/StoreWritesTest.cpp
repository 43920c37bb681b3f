#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "platform/linux/PlistUserDefaults.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/SimulatedMachine.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <sys/inotify.h>

#include <unistd.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string_view>
#include <utility>

namespace brindle {
namespace {

/// Counts how often a file of a folder is replaced by another.
class Replacements {
public:
    Replacements(const std::filesystem::path &folder, std::string_view name)
        : m_inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
          m_name(name)
    {
        inotify_add_watch(m_inotify, folder.c_str(), IN_MOVED_TO);
    }
    ~Replacements() { close(m_inotify); }
    Replacements(const Replacements &) = delete;
    Replacements &operator=(const Replacements &) = delete;

    int sinceLastAsked() const
    {
        alignas(inotify_event) std::array<char, 65536> buffer{};
        const ssize_t length = read(m_inotify, buffer.data(), buffer.size());
        int count = 0;
        for (ssize_t at = 0; at < length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
            count += m_name == event->name ? 1 : 0;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return count;
    }

private:
    int m_inotify;
    std::string_view m_name;
};

TEST(StoreWrites, AreOneForEachPublish)
{
    const LogCapture quiet;
    SimulatedMachine machine;
    for (const char *identifier : {"disk0", "disk1", "disk2", "disk3"})
        machine.addDisk(identifier).withEFI("EFI");
    Platform platform = machine.platform();
    platform.userDefaults = std::make_unique<PlistUserDefaults>(machine.root() / "settings.plist");
    const Replacements replacements(machine.root(), "settings.plist");
    Assembly assembly(std::move(platform));
    QCoreApplication::processEvents(); // the first run's settings are a write of their own
    EXPECT_EQ(replacements.sinceLastAsked(), 1);

    for (int scan = 0; scan < 3; ++scan) {
        blockOn(assembly.diskManager().startScan(false), kPatience);
        QCoreApplication::processEvents();

        EXPECT_EQ(replacements.sinceLastAsked(), 1) << "scan " << scan;
    }
}

} // namespace
} // namespace brindle
