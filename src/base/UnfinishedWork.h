#pragma once

#include <QCoroTask>
#include <QObject>
#include <QPointer>

namespace brindle {

/// What has been begun on a disk and must reach its end before the process does. Main thread only.
class UnfinishedWork : public QObject {
    Q_OBJECT

public:
    /// One such work, for as long as this lives.
    class Piece {
    public:
        explicit Piece(UnfinishedWork &work);
        ~Piece();
        Piece(const Piece &) = delete;
        Piece &operator=(const Piece &) = delete;

    private:
        QPointer<UnfinishedWork> m_work;
    };

    [[nodiscard]] bool isThere() const { return m_pieces > 0; }

    /// The process ends with the work: it was asked to while there was some.
    [[nodiscard]] bool endsProcess() const { return m_endsProcess; }
    void endProcessWithIt();

    /// Ends when there is none, at once where there is none now.
    [[nodiscard]] QCoro::Task<> end();

Q_SIGNALS:
    void isThereChanged();
    void endsProcessChanged();

private:
    int m_pieces = 0;
    bool m_endsProcess = false;
};

} // namespace brindle
