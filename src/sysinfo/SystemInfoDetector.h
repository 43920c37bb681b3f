#pragma once

#include "base/CancellationToken.h"
#include "records/ToolPaths.h"
#include "records/ToolRunner.h"

#include <QCoroTask>
#include <QObject>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// What is known of the running machine: which disk its system and its boot loader came from, and which loader it is.
///
/// A failing tool loses what it would have told; nothing is logged, nothing thrown. Outlives the passes that it has
/// begun. Main thread only.
class SystemInfoDetector : public QObject {
    Q_OBJECT

public:
    SystemInfoDetector(ToolRunner &tools, ToolPaths paths); ///< The tool runner outlives the detector.

    /// The whole disk ("disk0") of the running system.
    [[nodiscard]] const std::optional<std::string> &bootDiskIdentifier() const { return m_bootDiskIdentifier; }

    /// The whole disk that OpenCore started from.
    [[nodiscard]] const std::optional<std::string> &bootloaderDiskIdentifier() const
    {
        return m_bootloaderDiskIdentifier;
    }

    /// The version as OpenCore left it in the firmware ("REL-100-2024-04-01").
    [[nodiscard]] const std::optional<std::string> &openCoreVersion() const { return m_openCoreVersion; }

    [[nodiscard]] const std::optional<std::string> &cloverVersion() const { return m_cloverVersion; }

    /// The name of the volume that the system runs from: no path, in spite of its own name.
    [[nodiscard]] const std::optional<std::string> &bootVolumePath() const { return m_bootVolumePath; }

    /// A pass has finished, and none that started since is still under way.
    [[nodiscard]] bool isDetectionComplete() const { return m_isDetectionComplete; }

    /// The full pass.
    QCoro::Task<> detectSystemInfo();

    /// Reads what belongs to the boot; takes the place of a running pass of its own kind. The tools of that one run on,
    /// and what they tell is still kept.
    QCoro::Task<> refreshBootInfo();

    /// The whole disk of a device name or path: "disk0" of "/dev/disk0s2". A name without a number stays as it is.
    [[nodiscard]] static std::string normalizeDiskIdentifier(std::string_view text);

    /// The value in a line of `nvram`: what stands behind the first tab or, where that says nothing, behind the first
    /// colon.
    [[nodiscard]] static std::optional<std::string> parseNvramValue(std::string_view text);

    /// The first UUID of capital hexadecimal groups, in any case, in \a text.
    [[nodiscard]] static std::optional<std::string> uuidIn(std::string_view text);

Q_SIGNALS:
    void bootDiskIdentifierChanged();
    void bootloaderDiskIdentifierChanged();
    void openCoreVersionChanged();
    void cloverVersionChanged();
    void bootVolumePathChanged();
    void isDetectionCompleteChanged();

private:
    using Signal = void (SystemInfoDetector::*)();

    struct Search;

    QCoro::Task<> readBootInfo(CancellationToken token);
    QCoro::Task<> detectBootDisk();
    QCoro::Task<> detectBootloaderVersions();
    QCoro::Task<> detectOpenCoreVersion();
    QCoro::Task<> detectBootloaderDisk();
    QCoro::Task<> detectCloverVersion();
    QCoro::Task<std::optional<std::string>> diskContainingUUID(std::string uuid);
    QCoro::Task<> searchDisk(std::string disk, Search *search);

    void setText(std::optional<std::string> &field, std::optional<std::string> text, Signal changed);
    void setIsDetectionComplete(bool isDetectionComplete);

    ToolRunner &m_tools;
    ToolPaths m_paths;
    std::optional<std::string> m_bootDiskIdentifier;
    std::optional<std::string> m_bootloaderDiskIdentifier;
    std::optional<std::string> m_openCoreVersion;
    std::optional<std::string> m_cloverVersion;
    std::optional<std::string> m_bootVolumePath;
    bool m_isDetectionComplete = false;
    CancellationToken m_detectionToken;
};

} // namespace brindle
