#pragma once

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// Tells in lines what was found in a text.
using TranscriptReader = std::string (*)(std::string_view text);

/// Texts that the tools printed on real machines, read by all readers and compared with what was reviewed by hand.
///
/// BRINDLE_TRANSCRIPTS names the folder of the texts, whose INDEX.tsv tells the kind of each; the tests are skipped
/// without it. The readings are compared by expectGolden().
class TranscriptsTest : public testing::Test {
protected:
    struct Transcript {
        std::filesystem::path path; ///< In the folder.
        std::string kind;
    };

    void SetUp() override;

    [[nodiscard]] std::vector<Transcript> index() const;

    /// Compares the reading of each text for whose kind \a readerOf has a reader with the file of the same path in the
    /// folder \a golden of tests/golden.
    void expectReadAsReviewed(const std::filesystem::path &golden,
                              TranscriptReader (*readerOf)(std::string_view kind)) const;

    LogCapture log; ///< What the readers say is of no interest.
    std::filesystem::path folder;
};

/// The line of a value in a reading, with everything that can't be seen written as an escape; empty where there is
/// none.
[[nodiscard]] std::string field(std::string_view name, const std::optional<std::string> &value);
[[nodiscard]] std::string field(std::string_view name, const std::vector<std::string> &values);

} // namespace brindle
