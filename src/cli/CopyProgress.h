#pragma once

#include "cli/Terminal.h"
#include "cli/UnstoppableWork.h"
#include "efi/EFICopyManager.h"

#include <QObject>

namespace brindle {

/// A copy as it is seen from a terminal: each status on a line of standard output, with a bar beneath them where that
/// is a terminal.
///
/// An interruption ends a copy that has changed nothing yet; one that has is UnstoppableWork.
class CopyProgress {
public:
    explicit CopyProgress(EFICopyManager &manager); ///< Before the copy starts; the manager outlives it.
    ~CopyProgress();
    CopyProgress(const CopyProgress &) = delete;
    CopyProgress &operator=(const CopyProgress &) = delete;

    /// Waits until the operation that a choice has set going has ended.
    void waitForEnd();

    /// Throws an Error with the last status where that tells of no success.
    void requireSuccess() const;

    void clearBar(); ///< Makes room for what is told on standard error.

private:
    void showStatus();
    void showBar();
    bool stopUnlessBegun();

    EFICopyManager &m_manager;
    Terminal m_terminal;
    bool m_hasBar = false;
    QObject m_receiver; ///< What is called back here is called no more after the end.
    UnstoppableWork m_work;
};

} // namespace brindle
