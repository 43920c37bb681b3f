#pragma once

#include "EFICopyManagerFixture.h"

#include "support/FileFaults.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// A file-system call as the function and its number from 1 among the calls of that function.
using FileCall = std::pair<std::string, int>;

/// The five ways that an EFI folder goes.
enum class CopyFlow { freeDestination, backup, overwrite, toFolder, withoutBackup };

/// The parts of a flow, by what each leaves behind when it fails.
enum class CopyStage { check, backup, removal, copy, verification };

/// A call that fails.
struct FileFault {
    FileCall call;
    int errorNumber = 0; ///< 0: the process is killed there.
};

/// One flow on folders of its own, whose source holds each kind of entry.
class EFICopyFlowRun : public EFICopyManagerFixture {
public:
    enum class Bytes { byTheKernel, byHand };

    explicit EFICopyFlowRun(CopyFlow flow, Bytes bytes = Bytes::byTheKernel);

    /// Carries it out, with \a fault where there is one.
    void perform(const std::optional<FileFault> &fault);

    /// The calls that were made.
    [[nodiscard]] const std::vector<FileCall> &calls() const { return m_calls; }

    /// In which stage the call number \a index of calls() was made.
    [[nodiscard]] CopyStage stageOf(std::size_t index) const;

    [[nodiscard]] bool succeeded() const { return manager.operationStatus().ends_with("successfully"); }

    void expectSuccess() const;
    void expectFailureIn(CopyStage stage) const;

    /// What lies in the folders of a flow that ended amid \a stage.
    void expectTreesAfter(CopyStage stage) const;

    using EFICopyManagerFixture::manager;

private:
    using Tree = std::map<std::string, std::string>;

    [[nodiscard]] bool wasAsked() const { return m_flow == CopyFlow::backup || m_flow == CopyFlow::overwrite; }
    [[nodiscard]] std::filesystem::path target() const;
    void perform();
    [[nodiscard]] CopyStage stageNow();
    void expectStatusOf(CopyStage stage) const;
    void expectTreesThatNeverChange() const;

    CopyFlow m_flow;
    Bytes m_bytes;
    Tree m_old;
    Tree m_sample;
    std::vector<FileCall> m_calls;
    std::optional<Error> m_thrown;
    CopyStage m_stage = CopyStage::check;
    std::map<std::size_t, CopyStage> m_stages{{0, CopyStage::check}}; ///< By the number of calls before them.
};

} // namespace brindle
