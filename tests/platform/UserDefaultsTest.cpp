#include "platform/UserDefaults.h"

#include "platform/linux/PlistUserDefaults.h"
#include "support/MemoryUserDefaults.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QThread>

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct StoreCase {
    const char *name;
    std::function<std::unique_ptr<UserDefaults>(const std::filesystem::path &folder)> make;
};

/// What holds for every store.
class AnyUserDefaults : public testing::TestWithParam<StoreCase> {
protected:
    AnyUserDefaults() : m_store(GetParam().make(m_folder.path().toStdString())) {}

    UserDefaults &store() { return *m_store; }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<UserDefaults> m_store;
};

INSTANTIATE_TEST_SUITE_P(
    Stores, AnyUserDefaults,
    testing::Values(StoreCase{"Memory", [](const auto &) { return std::make_unique<MemoryUserDefaults>(); }},
                    StoreCase{"Plist",
                              [](const auto &folder) {
                                  return std::make_unique<PlistUserDefaults>(folder / "defaults.plist");
                              }}),
    [](const auto &row) { return row.param.name; });

TEST_P(AnyUserDefaults, TellsAKeyThatWasNeverWrittenFromFalseByTheObjectReadAlone)
{
    store().set("ShowDiskImages", false);

    EXPECT_EQ(store().object("ShowInternalDisks"), std::nullopt);
    EXPECT_TRUE(store().objectAs<bool>("ShowInternalDisks").value_or(true));
    EXPECT_FALSE(store().objectAs<bool>("ShowDiskImages").value_or(true));
    EXPECT_FALSE(store().boolForKey("ShowInternalDisks"));
    EXPECT_FALSE(store().boolForKey("ShowDiskImages"));
}

TEST_P(AnyUserDefaults, CountsAValueOfAnotherTypeAsMissingForAnObjectRead)
{
    store().set("ShowInternalDisks", 0);
    store().set("ShowExternalDisks", "NO");
    store().set("LaunchMode", true);

    EXPECT_TRUE(store().objectAs<bool>("ShowInternalDisks").value_or(true));
    EXPECT_TRUE(store().objectAs<bool>("ShowExternalDisks").value_or(true));
    EXPECT_EQ(store().objectAs<std::string>("LaunchMode").value_or("menubar"), "menubar");
    EXPECT_EQ(store().object("ShowInternalDisks"), PropertyValue(0));
}

TEST_P(AnyUserDefaults, KeepsTheTypesApart)
{
    const std::vector<PropertyValue> values{
        true,
        1,
        1.0,
        "1",
        PropertyValue::Date(std::chrono::seconds(1)),
        PropertyValue::Data{std::byte{1}},
        PropertyValue::Array{1},
        PropertyValue::Dictionary{{"1", 1}},
    };

    for (const PropertyValue &value : values) {
        store().set("Value", value);
        store().synchronize();

        for (const PropertyValue &other : values)
            EXPECT_EQ(store().object("Value") == other, &value == &other);
    }
}

TEST_P(AnyUserDefaults, KeepsKeysApartThatDifferByTheCaseOfOneLetter)
{
    store().set("ShowDiskSpaceIndicator", true);
    store().synchronize();

    EXPECT_TRUE(store().boolForKey("ShowDiskSpaceIndicator"));
    EXPECT_EQ(store().object("showDiskSpaceIndicator"), std::nullopt);
}

TEST_P(AnyUserDefaults, GivesADateBackExactly)
{
    const PropertyValue::Date date(std::chrono::nanoseconds(1'719'837'296'123'456'789));

    store().set("DiskManager.LastRefreshTime", date);
    store().synchronize();

    EXPECT_EQ(store().object("DiskManager.LastRefreshTime"), PropertyValue(date));
}

TEST_P(AnyUserDefaults, ForgetsAKeyThatIsRemoved)
{
    store().set("IsModeSwitchRelaunch", true);
    store().synchronize();

    store().remove("IsModeSwitchRelaunch");
    store().remove("HasLaunchedBefore");

    EXPECT_EQ(store().object("IsModeSwitchRelaunch"), std::nullopt);
    store().synchronize();
    EXPECT_EQ(store().object("IsModeSwitchRelaunch"), std::nullopt);
}

TEST_P(AnyUserDefaults, TellsOfEachChangeOnceAndOfNothingElse)
{
    std::vector<std::string> changed;
    QObject::connect(&store(), &UserDefaults::valueChanged, [&](const std::string &key) { changed.push_back(key); });

    store().set("LaunchMode", "window");
    store().set("LaunchMode", "window");
    store().remove("HasLaunchedBefore");
    EXPECT_THAT(changed, ElementsAre("LaunchMode"));
    store().set("LaunchMode", "menubar");
    store().remove("LaunchMode");
    store().synchronize();
    QCoreApplication::processEvents();

    EXPECT_THAT(changed, ElementsAre("LaunchMode", "LaunchMode", "LaunchMode"));
}

TEST_P(AnyUserDefaults, SeesItsNewValueWhileItTellsOfTheChange)
{
    std::optional<PropertyValue> seen;
    QObject::connect(&store(), &UserDefaults::valueChanged,
                     [&](const std::string &key) { seen = store().object(key); });

    store().set("LaunchMode", "window");

    EXPECT_EQ(seen, PropertyValue("window"));
}

TEST_P(AnyUserDefaults, IsUsedFromAnyThreadAndTellsOfItInItsOwn)
{
    constexpr int kThreads = 4;
    constexpr int kKeys = 50;
    std::vector<QThread *> toldIn;
    QObject::connect(&store(), &UserDefaults::valueChanged, [&] { toldIn.push_back(QThread::currentThread()); });

    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kKeys; ++i) {
                const std::string key = std::to_string(thread) + "." + std::to_string(i);
                store().set(key, i);
                EXPECT_EQ(store().object(key), PropertyValue(i));
            }
            store().synchronize();
        });
    }
    for (std::thread &thread : threads)
        thread.join();

    EXPECT_THAT(toldIn, IsEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(toldIn, std::vector<QThread *>(kThreads * kKeys, QThread::currentThread()));
    for (int thread = 0; thread < kThreads; ++thread)
        EXPECT_EQ(store().object(std::to_string(thread) + ".0"), PropertyValue(0));
}

struct PlainReadCase {
    const char *name;
    PropertyValue value;
    bool isTrue;
};

class ReadsPlainly : public testing::TestWithParam<PlainReadCase> {};

TEST_P(ReadsPlainly, WhatCountsAsTrue)
{
    MemoryUserDefaults store;
    store.set("ShowNotifications", GetParam().value);

    EXPECT_EQ(store.boolForKey("ShowNotifications"), GetParam().isTrue);
}

INSTANTIATE_TEST_SUITE_P(
    Values, ReadsPlainly,
    testing::Values(PlainReadCase{"True", true, true}, PlainReadCase{"False", false, false},
                    PlainReadCase{"One", 1, true}, PlainReadCase{"MinusTwo", -2, true}, PlainReadCase{"Zero", 0, false},
                    PlainReadCase{"AHalf", 0.5, true}, PlainReadCase{"ZeroPointZero", 0.0, false},
                    PlainReadCase{"TheTextYes", "YES", true}, PlainReadCase{"TheTextTrueInAnyCase", "tRue", true},
                    PlainReadCase{"TheTextOne", "1", true}, PlainReadCase{"TheTextNo", "NO", false},
                    PlainReadCase{"AnotherText", "yes, please", false}, PlainReadCase{"AnEmptyText", "", false},
                    PlainReadCase{"ADate", PropertyValue::Date(std::chrono::seconds(1)), false},
                    PlainReadCase{"AnArray", PropertyValue::Array{true}, false}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
