#include "EFICopyFlowRun.h"

#include <cerrno>
#include <iterator>

namespace brindle {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::IsSupersetOf;
using testing::StartsWith;

namespace {

/// Twelve entries: files with and without a hole, folders with and without entries, a link.
void writeEntries(const fs::path &folder)
{
    writeFile(folder / ".hidden", "h");
    writeFile(folder / "BOOT/BOOTx64.efi", std::string(7000, 'b'));
    fs::create_symlink("BOOTx64.efi", folder / "BOOT/link");
    writeFile(folder / "OC/config.plist", "<plist/>");
    writeFile(folder / "OC/holes", "begin");
    fs::resize_file(folder / "OC/holes", 20'000);
    writeFile(folder / "OC/Drivers/OpenRuntime.efi", "driver");
    writeFile(folder / "OC/Drivers/deep/file", "deep");
    fs::create_directories(folder / "OC/Tools");
}

std::string reasonOf(CopyStage stage)
{
    switch (stage) {
    case CopyStage::verification:
        return "Failed to verify copied files";
    case CopyStage::removal:
        return "/";
    default:
        return "Copy operation failed: ";
    }
}

std::string lastStatusOf(CopyStage stage)
{
    switch (stage) {
    case CopyStage::verification:
        return "Verification failed";
    case CopyStage::removal:
        return "Removing existing EFI folder...";
    default:
        return "Copy failed: ";
    }
}

} // namespace

EFICopyFlowRun::EFICopyFlowRun(CopyFlow flow, Bytes bytes) : m_flow(flow), m_bytes(bytes)
{
    writeEntries(sourceEFI());
    if (flow != CopyFlow::freeDestination)
        writeOldEFI();
    dialogs.savePaths = {backup().string()};
    m_old = treeOf(destinationEFI());
    m_sample = treeOf(sourceEFI());
    EXPECT_EQ(m_sample.size(), 12U);
}

void EFICopyFlowRun::perform(const std::optional<FileFault> &fault)
{
    FileFaults faults;
    faults.pretendAttribute();
    if (m_bytes == Bytes::byHand)
        faults.fail("copy_file_range", EXDEV);
    if (fault)
        faults.fail(fault->call.first, fault->errorNumber, fault->call.second);
    QObject::connect(&manager, &EFICopyManager::operationStatusChanged,
                     [&] { m_stages.insert_or_assign(faults.callCount(), stageNow()); });
    perform();
    m_calls = faults.calls();
    QObject::disconnect(&manager, nullptr, nullptr, nullptr);
}

CopyStage EFICopyFlowRun::stageOf(std::size_t index) const
{
    return std::prev(m_stages.upper_bound(index))->second;
}

void EFICopyFlowRun::expectSuccess() const
{
    EXPECT_FALSE(m_thrown);
    EXPECT_TRUE(succeeded()) << manager.operationStatus();
    EXPECT_FALSE(manager.isOperationInProgress());
    EXPECT_EQ(treeOf(target()), m_sample);
    expectTreesThatNeverChange();
    if (!dialogs.savePanels.empty() && m_flow == CopyFlow::backup)
        EXPECT_EQ(treeOf(backup()), m_old);
}

void EFICopyFlowRun::expectFailureIn(CopyStage stage) const
{
    expectStatusOf(stage);
    EXPECT_EQ(manager.isOperationInProgress(), stage != CopyStage::check && !wasAsked());
    EXPECT_EQ(m_thrown.has_value(), stage == CopyStage::check || !wasAsked());
    expectTreesAfter(stage);
}

void EFICopyFlowRun::expectTreesAfter(CopyStage stage) const
{
    expectTreesThatNeverChange();
    if (stage == CopyStage::check || stage == CopyStage::backup)
        EXPECT_EQ(treeOf(destinationEFI()), m_old) << "the destination";
    if (stage == CopyStage::check)
        EXPECT_FALSE(fs::exists(backup()));
    if (m_flow == CopyFlow::backup && stage != CopyStage::check && stage != CopyStage::backup)
        EXPECT_EQ(treeOf(backup()), m_old) << "the backup";
    if (stage == CopyStage::removal)
        EXPECT_THAT(m_old, IsSupersetOf(treeOf(destinationEFI())));
    if (stage == CopyStage::verification)
        EXPECT_EQ(treeOf(target()), m_sample) << "the new folder stays";
}

fs::path EFICopyFlowRun::target() const
{
    return m_flow == CopyFlow::toFolder ? backup() : destinationEFI();
}

void EFICopyFlowRun::perform()
{
    m_thrown = m_flow == CopyFlow::toFolder ? copyToLocation() : copy(m_flow == CopyFlow::withoutBackup);
    if (manager.showConfirmationDialog())
        choose(m_flow == CopyFlow::backup ? &EFICopyManager::ConfirmationData::onBackup
                                          : &EFICopyManager::ConfirmationData::onOverwrite);
}

/// By what is published now.
CopyStage EFICopyFlowRun::stageNow()
{
    const std::string &status = manager.operationStatus();
    if (status.starts_with("Removing"))
        m_stage = CopyStage::removal;
    else if (status.starts_with("Creating backup"))
        m_stage = CopyStage::backup;
    else if (status.starts_with("Verifying"))
        m_stage = CopyStage::verification;
    else if (status.starts_with("Copying EFI"))
        m_stage = CopyStage::copy;
    else if (status.starts_with("Copying files") && m_stage == CopyStage::removal)
        m_stage = CopyStage::copy;
    return m_stage;
}

void EFICopyFlowRun::expectStatusOf(CopyStage stage) const
{
    const std::string &status = manager.operationStatus();
    if (stage == CopyStage::check)
        EXPECT_THAT(status, AnyOf("Cannot read source EFI folder", "Source EFI folder not found"));
    else if (wasAsked())
        EXPECT_THAT(status, StartsWith("Operation failed: " + reasonOf(stage)));
    else
        EXPECT_THAT(status, StartsWith(lastStatusOf(stage)));
}

void EFICopyFlowRun::expectTreesThatNeverChange() const
{
    EXPECT_EQ(treeOf(sourceEFI()), m_sample) << "the source";
    if (m_flow == CopyFlow::toFolder)
        EXPECT_EQ(treeOf(destinationEFI()), m_old) << "what lies beside";
}

} // namespace brindle
