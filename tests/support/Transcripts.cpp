#include "support/Transcripts.h"

#include "base/Text.h"
#include "support/Fixtures.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace brindle {

namespace fs = std::filesystem;

namespace {

std::string inQuotes(std::string_view text)
{
    const std::string list = fmt::format("{}", std::array{text});
    return list.substr(1, list.size() - 2);
}

} // namespace

void TranscriptsTest::SetUp()
{
    if (const char *named = std::getenv("BRINDLE_TRANSCRIPTS"))
        folder = named;
    else
        GTEST_SKIP() << "BRINDLE_TRANSCRIPTS names no folder";
}

std::vector<TranscriptsTest::Transcript> TranscriptsTest::index() const
{
    std::vector<Transcript> transcripts;
    const std::string text = contentsOf(folder / "INDEX.tsv");
    for (const std::string_view line : Lines(text)) {
        const std::size_t first = std::min(line.find('\t'), line.size());
        const std::string_view rest = line.substr(std::min(first + 1, line.size()));
        transcripts.push_back({line.substr(0, first), std::string(rest.substr(0, rest.find('\t')))});
    }
    return transcripts;
}

void TranscriptsTest::expectReadAsReviewed(const fs::path &golden,
                                           TranscriptReader (*readerOf)(std::string_view kind)) const
{
    int compared = 0;
    for (const auto &[path, kind] : index()) {
        SCOPED_TRACE(path);
        if (const TranscriptReader reader = readerOf(kind)) {
            expectGolden(golden / path, reader(contentsOf(folder / path)));
            ++compared;
        }
    }
    EXPECT_GT(compared, 0);
}

std::string field(std::string_view name, const std::optional<std::string> &value)
{
    return value ? fmt::format("  {}: {}\n", name, inQuotes(*value)) : std::string();
}

std::string field(std::string_view name, const std::vector<std::string> &values)
{
    return values.empty() ? std::string() : fmt::format("  {}: {}\n", name, values);
}

} // namespace brindle
