#pragma once

#include <QObject>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

enum class EraseScope { wholeDisk, partition };

/// A format to choose from.
struct FormatOption {
    std::string id;             ///< A UUID of its own.
    std::string label;          ///< What the user reads.
    std::string diskutilFormat; ///< What the disk tool takes.
};

/// The formats that disks and volumes are erased as, in the order in which they are offered. The same at every call.
[[nodiscard]] const std::vector<FormatOption> &eraseFormatOptions();

/// The state of the erase dialog: asks for a name before anything is destroyed, and shows progress and result.
///
/// The work itself belongs to whoever opened the dialog. Main thread only.
class EraseOperationManager : public QObject {
    Q_OBJECT

public:
    enum class Stage { confirming, inProgress, completed, failed };

    using OnErase = std::function<void(std::string diskutilFormat, EraseScope scope)>;

    /// What an opener of the dialog fills in.
    struct Request {
        std::string dialogTitle;
        std::string diskName;
        std::string volumeName;
        std::string warningText;
        std::string confirmName; ///< What the user must type, and the name of the new volume.
        std::vector<FormatOption> formatOptions;
        bool allowPartitionScope = false;
        EraseScope eraseScope = EraseScope::wholeDisk;
        OnErase onErase;
    };

    [[nodiscard]] bool isActive() const { return m_isActive; } ///< The dialog is shown.
    [[nodiscard]] Stage stage() const { return m_stage; }
    [[nodiscard]] const std::string &dialogTitle() const { return m_dialogTitle; }
    [[nodiscard]] const std::string &diskName() const { return m_diskName; }
    [[nodiscard]] const std::string &volumeName() const { return m_volumeName; }
    [[nodiscard]] const std::string &warningText() const { return m_warningText; }
    [[nodiscard]] const std::string &confirmName() const { return m_confirmName; }
    [[nodiscard]] const std::string &confirmInput() const { return m_confirmInput; }
    [[nodiscard]] bool confirmMismatch() const { return m_confirmMismatch; } ///< Of the last attempt.
    [[nodiscard]] const std::vector<FormatOption> &formatOptions() const { return m_formatOptions; }
    [[nodiscard]] std::size_t selectedFormatIndex() const { return m_selectedFormatIndex; }
    [[nodiscard]] bool allowPartitionScope() const { return m_allowPartitionScope; } ///< The user may choose the scope.
    [[nodiscard]] EraseScope eraseScope() const { return m_eraseScope; }
    [[nodiscard]] const std::string &statusMessage() const { return m_statusMessage; } ///< While it is erased.
    [[nodiscard]] const std::string &resultMessage() const { return m_resultMessage; }

    /// Fills all fields and shows the dialog.
    void open(Request request);

    void setConfirmInput(std::string confirmInput); ///< Any edit takes the mismatch back.
    void setSelectedFormatIndex(std::size_t index); ///< Of formatOptions(); another one changes nothing.
    void setEraseScope(EraseScope eraseScope);

    /// The button "Erase". Returns at once; a name that is not exactly confirmName() starts nothing.
    void confirm();

    /// The buttons "Cancel" and "Done".
    void dismiss();

    /// The end of the work: \a stage is completed or failed.
    void finish(Stage stage, std::string resultMessage);

Q_SIGNALS:
    void isActiveChanged();
    void stageChanged();
    void dialogTitleChanged();
    void diskNameChanged();
    void volumeNameChanged();
    void warningTextChanged();
    void confirmNameChanged();
    void confirmInputChanged();
    void confirmMismatchChanged();
    void formatOptionsChanged(); ///< At each opening.
    void selectedFormatIndexChanged();
    void allowPartitionScopeChanged();
    void eraseScopeChanged();
    void statusMessageChanged();
    void resultMessageChanged();

private:
    using Signal = void (EraseOperationManager::*)();

    template <typename T>
    void publish(T &field, T value, Signal changed)
    {
        if (std::exchange(field, value) != value)
            Q_EMIT(this->*changed)();
    }

    bool m_isActive = false;
    Stage m_stage = Stage::confirming;
    std::string m_dialogTitle;
    std::string m_diskName;
    std::string m_volumeName;
    std::string m_warningText;
    std::string m_confirmName;
    std::string m_confirmInput;
    bool m_confirmMismatch = false;
    std::vector<FormatOption> m_formatOptions;
    std::size_t m_selectedFormatIndex = 0;
    bool m_allowPartitionScope = false;
    EraseScope m_eraseScope = EraseScope::wholeDisk;
    std::string m_statusMessage;
    std::string m_resultMessage;
    OnErase m_onErase;
};

} // namespace brindle
