#include "base/UnfinishedWork.h"

#include "base/Completion.h"

#include <utility>

namespace brindle {

UnfinishedWork::Piece::Piece(UnfinishedWork &work) : m_work(&work)
{
    if (++work.m_pieces == 1)
        Q_EMIT work.isThereChanged();
}

UnfinishedWork::Piece::~Piece()
{
    if (m_work && --m_work->m_pieces == 0)
        Q_EMIT m_work->isThereChanged();
}

void UnfinishedWork::endProcessWithIt()
{
    if (!std::exchange(m_endsProcess, true))
        Q_EMIT endsProcessChanged();
}

QCoro::Task<> UnfinishedWork::end()
{
    while (isThere()) {
        const Completion<bool> change;
        connect(
            this, &UnfinishedWork::isThereChanged, this, [change] { change.complete(true); }, Qt::SingleShotConnection);
        co_await change;
    }
}

} // namespace brindle
