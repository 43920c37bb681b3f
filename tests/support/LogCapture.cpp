#include "support/LogCapture.h"

#include <utility>

namespace brindle {

LogCapture::LogCapture() : m_before(Log::setSink([this](std::string_view line) { m_lines.emplace_back(line); })) {}

LogCapture::~LogCapture()
{
    Log::setSink(std::move(m_before));
}

} // namespace brindle
