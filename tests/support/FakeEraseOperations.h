#pragma once

#include "base/Completion.h"
#include "base/Error.h"
#include "state/EraseOperations.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Erases nothing: remembers what it was asked, and ends or fails at the next turn of the event loop.
class FakeEraseOperations : public EraseOperations {
public:
    std::optional<Error> failure;
    std::vector<std::string> asked; ///< Each as the operation and its arguments, with "|" between.
    std::string otherDisk;          ///< The disk that volumes lie on, where it isn't the one that is named.

    QCoro::Task<> requireVolumeOn(std::string diskIdentifier, std::string volume) override
    {
        if (!otherDisk.empty())
            throw Error("DiskManager", 1, fmt::format("\"{}\" is on {}, not on {}", volume, otherDisk, diskIdentifier));
        co_return;
    }

    QCoro::Task<> formatEFIPartition(std::string identifier, std::string name) override
    {
        return carryOut(fmt::format("formatEFIPartition|{}|{}", identifier, name));
    }

    QCoro::Task<> eraseVolume(std::string identifier, std::string name, std::string format) override
    {
        return carryOut(fmt::format("eraseVolume|{}|{}|{}", identifier, name, format));
    }

    QCoro::Task<> eraseDisk(std::string identifier, std::string name, std::string format) override
    {
        return carryOut(fmt::format("eraseDisk|{}|{}|{}", identifier, name, format));
    }

private:
    QCoro::Task<> carryOut(std::string operation)
    {
        asked.push_back(operation);
        Completion<bool> turn;
        turn.complete(true);
        co_await turn;
        if (failure)
            throw *failure;
    }
};

} // namespace brindle
