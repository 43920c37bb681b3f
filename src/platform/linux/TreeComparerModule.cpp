#include "platform/linux/TreeComparerModule.h"

#include "platform/linux/TreeComparer.h"

[[gnu::visibility("default")]] void brindleCompareTrees(const std::string &first, const std::string &second,
                                                        brindle::TreeComparison &result)
{
    result = brindle::TreeComparer(first, second).run();
}
