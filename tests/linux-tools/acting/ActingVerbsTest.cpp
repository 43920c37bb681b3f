#include "acting/ActingVerbs.h"

#include "acting/Actor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace brindle::tools {
namespace {

using testing::IsEmpty;

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
        Inventory inventory{.disks = {disk}};
        if (hasMounts)
            inventory.mounts.push_back({.carrier = "disk2s1", .mountPoint = "EFI"});
        return inventory;
    }
    std::optional<NvramVariable> nvramVariable(std::string_view) override { return std::nullopt; }

    bool hasMounts = true;
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
    Erased eraseVolume(const Target &target, const Format &format, std::string_view name,
                       const Announce &announce) override
    {
        record({"eraseVolume", target.identifier(), std::string(format.fileSystem), std::string(name)});
        return announced({target.identifier(), std::string(name)}, announce);
    }
    Erased eraseDisk(const Target &target, const Format &format, std::string_view name,
                     const Announce &announce) override
    {
        record({"eraseDisk", target.identifier(), std::string(format.fileSystem), std::string(name)});
        return announced({target.identifier() + "s2", std::string(name)}, announce);
    }

    std::string refusal;
    std::vector<std::string> asked;

private:
    static Erased announced(Erased erased, const Announce &announce)
    {
        announce(erased);
        return erased;
    }

    std::string record(std::vector<std::string> words)
    {
        asked = std::move(words);
        if (!refusal.empty())
            throw ActionError(refusal);
        return "NAME";
    }
};

/// Runs the command line over the sample, whose actor is \a actor.
class ActingVerbs : public testing::Test {
protected:
    int run(std::vector<std::string_view> words)
    {
        const auto verb = std::ranges::find(actingVerbs(), words.front(), &Verb::name);
        return verb->run(context, *verb, Arguments(words).subspan(1));
    }

    SampleSource source;
    RecordingActor actor;
    Context context{.source = source, .out = {}, .err = {}, .actor = &actor};
};

struct CallCase {
    const char *name;
    std::vector<std::string_view> words;
    std::vector<std::string> asked;
};

class HandsOn : public ActingVerbs, public testing::WithParamInterface<CallCase> {};

TEST_P(HandsOn, WhatWasAsked)
{
    EXPECT_EQ(run(GetParam().words), kDone) << context.err;

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
    std::vector<std::string_view> words;
};

class RefusesTheUsage : public ActingVerbs, public testing::WithParamInterface<UsageCase> {};

TEST_P(RefusesTheUsage, OfAnotherNumberOfArguments)
{
    EXPECT_EQ(run(GetParam().words), kWrongUsage);

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

TEST_F(ActingVerbs, KeepWhatWasPrintedBeforeAnEraseFailed)
{
    actor.refusal = "Error: -69888: Couldn't unmount disk";

    EXPECT_EQ(run({"eraseDisk", "FAT32", "X", "disk2"}), kFailed);

    EXPECT_EQ(context.out, "Started erase on disk2\nUnmounting disk\n");
    EXPECT_EQ(context.err, "Error: -69888: Couldn't unmount disk\n");
}

TEST_F(ActingVerbs, TellHowFarAnEraseIsBeforeItsLongPartBegins)
{
    std::vector<std::string> parts;
    context.tell = [&](std::string part) { parts.push_back(std::move(part)); };

    EXPECT_EQ(run({"eraseDisk", "APFS", "X", "disk2"}), kDone);

    EXPECT_THAT(parts, testing::ElementsAre("Started erase on disk2\nUnmounting disk\n",
                                            "Creating the partition map\nWaiting for partitions to activate\n"
                                            "Formatting disk2s2 as APFS with name X\n"));
    EXPECT_EQ(context.out, "Finished erase on disk2\n");
}

TEST_F(ActingVerbs, RefuseANameOfTwoVolumes)
{
    source.hasMounts = false;

    EXPECT_EQ(run({"mount", "EFI"}), kFailed);

    EXPECT_EQ(context.err, "EFI is the name of 2 volumes: use an identifier\n");
    EXPECT_THAT(actor.asked, IsEmpty());
}

TEST_F(ActingVerbs, PrintNoControlCharactersOfAName)
{
    EXPECT_EQ(run({"mount", "\x1B[2J"}), kFailed);

    EXPECT_EQ(context.err, "Unable to find disk for \uFFFD[2J\n");
}

} // namespace
} // namespace brindle::tools
