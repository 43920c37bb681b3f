#include "EFICopyManagerFixture.h"

#include "support/CopyFaults.h"
#include "support/FileFaults.h"

#include <iostream>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::IsSupersetOf;
using testing::StartsWith;

using Call = std::pair<std::string, int>;
using Tree = std::map<std::string, std::string>;

enum class Flow { freeDestination, backup, overwrite, toFolder, withoutBackup };

struct FlowCase {
    const char *name;
    Flow flow;
    std::size_t stages; ///< In which something can fail.
};

struct Fault {
    Call call;
    int errorNumber = 0;
};

enum class Stage { check, backup, removal, copy, verification };

/// One flow on folders of its own.
class FlowRun : public EFICopyManagerFixture {
public:
    explicit FlowRun(Flow flow) : m_flow(flow)
    {
        writeSampleEFI(sourceEFI());
        if (flow != Flow::freeDestination)
            writeOldEFI();
        dialogs.savePaths = {backup().string()};
        m_old = treeOf(destinationEFI());
        m_sample = treeOf(sourceEFI());
    }

    /// Carries it out, with \a fault where there is one.
    void perform(const std::optional<Fault> &fault)
    {
        FileFaults faults;
        if (fault)
            faults.fail(fault->call.first, fault->errorNumber, fault->call.second);
        QObject::connect(&manager, &EFICopyManager::operationStatusChanged,
                         [&] { m_stages.insert_or_assign(faults.calls().size(), stageNow()); });
        perform();
        calls = faults.calls();
        QObject::disconnect(&manager, nullptr, nullptr, nullptr);
    }

    /// In which stage the call number \a index of calls was made.
    [[nodiscard]] Stage stageOf(std::size_t index) const { return std::prev(m_stages.upper_bound(index))->second; }

    [[nodiscard]] bool succeeded() const { return manager.operationStatus().ends_with("successfully"); }

    void expectSuccess() const
    {
        EXPECT_FALSE(thrown);
        EXPECT_TRUE(succeeded()) << manager.operationStatus();
        EXPECT_FALSE(manager.isOperationInProgress());
        EXPECT_EQ(treeOf(target()), m_sample);
        expectTreesThatNeverChange();
        if (m_flow == Flow::backup)
            EXPECT_EQ(treeOf(backup()), m_old);
    }

    void expectFailureIn(Stage stage) const
    {
        if (stage == Stage::check)
            EXPECT_EQ(manager.operationStatus(), "Cannot read source EFI folder");
        else if (wasAsked())
            EXPECT_THAT(manager.operationStatus(), StartsWith("Operation failed: " + reasonOf(stage)));
        else
            EXPECT_THAT(manager.operationStatus(), StartsWith(lastStatusOf(stage)));
        EXPECT_EQ(manager.isOperationInProgress(), stage != Stage::check && !wasAsked());
        EXPECT_EQ(thrown.has_value(), stage == Stage::check || !wasAsked());
        expectTreesAfterFailureIn(stage);
    }

    std::vector<Call> calls;
    std::optional<Error> thrown;
    using EFICopyManagerFixture::manager;

private:
    [[nodiscard]] bool wasAsked() const { return m_flow == Flow::backup || m_flow == Flow::overwrite; }
    [[nodiscard]] fs::path target() const { return m_flow == Flow::toFolder ? backup() : destinationEFI(); }

    void perform()
    {
        thrown = m_flow == Flow::toFolder ? copyToLocation() : copy(m_flow == Flow::withoutBackup);
        if (!manager.showConfirmationDialog())
            return;
        choose(m_flow == Flow::backup ? &EFICopyManager::ConfirmationData::onBackup
                                      : &EFICopyManager::ConfirmationData::onOverwrite);
    }

    /// By what is published now.
    Stage stageNow()
    {
        const std::string &status = manager.operationStatus();
        if (status.starts_with("Removing"))
            m_stage = Stage::removal;
        else if (status.starts_with("Creating backup"))
            m_stage = Stage::backup;
        else if (status.starts_with("Verifying"))
            m_stage = Stage::verification;
        else if (status.starts_with("Copying EFI"))
            m_stage = Stage::copy;
        else if (status.starts_with("Copying files") && m_stage == Stage::removal)
            m_stage = Stage::copy;
        return m_stage;
    }

    static std::string reasonOf(Stage stage)
    {
        switch (stage) {
        case Stage::verification:
            return "Failed to verify copied files";
        case Stage::removal:
            return "/";
        default:
            return "Copy operation failed: ";
        }
    }

    static std::string lastStatusOf(Stage stage)
    {
        switch (stage) {
        case Stage::verification:
            return "Verification failed";
        case Stage::removal:
            return "Removing existing EFI folder...";
        default:
            return "Copy failed: ";
        }
    }

    void expectTreesThatNeverChange() const
    {
        EXPECT_EQ(treeOf(sourceEFI()), m_sample) << "the source";
        if (m_flow == Flow::toFolder)
            EXPECT_EQ(treeOf(destinationEFI()), m_old) << "what lies beside";
    }

    void expectTreesAfterFailureIn(Stage stage) const
    {
        expectTreesThatNeverChange();
        if (stage == Stage::check || stage == Stage::backup)
            EXPECT_EQ(treeOf(destinationEFI()), m_old) << "the destination";
        if (stage == Stage::check)
            EXPECT_FALSE(fs::exists(backup()));
        if (m_flow == Flow::backup && stage != Stage::check && stage != Stage::backup)
            EXPECT_EQ(treeOf(backup()), m_old) << "the backup";
        if (stage == Stage::removal)
            EXPECT_THAT(m_old, IsSupersetOf(treeOf(destinationEFI())));
        if (stage == Stage::verification)
            EXPECT_EQ(treeOf(target()), m_sample) << "the new folder stays";
    }

    Flow m_flow;
    Tree m_old;
    Tree m_sample;
    Stage m_stage = Stage::check;
    std::map<std::size_t, Stage> m_stages{{0, Stage::check}}; ///< By the number of calls before them.
};

struct ErrorCase {
    const char *name;
    int number;
};

class EFICopyFaultsTest : public testing::TestWithParam<std::tuple<FlowCase, ErrorCase>> {};

INSTANTIATE_TEST_SUITE_P(
    Of, EFICopyFaultsTest,
    testing::Combine(testing::Values(FlowCase{"ACopyToAFreeDestination", Flow::freeDestination, 3},
                                     FlowCase{"ACopyWithBackup", Flow::backup, 5},
                                     FlowCase{"ACopyThatOverwrites", Flow::overwrite, 4},
                                     FlowCase{"ACopyToAFolder", Flow::toFolder, 3},
                                     FlowCase{"ACopyWithoutBackup", Flow::withoutBackup, 4}),
                     testing::Values(ErrorCase{"NoSpace", ENOSPC}, ErrorCase{"BrokenDevice", EIO},
                                     ErrorCase{"NoAccess", EACCES}, ErrorCase{"ReadOnly", EROFS},
                                     ErrorCase{"NameTooLong", ENAMETOOLONG}, ErrorCase{"Vanished", ENOENT})),
    [](const auto &row) { return fmt::format("{}With{}", std::get<0>(row.param).name, std::get<1>(row.param).name); });

// Prints the whole table: where the fault was, and what the user reads at the end.
TEST_P(EFICopyFaultsTest, EveryCallThatFailsEndsAsItsStageDoes)
{
    const auto &[flow, error] = GetParam();
    FlowRun whole(flow.flow);
    whole.perform(std::nullopt);
    whole.expectSuccess();
    std::set<std::string> functions;
    std::set<Stage> stages;

    for (std::size_t i = 0; i < whole.calls.size(); ++i) {
        const auto &[function, which] = whole.calls[i];
        functions.insert(function);
        FlowRun run(flow.flow);
        run.perform(Fault{{function, which}, error.number});

        SCOPED_TRACE(fmt::format("{} {}", function, which));
        const bool maySucceed = function == "close" && run.succeeded();
        if (maySucceed || isTolerated(function, error.number)) {
            run.expectSuccess();
        } else {
            stages.insert(whole.stageOf(i));
            run.expectFailureIn(whole.stageOf(i));
        }
        std::cout << fmt::format("{} {} | {} | {}\n", function, which, error.name, run.manager.operationStatus());
    }

    EXPECT_THAT(functions, IsSupersetOf({"openat", "getdents64", "mkdirat", "fstat", "fstatat", "copy_file_range",
                                         "flistxattr", "fchmod", "futimens", "syncfs", "close"}));
    EXPECT_EQ(stages.size(), flow.stages);
}

} // namespace
} // namespace brindle
