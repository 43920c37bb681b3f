#pragma once

#include "support/Patience.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

namespace brindle {

/// Lets the event loop turn until \a isTrue, for what ends on another thread; fails the test where that doesn't come.
inline void waitUntil(const std::function<bool()> &isTrue)
{
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!isTrue() && std::chrono::steady_clock::now() < end) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(100us);
    }
    EXPECT_TRUE(isTrue());
}

} // namespace brindle
