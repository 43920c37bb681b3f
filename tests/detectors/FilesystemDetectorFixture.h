#pragma once

#include "detectors/FilesystemDetector.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

constexpr FilesystemFlags kNoSystem;
constexpr FilesystemFlags kMacOS{.hasMacOS = true};
constexpr FilesystemFlags kWindows{.hasWindows = true};
constexpr FilesystemFlags kLinux{.hasLinux = true};
constexpr FilesystemFlags kExFAT{.hasExFAT = true};

constexpr FilesystemFlags operator|(FilesystemFlags left, const FilesystemFlags &right)
{
    left |= right;
    return left;
}

inline void PrintTo(const FilesystemFlags &flags, std::ostream *stream)
{
    *stream << "macOS=" << flags.hasMacOS << " Windows=" << flags.hasWindows << " Linux=" << flags.hasLinux
            << " ExFAT=" << flags.hasExFAT;
}

/// One of the detector's three readers of texts, and the line that it logs first.
struct TextReader {
    FilesystemFlags (*analyze)(std::string_view text, std::string_view identifier);
    const char *identifier;
    const char *heading;
};

constexpr TextReader kMainDiskInfo{FilesystemDetector::analyzeMainDiskInfo, "disk0",
                                   "🔍 Analyzing main disk info for disk0"};
constexpr TextReader kDiskList{FilesystemDetector::analyzeDiskList, "disk0", "🔍 Analyzing disk list output for disk0"};
constexpr TextReader kPartitionInfo{FilesystemDetector::analyzePartitionInfo, "disk0s2",
                                    "🔍 Analyzing partition disk0s2"};

/// What a reader says of a text.
struct Analysis {
    FilesystemFlags flags;
    std::vector<std::string> findings; ///< The log lines behind the heading.
};

inline Analysis analysisOf(const TextReader &reader, std::string_view text)
{
    const LogCapture log;
    const FilesystemFlags flags = reader.analyze(text, reader.identifier);
    std::vector<std::string> lines = log.lines();
    if (lines.empty() || lines.front() != reader.heading) {
        ADD_FAILURE() << "not headed by: " << reader.heading;
        return {flags, lines};
    }
    lines.erase(lines.begin());
    return {flags, lines};
}

} // namespace brindle
