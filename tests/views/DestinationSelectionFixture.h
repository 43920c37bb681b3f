#pragma once

#include "EFICopyViewFixture.h"
#include "base/BlockOn.h"
#include "support/Patience.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// A copy dialog as \a Dialog shows it, and what it asks for: its source is disk1, its destinations the boot disk
/// (disk2) and a plain one (disk3).
template <typename Dialog>
class DestinationSelectionFixture : public EFICopyViewFixture {
protected:
    using Destinations = std::vector<EFICopyManager::EFIPartitionInfo>;

    [[nodiscard]] Destinations twoDestinations() const
    {
        return {{.diskIdentifier = "disk2",
                 .diskName = "Boot SSD",
                 .efiPartition = destination.efiPartitions[0],
                 .isBootDisk = true,
                 .hasOpenCore = true,
                 .hasClover = true},
                {.diskIdentifier = "disk3",
                 .diskName = "Plain",
                 .efiPartition = {.identifier = "disk3s1", .isMounted = true, .volumeName = "EFI"}}};
    }

    Dialog &open() { return open(twoDestinations()); }
    Dialog &open(Destinations destinations)
    {
        m_dialog = std::make_unique<Dialog>(
            source, source.efiPartitions[0], std::move(destinations),
            [this](const auto &info, bool overwrites) {
                chosen.push_back(info.diskIdentifier + (overwrites ? " overwritten" : ""));
            },
            [this] { ++cancels; }, manager);
        QObject::connect(m_dialog.get(), &Dialog::changed, [this] { ++changes; });
        return *m_dialog;
    }

    void copy(bool overwriteWithoutBackup = false)
    {
        try {
            blockOn(manager.copyEFI(source, source.efiPartitions[0], destination, destination.efiPartitions[0],
                                    overwriteWithoutBackup),
                    kPatience);
        } catch (const Error &) { // told by the manager's fields
        }
    }

    PhysicalDisk source = disk("disk1", "Source", "source");
    PhysicalDisk destination = disk("disk2", "Boot SSD", "destination");
    std::vector<std::string> chosen;
    int cancels = 0;
    int changes = 0;

private:
    std::unique_ptr<Dialog> m_dialog;
};

} // namespace brindle
