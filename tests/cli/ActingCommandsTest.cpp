// Mounting, renaming, unmounting and ejecting on a simulated machine, by the real programs.

#include "cli/ActingFixture.h"

#include <array>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ActingCommands : public ActingFixture {};

TEST_F(ActingCommands, RefuseAWrongPasswordAndThenMountRenameUnmountAndEject)
{
    const Outcome refused = run({"mount", "disk2s1", "--password-stdin"}, "wrong\n");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.output, IsEmpty());
    EXPECT_THAT(refused.error, HasSubstr("incorrect password attempt"));
    EXPECT_FALSE(isMounted("disk2s1"));

    const Outcome mounted = runWithPassword({"mount", "disk2s1"});
    EXPECT_EQ(mounted.status, 0) << mounted.error;
    const std::string mountPoint = partition("disk2s1").at("mountPoint");
    EXPECT_EQ(mounted.output, "disk2s1 is mounted at " + mountPoint + "\n");
    EXPECT_TRUE(fs::exists(mountPoint + "/EFI/Microsoft/Boot/bootmgfw.efi"));

    const Outcome renamed = runWithPassword({"rename", "disk2s1", "Blue Sky"});
    EXPECT_EQ(renamed.output, "disk2s1 is named BLUE SKY\n") << renamed.error;
    EXPECT_EQ(partition("disk2s1").at("volumeName"), "BLUE SKY");

    const Outcome unmounted = runWithPassword({"unmount", "disk2s1"});
    EXPECT_EQ(unmounted.output, "disk2s1 is not mounted\n") << unmounted.error;
    EXPECT_FALSE(isMounted("disk2s1"));

    const Outcome ejected = run({"eject", "disk3"});
    EXPECT_EQ(ejected.output, "Disk disk3 ejected\n") << ejected.error;
    EXPECT_TRUE(partition("disk3s1").is_null());
}

TEST_F(ActingCommands, NeedNoPasswordForWhatIsThereAlready)
{
    EXPECT_EQ(run({"mount", "disk3s1"}).output, "disk3s1 is mounted at " + root() + "/Volumes/OPENCORE\n");
    EXPECT_EQ(run({"unmount", "disk2s1"}).output, "disk2s1 is not mounted\n");
}

TEST_F(ActingCommands, FailWithoutAPasswordWhereNobodyCanBeAsked)
{
    const Outcome mount = run({"mount", "disk2s1"});

    EXPECT_EQ(mount.status, 1);
    EXPECT_EQ(mount.error, "brindlectl: Administrator password required\n");
}

TEST_F(ActingCommands, RefuseAnEmptyStandardInputAsAPassword)
{
    for (const char *input : {"", "\n"}) {
        const Outcome mount = run({"mount", "disk2s1", "--password-stdin"}, input);

        EXPECT_EQ(mount.status, 1);
        EXPECT_EQ(mount.error, "brindlectl: No password stands on standard input\n");
    }
    EXPECT_EQ(run({"mount", "disk2s1", "--password-stdin"}, std::string(5000, 'x') + "\n").error,
              "brindlectl: The password on standard input is too long\n");
}

TEST_F(ActingCommands, TakeThePasswordOfADemoMachineFromItsStore)
{
    const Outcome stored = run({"mount", "disk2s1", "--demo"});
    EXPECT_EQ(stored.status, 0) << stored.error;
    EXPECT_THAT(stored.output, StartsWith("disk2s1 is mounted at "));
    EXPECT_EQ(run({"password", "test", "--demo"}).output, "The administrator password is right\n");

    EXPECT_EQ(run({"mount", "disk2s1", "--demo=ask"}).error, "brindlectl: Administrator password required\n");
    EXPECT_EQ(run({"list", "--demo=never"}).status, 2);
}

TEST_F(ActingCommands, RenameTheVolumeOfADisk)
{
    const Outcome renamed = runWithPassword({"rename", "disk5", "Trip"});

    EXPECT_EQ(renamed.output, "The volume of disk5 is named Trip\n") << renamed.error;
    const Outcome none = runWithPassword({"rename", "disk4", "Trip"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.error, "brindlectl: disk4 has no single volume to be renamed\n");
}

TEST_F(ActingCommands, EjectNeitherABuiltInDiskNorTheOneThatTheSystemRunsFrom)
{
    EXPECT_EQ(run({"eject", "disk0"}).error,
              "brindlectl: disk0 is the disk that the system runs from, which is not ejected\n");
    EXPECT_EQ(run({"eject", "disk2"}).error, "brindlectl: disk2 is a built-in disk, which is not ejected\n");
    EXPECT_EQ(run({"eject", "disk2"}).status, 1);
}

TEST_F(ActingCommands, TakeANameOfBlanksForWrongUsage)
{
    EXPECT_EQ(runWithPassword({"rename", "disk2s1", " "}).status, 2);
    EXPECT_EQ(runWithPassword({"rename", "disk2s1"}).status, 2);
}

TEST_F(ActingCommands, ShowTheFolderOnlyWhenTheyAreAsked)
{
    const std::string opener = folder() + "/bin/xdg-open";
    writeFile(opener, "#!/bin/sh\necho \"$1\" >> '" + home() + "/opened'\n");
    fs::permissions(opener, fs::perms(0755));
    auto variables = environment();
    variables["PATH"] = folder() + "/bin:/usr/bin:/bin";
    const std::string password = std::string(kAdminPassword) + "\n";

    runProgram(BRINDLECTL, {"mount", "disk2s1", "--password-stdin"}, password, variables);
    EXPECT_FALSE(fs::exists(home() + "/opened"));
    runProgram(BRINDLECTL, {"mount", "disk2s1", "--open"}, "", variables);
    for (int i = 0; i < 1000 && !fs::exists(home() + "/opened"); ++i)
        ::usleep(10'000); // the opener is nobody's child

    EXPECT_EQ(contentsOf(home() + "/opened"), partition("disk2s1").at("mountPoint").get<std::string>() + "\n");
}

// --- hostile names

struct HostileNameCase {
    const char *name;
    const char *escaped; ///< As printf(1) writes it by %b.
    const char *label;   ///< That FAT makes of it.
};

class HostileNames : public ActingFixture, public testing::WithParamInterface<HostileNameCase> {
protected:
    /// QProcess hands on no bytes that aren't text: a shell makes them of escapes.
    Outcome runWithName(const std::string &command)
    {
        const std::string script = "name=$(printf %b \"$1\"); " + command;
        return runProgram("/bin/sh", {"-c", script, BRINDLECTL, GetParam().escaped}, std::string(kAdminPassword) + "\n",
                          environment());
    }
};

TEST_P(HostileNames, ReachTheToolAsOneArgument)
{
    const Outcome renamed = runWithName("\"$0\" rename --password-stdin -- disk2s1 \"$name\"");

    EXPECT_EQ(renamed.status, 0) << renamed.error;
    EXPECT_EQ(partition("disk2s1").at("volumeName"), GetParam().label);
}

TEST_P(HostileNames, AreNoDiskAndNoPartition)
{
    const std::string before = contentsOf(root() + "/machine.json");
    for (const char *command :
         {"mount -- \"$name\"", "unmount -- \"$name\"", "eject -- \"$name\"", "rename -- \"$name\" NAME"}) {
        const Outcome outcome = runWithName(std::string("\"$0\" ") + command);

        EXPECT_EQ(outcome.status, 3);
        EXPECT_THAT(outcome.output, IsEmpty());
        EXPECT_THAT(outcome.error, StartsWith("brindlectl: There is no "));
        EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1);
    }
    EXPECT_EQ(contentsOf(root() + "/machine.json"), before);
}

INSTANTIATE_TEST_SUITE_P(ActingCommands, HostileNames,
                         testing::Values(HostileNameCase{"Option", "-rf", "-RF"},
                                         HostileNameCase{"Substitution", "$(reboot)", "$(REBOOT)"},
                                         HostileNameCase{"Path", "../../etc", "______ETC"},
                                         HostileNameCase{"Semicolon", "a;b", "A_B"},
                                         HostileNameCase{"Long",
                                                         []() -> const char * {
                                                             static const std::string text(255, 'x');
                                                             return text.c_str();
                                                         }(),
                                                         "XXXXXXXXXXX"},
                                         HostileNameCase{"NoUtf8", "\\0377\\0376\\0200", "___"},
                                         HostileNameCase{"Newline", "one\\ntwo", "ONE_TWO"}),
                         [](const auto &row) { return row.param.name; });

// --- the secret store

/// A session bus that answers nobody and notes who comes.
class DeafBus {
public:
    explicit DeafBus(const std::string &path)
        : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        sockaddr_un address{.sun_family = AF_UNIX};
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)), 0);
        EXPECT_EQ(::listen(m_socket, 8), 0);
        fs::permissions(path, fs::perms(0777));
    }
    ~DeafBus() { ::close(m_socket); }
    DeafBus(const DeafBus &) = delete;
    DeafBus &operator=(const DeafBus &) = delete;

    /// Whether anybody has come, who is sent away.
    bool takeVisitor() const
    {
        const int visitor = ::accept(m_socket, nullptr, nullptr);
        if (visitor >= 0)
            ::close(visitor);
        return visitor >= 0;
    }

private:
    int m_socket;
};

TEST_F(ActingCommands, NeverOpenTheRealSecretStoreWhereAFolderStandsForTheMachine)
{
    const DeafBus bus(folder() + "/bus");
    auto variables = environment();
    variables["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + folder() + "/bus";

    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"list"}, {"mount", "disk2s1"}, {"password", "test"}, {"password", "remove"}})
        runProgram(BRINDLECTL, arguments, "", variables);

    EXPECT_FALSE(bus.takeVisitor());
}

TEST_F(ActingCommands, OpenTheRealSecretStoreOtherwise)
{
    const DeafBus bus(folder() + "/bus");
    auto variables = environment();
    variables.erase("BRINDLE_TOOL_ROOT");
    variables["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + folder() + "/bus";
    QProcess process;
    QProcessEnvironment all;
    for (const auto &[name, value] : variables)
        all.insert(QString::fromStdString(name), QString::fromStdString(value));
    process.setProcessEnvironment(all);
    process.setChildProcessModifier(becomeOrdinaryUser);
    process.start(QStringLiteral(BRINDLECTL), {QStringLiteral("password"), QStringLiteral("test")});

    bool hasCome = false;
    for (int i = 0; i < 300 && process.state() != QProcess::NotRunning; ++i) {
        hasCome = bus.takeVisitor() || hasCome;
        process.waitForFinished(100);
    }

    EXPECT_TRUE(hasCome);
    EXPECT_EQ(process.readAllStandardError().toStdString(), "brindlectl: No administrator password is stored\n");
}

// --- what the tool's text says

TEST_F(Brindlectl, CallsNoVolumeUnmountedThatIsStillMounted)
{
    machine.addDisk("disk2").withEFI("Not applicable", "/Volumes/EFI");

    const Outcome unmount = run({"unmount", "disk2s1"});

    EXPECT_EQ(unmount.status, 1);
    EXPECT_EQ(unmount.output, "");
    EXPECT_EQ(unmount.error, "brindlectl: disk2s1 is still mounted at /Volumes/EFI\n");
}

// --- core images

TEST_F(Brindlectl, LetsNeitherItselfNorItsToolsLeaveACoreImage)
{
    machine.addDisk("disk0");
    machine.replaceTool("df", "#!/bin/sh\nulimit -c > \"$HOME/limits\"\nulimit -Hc >> \"$HOME/limits\"\n");

    run({"list"});

    EXPECT_EQ(contentsOf(machine.root() / "limits"), "0\n0\n");
}

} // namespace
} // namespace brindle
