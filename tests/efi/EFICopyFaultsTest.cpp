// Every call of the file system that a copy makes, with every error, and with the process killed there.

#include "EFICopyFlowRun.h"

#include "support/ChildOfTest.h"
#include "support/CopyFaults.h"

#include <cerrno>
#include <csignal>
#include <iostream>
#include <set>
#include <tuple>

namespace brindle {
namespace {

using Bytes = EFICopyFlowRun::Bytes;

struct FlowCase {
    const char *name;
    CopyFlow flow;
    std::set<CopyStage> stages; ///< In which something can fail.
};

struct ErrorCase {
    const char *name;
    int number;
};

const std::vector<FlowCase> &flows()
{
    using enum CopyStage;
    static const std::vector<FlowCase> all{
        {"ACopyToAFreeDestination", CopyFlow::freeDestination, {check, copy, verification}},
        {"ACopyWithBackup", CopyFlow::backup, {check, CopyStage::backup, removal, copy, verification}},
        {"ACopyThatOverwrites", CopyFlow::overwrite, {check, removal, copy, verification}},
        {"ACopyToAFolder", CopyFlow::toFolder, {check, copy, verification}},
        {"ACopyWithoutBackup", CopyFlow::withoutBackup, {check, removal, copy, verification}}};
    return all;
}

/// In which stage a flow ends by a look that fails: the first is at the source, the next two are at the destination.
/// nullopt where the flow is whole all the same: what can't be told counts as something that is there.
std::optional<CopyStage> endByLook(CopyFlow flow, int which, int errorNumber)
{
    const bool isFree = flow == CopyFlow::freeDestination;
    const bool saysNothing = errorNumber == ENOENT;
    if (which == 1)
        return saysNothing ? std::optional(CopyStage::check) : std::nullopt;
    if (which == 3 && saysNothing != isFree) // of what is there that it isn't, or the other way round
        return saysNothing ? CopyStage::copy : CopyStage::removal;
    return std::nullopt;
}

/// The functions that a flow calls, by the kernel's copying of bytes or by hand.
std::set<std::string> functionsOf(const FlowCase &flow)
{
    const auto known = FileFaults::functions();
    std::set<std::string> functions(known.begin(), known.end());
    if (!flow.stages.contains(CopyStage::removal))
        functions.erase("unlinkat");
    return functions;
}

class EFICopyFaultsTest : public testing::TestWithParam<std::tuple<FlowCase, ErrorCase>> {
protected:
    /// Lets each call of \a whole fail that is not left out, and prints what the user reads at the end.
    void failEach(const EFICopyFlowRun &whole, Bytes bytes, const std::set<std::string> &leftOut)
    {
        const auto &[flow, error] = GetParam();
        for (std::size_t i = 0; i < whole.calls().size(); ++i) {
            const auto &[function, which] = whole.calls()[i];
            if (leftOut.contains(function))
                continue;
            SCOPED_TRACE(fmt::format("{} {}", function, which));
            EFICopyFlowRun run(flow.flow, bytes);
            run.perform(FileFault{{function, which}, error.number});
            expectEnd(run, {function, which}, whole.stageOf(i));
            functions.insert(function);
            std::cout << fmt::format("{} {} | {} | {}\n", function, which, error.name, run.manager.operationStatus());
        }
    }

    /// Of a run in which \a call failed in \a stage.
    void expectEnd(const EFICopyFlowRun &run, const FileCall &call, CopyStage stage)
    {
        const auto &[flow, error] = GetParam();
        std::optional<CopyStage> end = stage;
        if (call.first == "stat")
            end = endByLook(flow.flow, call.second, error.number);
        else if ((call.first == "close" && run.succeeded()) || isTolerated(call.first, error.number))
            end = std::nullopt;
        if (!end)
            return run.expectSuccess();
        run.expectFailureIn(*end);
        stages.insert(stage);
    }

    std::set<std::string> functions;
    std::set<CopyStage> stages;
};

INSTANTIATE_TEST_SUITE_P(
    Of, EFICopyFaultsTest,
    testing::Combine(testing::ValuesIn(flows()),
                     testing::Values(ErrorCase{"NoSpace", ENOSPC}, ErrorCase{"BrokenDevice", EIO},
                                     ErrorCase{"NoAccess", EACCES}, ErrorCase{"ReadOnly", EROFS},
                                     ErrorCase{"NameTooLong", ENAMETOOLONG}, ErrorCase{"Vanished", ENOENT})),
    [](const auto &row) { return fmt::format("{}With{}", std::get<0>(row.param).name, std::get<1>(row.param).name); });

TEST_P(EFICopyFaultsTest, EveryCallThatFailsEndsAsItsStageDoes)
{
    const CopyFlow flow = std::get<0>(GetParam()).flow;
    EFICopyFlowRun whole(flow);
    whole.perform(std::nullopt);
    whole.expectSuccess();
    failEach(whole, Bytes::byTheKernel, {});
    EFICopyFlowRun byHand(flow, Bytes::byHand);
    byHand.perform(std::nullopt);
    byHand.expectSuccess();

    failEach(byHand, Bytes::byHand, std::set(functions));

    EXPECT_EQ(functions, functionsOf(std::get<0>(GetParam()))) << "a pair of call and error is missing";
    EXPECT_EQ(stages, std::get<0>(GetParam()).stages);
}

class EFICopyKilledTest : public testing::TestWithParam<FlowCase> {
protected:
    /// Kills the process at each call of the flow to a function that is not left out.
    void killAtEach(Bytes bytes, const std::set<std::string> &leftOut)
    {
        EFICopyFlowRun whole(GetParam().flow, bytes);
        whole.perform(std::nullopt);
        whole.expectSuccess();
        for (std::size_t i = 0; i < whole.calls().size(); ++i) {
            const auto &[function, which] = whole.calls()[i];
            if (leftOut.contains(function))
                continue;
            SCOPED_TRACE(fmt::format("killed at {} {}", function, which));
            EFICopyFlowRun run(GetParam().flow, bytes);
            endOtherThreads();
            const pid_t child = startChild([&] { run.perform(FileFault{{function, which}}); });

            EXPECT_EQ(endOf(child), -SIGKILL);
            run.expectTreesAfter(whole.stageOf(i));
            functions.insert(function);
            stages.insert(whole.stageOf(i));
            std::cout << fmt::format("{} {} | killed\n", function, which);
        }
    }

    std::set<std::string> functions;
    std::set<CopyStage> stages;
};

INSTANTIATE_TEST_SUITE_P(Of, EFICopyKilledTest, testing::ValuesIn(flows()),
                         [](const auto &row) { return row.param.name; });

TEST_P(EFICopyKilledTest, LeavesTheSourceAndTheOldFolderOrItsBackupWhole)
{
    killAtEach(Bytes::byTheKernel, {});
    killAtEach(Bytes::byHand, std::set(functions));

    EXPECT_EQ(functions, functionsOf(GetParam())) << "a call is missing";
    EXPECT_EQ(stages, GetParam().stages);
}

} // namespace
} // namespace brindle
