// Any bytes as what a display says of itself: read without a fault, and printed as plain lines.

#include "PlainLines.h"

#include "hardware/Edid.h"
#include "hardware/HardwareText.h"

#include <cstddef>
#include <cstdint>
#include <numeric>

namespace {

/// \a block with a check sum that is right, which chance would hardly find.
std::string checked(std::string block)
{
    constexpr std::size_t kBlockBytes = 128;
    if (block.size() < kBlockBytes)
        return block;
    char &last = block[kBlockBytes - 1];
    last = '\0';
    const auto sum = std::accumulate(block.begin(), block.begin() + kBlockBytes, 0,
                                     [](int total, char byte) { return total + static_cast<unsigned char>(byte); });
    last = static_cast<char>(-sum);
    return block;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace brindle::tools;
    const std::string block(data, data + size);
    (void)readEdid(block);
    if (const auto display = readEdid(checked(block))) {
        HardwareFacts facts;
        facts.graphics = {{.name = "Card", .displays = {*display}}};
        brindle::requirePlain(displaysText(facts, DetailLevel::full));
    }
    return 0;
}
