#pragma once

#include "base/CancellationToken.h"
#include "detectors/Diskutil.h"
#include "records/ToolPaths.h"
#include "records/ToolRunner.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// What is known of the running machine: where it booted from, and by which boot loader.
///
/// A failing tool gives no value, never an error, and nothing is logged. The static functions read texts and run
/// nothing. May be destroyed while a pass is under way: the pass then ends without a further step. Main thread only.
class SystemInfoDetector : public QObject {
    Q_OBJECT

public:
    /// What `diskutil info` tells of the real disk that carries a volume, the system's among others.
    struct BootDisk {
        std::optional<std::string> identifier;
        std::optional<std::string> volumeName; ///< As the tool prints it; present and empty where it prints none.

        bool operator==(const BootDisk &) const = default;
    };

    SystemInfoDetector(ToolRunner &tools, const ToolPaths &paths); ///< The tool runner outlives the detector.

    /// The whole disk of the running system.
    [[nodiscard]] const std::optional<std::string> &bootDiskIdentifier() const { return m_bootDiskIdentifier; }

    /// The whole disk that OpenCore started from. Keeps its value where a later pass finds none.
    [[nodiscard]] const std::optional<std::string> &bootloaderDiskIdentifier() const
    {
        return m_bootloaderDiskIdentifier;
    }

    /// As the firmware's variable says it, such as "REL-099-2024-03-04".
    [[nodiscard]] const std::optional<std::string> &openCoreVersion() const { return m_openCoreVersion; }
    [[nodiscard]] const std::optional<std::string> &cloverVersion() const { return m_cloverVersion; }

    /// The name of the volume that is mounted at "/": a name, no path.
    [[nodiscard]] const std::optional<std::string> &bootVolumePath() const { return m_bootVolumePath; }

    /// A pass has ended that no later one replaced.
    [[nodiscard]] bool isDetectionComplete() const { return m_isDetectionComplete; }

    /// The full pass: reads everything anew, side by side.
    QCoro::Task<> detectSystemInfo();

    /// Reads anew what is known of booting. Replaces a pass of its own kind that is under way: the tools of that one
    /// run on and what they tell is still published, but it no longer completes the detection.
    QCoro::Task<> refreshBootInfo();

    /// The whole disk of a device path or an identifier: "disk3" for "/dev/disk3s1s1"; another text as it is, but for
    /// a "/dev/" at its front.
    [[nodiscard]] static std::string normalizeDiskIdentifier(std::string_view device);

    /// The value in a line or an output of `nvram`: what stands behind the first tab, or else behind the first colon,
    /// where that says something.
    [[nodiscard]] static std::optional<std::string> parseNvramValue(std::string_view text);

    [[nodiscard]] static BootDisk readBootDisk(std::string_view info);

    /// The first value in the lines of \a output that name OpenCore.
    [[nodiscard]] static std::optional<std::string> readOpenCoreVersion(std::string_view output);

    /// The first partition UUID of each boot path in \a output, in line order, with its case as written.
    [[nodiscard]] static std::vector<std::string> readBootPathUUIDs(std::string_view output);

Q_SIGNALS:
    void bootDiskIdentifierChanged();
    void bootloaderDiskIdentifierChanged();
    void openCoreVersionChanged();
    void cloverVersionChanged();
    void bootVolumePathChanged();
    void isDetectionCompleteChanged();

private:
    struct Search;

    /// Static, for the detector may be gone before the pass begins.
    static QCoro::Task<> runBootInfoPass(QPointer<SystemInfoDetector> self, CancellationToken pass);
    QCoro::Task<> detectBootDisk();
    QCoro::Task<> detectBootloaderVersions();
    QCoro::Task<> detectOpenCoreVersion();
    QCoro::Task<> detectBootloaderDisk();
    QCoro::Task<> detectCloverVersion();
    QCoro::Task<std::optional<std::string>> diskContainingUUID(std::string uuid);
    QCoro::Task<> searchDisk(std::string disk, Search *search);
    QCoro::Task<std::optional<std::string>> nvram(std::string variable);

    void setBootDiskIdentifier(std::optional<std::string> bootDiskIdentifier);
    void setBootloaderDiskIdentifier(std::optional<std::string> bootloaderDiskIdentifier);
    void setOpenCoreVersion(std::optional<std::string> openCoreVersion);
    void setCloverVersion(std::optional<std::string> cloverVersion);
    void setBootVolumePath(std::optional<std::string> bootVolumePath);
    void setIsDetectionComplete(bool isDetectionComplete);
    template <typename Value>
    void publish(Value &field, Value value, void (SystemInfoDetector::*changed)());

    ToolRunner &m_tools;
    ToolPaths m_paths;
    Diskutil m_diskutil;

    std::optional<std::string> m_bootDiskIdentifier;
    std::optional<std::string> m_bootloaderDiskIdentifier;
    std::optional<std::string> m_openCoreVersion;
    std::optional<std::string> m_cloverVersion;
    std::optional<std::string> m_bootVolumePath;
    bool m_isDetectionComplete = false;
    CancellationToken m_detectionTask; ///< Of the latest refreshBootInfo().
};

} // namespace brindle
