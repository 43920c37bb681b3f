#pragma once

#include "base/Completion.h"
#include "efi/EFICopyManager.h"

#include <set>
#include <string>

namespace brindle {

/// Tells the copy engine that each partition is where it is said to be, but those that a test has taken away.
class MountedPlaces {
public:
    std::set<std::string> gone; ///< Identifiers of partitions in whose places others are mounted.

    [[nodiscard]] EFICopyManager::IsMountedThere look()
    {
        return [this](EFIPartition partition) -> QCoro::Task<bool> {
            Completion<bool> answer;
            answer.complete(!gone.contains(partition.identifier));
            co_return co_await answer;
        };
    }
};

} // namespace brindle
