// What the words of the command line set; their texts are in the transcripts.
#include "shell/options.h"
#include "values/shared.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

namespace tessor {
namespace {

class OptionWords : public testing::Test {
protected:
    void SetUp() override { clear_flags(); }
    void TearDown() override { clear_flags(); }

    static void clear_flags() {
        timing = performance = processor_performance = opstime = false;
        constraindirectories = true;
        MHz = 0;
    }

    // Reads words that let the process go on.
    static Options read(std::initializer_list<const char*> words) {
        std::vector<std::string> texts{"tessor"};
        texts.insert(texts.end(), words.begin(), words.end());
        std::vector<char*> arguments;
        for (std::string& text : texts)
            arguments.push_back(text.data());
        Options options;
        EXPECT_FALSE(read_options(static_cast<int>(arguments.size()), arguments.data(), options));
        return options;
    }
};

TEST_F(OptionWords, NoneLeavesTheDefaults) {
    const Options options = read({});
    EXPECT_FALSE(options.quiet);
    EXPECT_EQ(options.processors, 0u);
    EXPECT_EQ(options.thrds, 1u);
    EXPECT_FALSE(timing || performance || processor_performance || opstime);
    EXPECT_TRUE(constraindirectories);
}

TEST_F(OptionWords, TakeNumbers) {
    const Options options = read({"-c4", "-th2", "-pp2400"});
    EXPECT_EQ(options.processors, 4u);
    EXPECT_EQ(options.thrds, 2u);
    EXPECT_TRUE(processor_performance);
    EXPECT_EQ(MHz, 2400);
    EXPECT_FALSE(timing || performance);
}

TEST_F(OptionWords, CutNumbersThatDontFit) {
    const Options options = read({"-c99999999999999999999", "-th4294967296"});
    EXPECT_EQ(options.processors, 2147483647u);
    EXPECT_EQ(options.thrds, 2147483647u);
}

TEST_F(OptionWords, TakeTheMachinesProcessorsWithoutANumber) {
    EXPECT_GE(read({"-c"}).processors, 1u);
    EXPECT_GE(read({"-c0"}).processors, 1u);
}

TEST_F(OptionWords, TheFirstWordHasTheLastSay) {
    EXPECT_EQ(read({"-c3", "-c5"}).processors, 3u);
}

TEST_F(OptionWords, OneLetterBehindADash) {
    const Options options = read({"-qt", "-c2q"});
    EXPECT_TRUE(options.quiet);
    EXPECT_FALSE(timing);
    EXPECT_EQ(options.processors, 2u);
    EXPECT_FALSE(read({"-c2q"}).quiet);
}

TEST_F(OptionWords, ADashBeginsAnotherOptionInTheSameWord) {
    const Options options = read({"-t-q"});
    EXPECT_TRUE(timing && options.quiet);
}

TEST_F(OptionWords, WithoutADashSayNothing) {
    const Options options = read({"q", "t", "i", "p", "c7", "script.tsr", "-"});
    EXPECT_FALSE(options.quiet);
    EXPECT_EQ(options.processors, 0u);
    EXPECT_FALSE(timing || performance || opstime);
    EXPECT_TRUE(constraindirectories);
}

TEST_F(OptionWords, LetFilesGoAnywhere) {
    for (const char* word : {"-u", "u", "v", "-qu", "-qv", "quiet"}) {
        clear_flags();
        read({word});
        EXPECT_FALSE(constraindirectories) << word;
    }
}

TEST_F(OptionWords, ShapeTheReportOfTimings) {
    const Options full = read({"-if"});
    EXPECT_TRUE(opstime && full.report.flops);
    EXPECT_FALSE(full.report.terse_ops || full.report.just_summary);
    const Options terse = read({"-it"});
    EXPECT_TRUE(terse.report.flops && terse.report.terse_ops);
    const Options summary = read({"-is"});
    EXPECT_TRUE(summary.report.just_summary);
    EXPECT_FALSE(summary.report.flops);
    const Options plain = read({"-i"});
    EXPECT_FALSE(plain.report.flops || plain.report.terse_ops || plain.report.just_summary);
}

} // namespace
} // namespace tessor
