#pragma once

#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "detectors/DiskDetector.h"
#include "support/FakeToolRunner.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace brindle {

/// User defaults that hold what a test puts in.
class FixedDefaults : public UserDefaults {
public:
    [[nodiscard]] std::optional<PropertyValue> object(const std::string &key) const override
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(const std::string &key, PropertyValue value) override { m_values.insert_or_assign(key, std::move(value)); }
    void remove(const std::string &key) override { m_values.erase(key); }
    void synchronize() override {}

private:
    std::map<std::string, PropertyValue> m_values;
};

class DiskDetectorTest : public testing::Test {
protected:
    template <typename T>
    static T resultOf(QCoro::Task<T> task)
    {
        return blockOn(std::move(task), std::chrono::seconds(10));
    }

    LogCapture log;
    FakeToolRunner tools;
    FixedDefaults defaults;
    DiskDetector detector{tools, ToolPaths::system(), defaults};
};

} // namespace brindle
