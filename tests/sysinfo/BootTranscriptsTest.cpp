#include "support/Transcripts.h"
#include "sysinfo/SystemInfoDetector.h"

namespace brindle {
namespace {

std::string readingOfRootInfo(std::string_view info)
{
    const SystemInfoDetector::BootDisk disk = SystemInfoDetector::readBootDisk(info);
    return "boot disk\n" + field("identifier", disk.identifier) + field("volumeName", disk.volumeName);
}

std::string readingOfNvram(std::string_view output)
{
    return "nvram\n" + field("value", SystemInfoDetector::parseNvramValue(output)) +
           field("OpenCore", SystemInfoDetector::readOpenCoreVersion(output)) +
           field("boot path", SystemInfoDetector::readBootPathUUIDs(output));
}

TranscriptReader readerOf(std::string_view kind)
{
    if (kind == "info-root")
        return readingOfRootInfo;
    return kind == "nvram" ? readingOfNvram : nullptr;
}

class BootTranscripts : public TranscriptsTest {};

TEST_F(BootTranscripts, ReadAsReviewed)
{
    expectReadAsReviewed("boot", readerOf);
}

} // namespace
} // namespace brindle
