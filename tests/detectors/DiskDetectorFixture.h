#pragma once

#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "detectors/DiskDetector.h"
#include "support/FakeToolRunner.h"
#include "support/LogCapture.h"
#include "support/MemoryUserDefaults.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <utility>

namespace brindle {

class DiskDetectorTest : public testing::Test {
protected:
    template <typename T>
    static T resultOf(QCoro::Task<T> task)
    {
        return blockOn(std::move(task), kPatience);
    }

    LogCapture log;
    FakeToolRunner tools;
    MemoryUserDefaults defaults;
    DiskDetector detector{tools, ToolPaths::system(), defaults};
};

} // namespace brindle
