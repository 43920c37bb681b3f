#pragma once

#include "base/Completion.h"
#include "efi/EFICopyManager.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// Tells the copy engine that each partition is where it is said to be, but those that a test has taken away.
class MountedPlaces {
public:
    std::set<std::string> gone; ///< Identifiers of partitions in whose places others are mounted.

    /// From now on nothing is told until release(): copies stand still.
    void hold() { m_isHeld = true; }

    [[nodiscard]] bool isHolding() const { return !m_heldAnswers.empty(); } ///< Somebody has asked.

    /// Tells all that was asked meanwhile, and later questions at once.
    void release()
    {
        m_isHeld = false;
        for (const auto &[answer, isThere] : std::exchange(m_heldAnswers, {}))
            answer.complete(isThere);
    }

    [[nodiscard]] EFICopyManager::IsMountedThere look()
    {
        return [this](EFIPartition partition) -> QCoro::Task<bool> {
            const bool isThere = !gone.contains(partition.identifier);
            Completion<bool> answer;
            if (m_isHeld)
                m_heldAnswers.emplace_back(answer, isThere);
            else
                answer.complete(isThere);
            co_return co_await answer;
        };
    }

private:
    bool m_isHeld = false;
    std::vector<std::pair<Completion<bool>, bool>> m_heldAnswers;
};

} // namespace brindle
