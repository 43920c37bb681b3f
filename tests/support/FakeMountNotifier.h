#pragma once

#include "privileged/MountNotifier.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Tells nobody and notes "mount of DISK (PARTITION) worked", "unmount of DISK failed" and the like in a journal, which
/// several fakes may share and which outlives them.
class FakeMountNotifier : public MountNotifier {
public:
    explicit FakeMountNotifier(std::vector<std::string> &journal) : m_journal(journal) {}

    void mountResult(const std::string &diskName, bool success,
                     const std::optional<std::string> &efiIdentifier) override
    {
        m_journal.push_back(
            fmt::format("mount of {} ({}) {}", diskName, efiIdentifier.value_or("none"), wordFor(success)));
    }
    void unmountResult(const std::string &diskName, bool success) override
    {
        m_journal.push_back(fmt::format("unmount of {} {}", diskName, wordFor(success)));
    }

private:
    static const char *wordFor(bool success) { return success ? "worked" : "failed"; }

    std::vector<std::string> &m_journal;
};

} // namespace brindle
