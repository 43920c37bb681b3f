#pragma once

#include "platform/Scheduler.h"

namespace brindle {

/// The machine's own clock and the timers of the event loop, to the millisecond and never early.
class QtScheduler : public Scheduler {
public:
    [[nodiscard]] Date date() const override;
    [[nodiscard]] std::unique_ptr<Timer> after(Duration delay, std::function<void()> callback) override;
    [[nodiscard]] std::unique_ptr<Timer> repeat(Duration interval, std::function<void()> callback) override;
};

} // namespace brindle
