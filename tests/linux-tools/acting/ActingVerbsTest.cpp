#include "acting/ActingVerbs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

/// A machine with one disk2, its disk2s1 and two volumes EFI.
class SampleSource : public InventorySource {
public:
    Inventory read(const Scope &) override
    {
        Disk disk{.identifier = "disk2", .node = "/dev/sda"};
        disk.partitions.push_back(
            {.identifier = "disk2s1", .node = "/dev/sda1", .volume = Volume{.fileSystem = "vfat", .name = "EFI"}});
        disk.partitions.push_back(
            {.identifier = "disk2s2", .node = "/dev/sda2", .volume = Volume{.fileSystem = "vfat", .name = "EFI"}});
        disk.partitions.push_back(
            {.identifier = "disk2s3", .node = "/dev/sda3", .volume = Volume{.fileSystem = "vfat", .name = "force"}});
        return {.disks = {disk}, .mounts = {{.carrier = "disk2s1", .mountPoint = "EFI"}}};
    }
    std::optional<NvramVariable> nvramVariable(std::string_view) override { return std::nullopt; }
};

/// Remembers what it was asked, and says no where it shall.
class RecordingActor : public Actor {
public:
    std::string mount(const Target &target) override { return record({"mount", target.identifier()}); }
    std::string unmount(const Target &target, bool isForced) override
    {
        return record({"unmount", target.identifier(), isForced ? "forced" : "gently"});
    }
    std::string rename(const Target &target, std::string_view name) override
    {
        return record({"rename", target.identifier(), std::string(name)});
    }
    void eject(const Target &target) override { record({"eject", target.identifier()}); }
    Erased eraseVolume(const Target &target, const Format &format, std::string_view name) override
    {
        record({"eraseVolume", target.identifier(), std::string(format.fileSystem), std::string(name)});
        return {target.identifier(), std::string(name)};
    }
    Erased eraseDisk(const Target &target, const Format &format, std::string_view name) override
    {
        record({"eraseDisk", target.identifier(), std::string(format.fileSystem), std::string(name)});
        return {target.identifier() + "s2", std::string(name)};
    }

    std::string refusal;
    std::vector<std::string> asked;

private:
    std::string record(std::vector<std::string> words)
    {
        asked = std::move(words);
        if (!refusal.empty())
            throw ActionError(refusal);
        return "NAME";
    }
};

Outcome run(RecordingActor &actor, std::vector<std::string> words)
{
    SampleSource source;
    const std::string verb = words.front();
    words.erase(words.begin());
    return runActingVerb(verb, words, source, actor);
}

TEST(ActingVerbs, AreKnownInAnyCase)
{
    EXPECT_TRUE(isActingVerb("eraseDisk"));
    EXPECT_TRUE(isActingVerb("erasedisk"));
    EXPECT_FALSE(isActingVerb("list"));
    EXPECT_FALSE(isActingVerb(""));
}

struct CallCase {
    const char *name;
    std::vector<std::string> words;
    std::vector<std::string> asked;
};

class HandsOn : public testing::TestWithParam<CallCase> {};

TEST_P(HandsOn, WhatWasAsked)
{
    RecordingActor actor;

    const Outcome outcome = run(actor, GetParam().words);

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(actor.asked, GetParam().asked);
}

INSTANTIATE_TEST_SUITE_P(
    ActingVerbs, HandsOn,
    testing::Values(
        CallCase{"Mount", {"mount", "disk2s1"}, {"mount", "disk2s1"}},
        CallCase{"Node", {"mount", "/dev/sda2"}, {"mount", "disk2s2"}},
        CallCase{"Unmount", {"unmount", "disk2s1"}, {"unmount", "disk2s1", "gently"}},
        CallCase{"UnmountForced", {"unmount", "force", "disk2s1"}, {"unmount", "disk2s1", "forced"}},
        CallCase{"UnmountOfAVolumeNamedForce", {"unmount", "force"}, {"unmount", "disk2s3", "gently"}},
        CallCase{"MountPointThatIsANameToo", {"unmount", "EFI"}, {"unmount", "disk2s1", "gently"}},
        CallCase{"Rename", {"rename", "disk2s1", "-rf"}, {"rename", "disk2s1", "-rf"}},
        CallCase{"RenameToAnOption", {"rename", "disk2s1", "--help"}, {"rename", "disk2s1", "--help"}},
        CallCase{"Eject", {"eject", "/dev/disk2"}, {"eject", "disk2"}},
        CallCase{
            "EraseVolume", {"eraseVolume", "FAT32", "force", "disk2s1"}, {"eraseVolume", "disk2s1", "vfat", "force"}},
        CallCase{"EraseDisk", {"eraseDisk", "ExFAT", "X", "GPT", "disk2"}, {"eraseDisk", "disk2", "exfat", "X"}},
        CallCase{"EraseDiskWithoutScheme",
                 {"eraseDisk", "JHFS+", "GPT", "disk2"},
                 {"eraseDisk", "disk2", "hfsplus", "GPT"}}),
    [](const auto &info) { return std::string(info.param.name); });

struct UsageCase {
    const char *name;
    std::vector<std::string> words;
};

class RefusesTheUsage : public testing::TestWithParam<UsageCase> {};

TEST_P(RefusesTheUsage, OfAnotherNumberOfArguments)
{
    RecordingActor actor;

    const Outcome outcome = run(actor, GetParam().words);

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("Usage: diskutil " + GetParam().words.front()));
    EXPECT_THAT(actor.asked, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(ActingVerbs, RefusesTheUsage,
                         testing::Values(UsageCase{"Mount", {"mount"}}, UsageCase{"MountTwo", {"mount", "a", "b"}},
                                         UsageCase{"Unmount", {"unmount"}},
                                         UsageCase{"UnmountTwo", {"unmount", "disk2s1", "disk2s2"}},
                                         UsageCase{"Rename", {"rename", "disk2s1"}}, UsageCase{"Eject", {"eject"}},
                                         UsageCase{"EraseVolume", {"eraseVolume", "FAT32", "disk2s1"}},
                                         UsageCase{"EraseDisk", {"eraseDisk", "FAT32", "disk2"}}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(ActingVerbs, KeepWhatWasPrintedBeforeAnEraseFailed)
{
    RecordingActor actor;
    actor.refusal = "Error: -69888: Couldn't unmount disk";

    const Outcome outcome = run(actor, {"eraseDisk", "FAT32", "X", "disk2"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "Started erase on disk2\nUnmounting disk\n");
    EXPECT_EQ(outcome.errors, "Error: -69888: Couldn't unmount disk\n");
}

TEST(ActingVerbs, RefuseANameOfTwoVolumes)
{
    RecordingActor actor;
    class Unmounted : public SampleSource {
    public:
        Inventory read(const Scope &scope) override
        {
            Inventory inventory = SampleSource::read(scope);
            inventory.mounts.clear();
            return inventory;
        }
    } source;
    const std::vector<std::string> arguments{"EFI"};

    const Outcome outcome = runActingVerb("mount", arguments, source, actor);

    EXPECT_EQ(outcome.errors, "EFI is the name of 2 volumes: use an identifier\n");
    EXPECT_THAT(actor.asked, IsEmpty());
}

} // namespace
} // namespace brindle::tools
