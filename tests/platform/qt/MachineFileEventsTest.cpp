#include "platform/qt/MachineFileEvents.h"

#include "support/Patience.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Lines = std::vector<std::string>;

class MachineFileEventsTest : public testing::Test {
protected:
    MachineFileEventsTest()
    {
        std::string pattern = (fs::temp_directory_path() / "brindle-machine-XXXXXX").string();
        root = mkdtemp(pattern.data());
    }
    ~MachineFileEventsTest() override { fs::remove_all(root); }

    /// Replaces the machine file as the tools do.
    void write(const std::string &text) const
    {
        std::ofstream(root / "machine.json.new") << text;
        fs::rename(root / "machine.json.new", root / "machine.json");
    }

    void observe()
    {
        for (const auto which : {DiskEvents::VolumeChange::mounted, DiskEvents::VolumeChange::unmounted})
            m_observations.push_back(events->observeVolumes(which, [this, which](const auto &path) {
                const bool isMount = which == DiskEvents::VolumeChange::mounted;
                seen.push_back((isMount ? "mounted " : "unmounted ") + path.value_or("nothing"));
            }));
        m_observations.push_back(events->createSession([this](DiskEvents::DiskChange change, const auto &disk) {
            EXPECT_EQ(disk->isWhole, true);
            const bool isThere = change == DiskEvents::DiskChange::appeared;
            seen.push_back((isThere ? "appeared " : "disappeared ") + disk->mediaName.value_or("nothing"));
        }));
    }
    void stop() { m_observations.clear(); }

    /// Runs the event loop until \a count events were seen; a hanging test fails, none waits for the time.
    void waitFor(std::size_t count)
    {
        const QDeadlineTimer deadline(kPatienceMilliseconds);
        while (seen.size() < count && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        EXPECT_THAT(seen, SizeIs(count));
    }

    fs::path root;
    Lines seen;
    std::unique_ptr<DiskEvents> events;

private:
    std::vector<std::unique_ptr<DiskEvents::Observation>> m_observations;
};

const std::string kStick = R"({"identifier": "disk4", "mediaName": "Stick"})";

TEST_F(MachineFileEventsTest, TellsDisksThatArePluggedInAndOutAndIsSilentOfThoseThatWereThere)
{
    write(R"({"disks": [{"identifier": "disk0", "mediaName": "Drive"}]})");
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    write(R"({"disks": [{"identifier": "disk0", "mediaName": "Drive"}, )" + kStick + "]}");
    waitFor(1);
    write(R"({"disks": [{"identifier": "disk0", "mediaName": "Drive"}]})");
    waitFor(2);

    EXPECT_THAT(seen, ElementsAre("appeared Stick", "disappeared Stick"));
}

TEST_F(MachineFileEventsTest, TakesADiskOfAnotherNumberForAnotherDisk)
{
    write(R"({"disks": [{"identifier": "disk4", "mediaName": "Stick"}]})");
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    write(R"({"disks": [{"identifier": "disk5", "mediaName": "Stick"}]})");
    waitFor(2);

    EXPECT_THAT(seen, ElementsAre("disappeared Stick", "appeared Stick"));
}

TEST_F(MachineFileEventsTest, TellsMountsByTheirPlaceBelowTheRootOrAsItIsWritten)
{
    write("{}");
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    write(R"({"mounts": [{"carrier": "disk0s1", "mountPoint": "/"},
                         {"carrier": "disk4s1", "mountPoint": "Volumes/Data"}]})");
    waitFor(2);
    write(R"({"mounts": [{"carrier": "disk0s1", "mountPoint": "/"}]})");
    waitFor(3);

    const std::string data = (root / "Volumes/Data").string();
    EXPECT_THAT(seen, ElementsAre("mounted /", "mounted " + data, "unmounted " + data));
}

TEST_F(MachineFileEventsTest, TellsOfDiskImagesToo)
{
    write("{}");
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    write(R"({"disks": [{"identifier": "disk3", "mediaName": "Image", "isImage": true}]})");
    waitFor(1);
    write("{}");
    waitFor(2);

    EXPECT_THAT(seen, ElementsAre("appeared Image", "disappeared Image"));
}

TEST_F(MachineFileEventsTest, KeepsWhatItKnewWhileTheFileCannotBeUnderstood)
{
    write(R"({"disks": [)" + kStick + "]}");
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    for (const char *text : {"", "{", "[]", "\xff"}) {
        write(text);
        QCoreApplication::processEvents();
    }
    fs::remove(root / "machine.json");
    QCoreApplication::processEvents();
    EXPECT_THAT(seen, IsEmpty());

    write(R"({"disks": "none", "mounts": [1, {"mountPoint": 2}, null]})");
    waitFor(1);

    EXPECT_THAT(seen, ElementsAre("disappeared Stick"));
}

TEST_F(MachineFileEventsTest, TellsOfAMachineFileThatComesLater)
{
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    write(R"({"disks": [)" + kStick + "]}");
    waitFor(1);

    EXPECT_THAT(seen, ElementsAre("appeared Stick"));
}

TEST_F(MachineFileEventsTest, TellsNothingAfterTheObservation)
{
    write("{}");
    events = std::make_unique<MachineFileEvents>(root);
    observe();

    stop();
    write(R"({"disks": [)" + kStick + "]}");
    QCoreApplication::processEvents();

    EXPECT_THAT(seen, IsEmpty());
}

} // namespace
} // namespace brindle
