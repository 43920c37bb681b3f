#pragma once

#include <QCoroTask>

#include <functional>
#include <vector>

namespace brindle {

/// Begins \a work at the next turn of the event loop, never inside the caller.
///
/// What it throws is logged and goes no further. The returned task ends with the work; dropping it stops nothing.
QCoro::Task<> spawn(std::function<QCoro::Task<>()> work);

/// Awaits all \a tasks, also after one has thrown, and then throws the first error: children refer to their parent's
/// frame, which must outlive them.
QCoro::Task<> joinAll(std::vector<QCoro::Task<>> tasks);

} // namespace brindle
