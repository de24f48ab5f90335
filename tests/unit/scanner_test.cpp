// The scanner's cells, and how far it reads: what a session at the console doesn't show.
#include "frontend/fill.h"
#include "values/array.h"
#include "values/instructions.h"
#include "values/refderef.h"
#include "values/shared.h"
#include "values/text.h"

#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/time.h>
#include <unistd.h>

namespace tessor {
namespace {

class Scanner : public testing::Test {
protected:
    Scanner() {
        if (!variables)
            start_symbols();
        stepping = false;
    }
    ~Scanner() override { cleanup(cells); }

    // Compiles one batch of a text; `rest` is what is left of it.
    int compile(const std::string& source, LineEnd mode = LineEnd::blank) {
        cleanup(cells);
        text = source;
        const char* at = text.c_str();
        const int n = fill(cells, variables, nullptr, &at, mode);
        rest = at;
        return n;
    }

    // The same without what it prints.
    int compile_quietly(const std::string& source) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int n = compile(source);
        printed = testing::internal::GetCapturedStdout();
        reported = testing::internal::GetCapturedStderr();
        return n;
    }

    // One word for each cell: the value, the spelling of an operator, or a name.
    std::string words() const {
        std::string all;
        for (const Space* cell = cells; !is_end(*cell); ++cell)
            all += (all.empty() ? "" : " ") + word(*cell);
        return all;
    }

    static std::string word(const Space& cell) {
        switch (cell.rank) {
        case kind::OPERATOR:
            return std::string(instruction_name(cell.operation)) + "'"
                   + (cell.name ? cell.name : "");
        case kind::VARIABLE: return cell.name;
        case kind::ADDRESS: return std::string("@") + cell.name;
        case kind::FUNCTION: return "function";
        default: break;
        }
        if (cell.rank > 0)
            return "array";
        const Element element = element_at(cell, 0);
        if (element.tag == tag::integer)
            return std::to_string(element.integer);
        return element.tag == tag::real ? "real" : element.tag == tag::ascii ? "char" : "number";
    }

    static std::string repeat(int n, const std::string& word) {
        std::string all;
        for (int i = 0; i < n; ++i)
            all += word;
        return all;
    }

    Space cells[cells_per_buffer + 1] = {};
    std::string text, rest, printed, reported;
};

struct Match {
    const char* name;
    const char* source;
    const char* words;
};

class LongestMatch : public Scanner, public testing::WithParamInterface<Match> {};

template <class Case>
std::string name_of(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

TEST_P(LongestMatch, Words) {
    compile_quietly(std::string(GetParam().source) + " .");
    EXPECT_EQ(words(), GetParam().words);
}

const Match numbers[] = {
    {"SignBeforeDigit", "3-2", "3 -2"},
    {"SignAlone", "3 - 2", "3 SUBTRACT'- 2"},
    {"LettersBehind", "12AB", "12 AB"},
    {"WholeByExponent", "1E3 1E-3 2.0", "1000 real real"},
    {"GreatestInteger", "2147483647 2147483648", "2147483647 real"},
    {"PointsBehind", "1..", "1 INTERVAL'.."},
    {"SignOfNaN", "-NaN -Inf", "SUBTRACT'- real real"},
    {"LettersOutOfOrder", "1k2j3", "number j3"},
    {"Infinity", "1inf 1iinf", "1 real number"},
    {"PrefixesAlone", "r1r2 d5 #5 r5", "number d5 #5 r5"},
    {"LettersOfBothForms", "1i2p3", "number p3"},
    {"LettersAlone", "1e 1e+ 1i", "1 e 1 e+ 1 i"},
    {"Bits", "0#101 0#000000001 0#", "char 1 0 NOTEQUIVALENT'#"},
    {"Constants", "#PIX #PI -#LN2", "#PIX real SUBTRACT'- real"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, LongestMatch, testing::ValuesIn(numbers), name_of<Match>);

const Match spellings[] = {
    {"BoundaryBehindSymbols", "~^ ~^X", "NAND'~^ NOT'~ AND'^ X"},
    {"Exclamations", "!^ !?? !? ", "STRONGAND'!^ DEAL'!?? EXECUTE'! ROLL'?"},
    {"StrongOnes", "!~^X !~vX !vX", "STRONGNAND'!~^ X STRONGNOR'!~v X STRONGOR'!v X"},
    {"LetterThatIsAVerb", "vX X.v", "OR'v X X v"},
    {"SymbolInAName", "<X < X", "<X LESS'< X"},
    {"SymbolInAWord", "**X PI*X PI* ", "POWER'** X PI*X PITIMES'PI*"},
    {"WordWithoutBoundary", "RANDOMISEX RANDOMIZEX", "RANDOMISE'RANDOMISE X RANDOMIZEX"},
    {"WordInAName", "READY READ", "READY READ'READ"},
    {"Slashes", "/../ /../[] /-/X",
     "REPLICATE'/../ REPLICATEAXIS'/../[] DIVIDE'/ SUBTRACT'- DIVIDE'/ X"},
    {"Brackets", ",[ ,[.]", "CATENATE', [ LAMINATE',[.]"},
    {"TwoWords", "FIRST\n ELEMENT FIRST ELEMENTS", "FIRST'FIRST\n ELEMENT FIRST'FIRST ELEMENTS"},
    {"QuotesAndBarsBetweenWords", "REDUCING\"|REST FIRST | \"ELEMENT EXACT|MATCH ",
     "REST'REDUCING\"|REST FIRST'FIRST | \"ELEMENT EXACTMATCH"},
    {"WordsOfContexts", "NEWLARGECONTEXT NEW  SMALLCONTEXT NEW\nLARGE DICTIONARY NEW",
     "CONTEXT'NEWLARGECONTEXT CONTEXT'NEW  SMALLCONTEXT CONTEXT'NEW\nLARGE DICTIONARY NEW"},
    {"OtherContextsAreOneWord", "PREVIOUSCONTEXT PREVIOUS CONTEXT BASIC DICTIONARY",
     "CONTEXT'PREVIOUSCONTEXT PREVIOUS CONTEXT'CONTEXT BASIC CONTEXT'DICTIONARY"},
    {"NoHeader", "VARS 2 X ARGS 3", "VARIABLES'VARS 2 X ARGS 3"},
    {"HighBytes", "\xb0+X \xb0+ \xcco", "\xb0+X CONJUGATE'\xb0+ PRINT'\xcco"},
};
INSTANTIATE_TEST_SUITE_P(Spellings, LongestMatch, testing::ValuesIn(spellings), name_of<Match>);

const Match names[] = {
    {"ExclamationEndsOne", "A!B @A!B", "A !B @A!B"},
    {"BytesThatVanish", "X(Y|Z\"", "XYZ"},
    {"Quoted",
     "\x02"
     "a b.\x03 @\x02_c\x03",
     "a b. @c"},
    {"Prefixed", "_5 _A $A .A", "_5 A A A"},
    {"BlanksBehindAt", "@ X", "@X"},
};
INSTANTIATE_TEST_SUITE_P(Names, LongestMatch, testing::ValuesIn(names), name_of<Match>);

struct Reading {
    const char* name;
    const char* source;
    const char* rest;
};

class LookAhead : public Scanner, public testing::WithParamInterface<Reading> {};

// One byte tells that the batch ends at a point; of a longer spelling as much as can still be one.
TEST_P(LookAhead, Rest) {
    compile_quietly(GetParam().source);
    EXPECT_EQ(rest, GetParam().rest);
}

const Reading batches[] = {
    {"LineEnd", "1 .\n2 .", "2 ."},    {"OneLineEnd", "1 .\n\n2", "\n2"},
    {"Blank", "1 . 2 .", "2 ."},       {"LongerSpelling", "1 .] 2", ""},
    {"LongestSpelling", "1 .][X", ""}, {"NotALongerSpelling", "1 ..XY", "Y"},
    {"WordAndLineEnd", "END\n1", "1"}, {"WordAndBlank", "END 1", "1"},
    {"EndOfInput", "1 .", ""},         {"ByteThatIsLost", "1 .(", ""},
};
INSTANTIATE_TEST_SUITE_P(Batches, LookAhead, testing::ValuesIn(batches), name_of<Reading>);

TEST_F(Scanner, StreamStandsBehindTheBatch) {
    const char source[] = "(1 2) .\nleft";
    std::FILE* stream = fmemopen(const_cast<char*>(source), sizeof source - 1, "r");
    EXPECT_EQ(fill(cells, variables, stream, nullptr, LineEnd::blank), 2);
    EXPECT_EQ(std::fgetc(stream), 'l');
    std::fclose(stream);
}

TEST_F(Scanner, LineEndThatEndsIsNotLookedPast) {
    for (const char* source : {"(1 2)\n[2]", "'ab'\n[2]", "FIRST\nELEMENT", "VARS\n2 MONADIC "}) {
        EXPECT_EQ(compile(source, LineEnd::ends), 2) << source;
        EXPECT_EQ(rest, std::strchr(source, '\n') + 1) << source;
    }
    stepping = true;
    EXPECT_EQ(compile("1\n2", LineEnd::inspects), 3);
    EXPECT_EQ(words(), "1 ENDPROCESS'\n");
    stepping = false;
    EXPECT_EQ(compile("1\n2 .", LineEnd::inspects), 3);
}

TEST_F(Scanner, SignalDoesNotEndTheInput) {
    static int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    struct sigaction action {};
    action.sa_handler = [](int) {
        if (write(ends[1], "1 .\n", 4) != 4)
            _exit(1);
    };
    struct sigaction old {};
    sigaction(SIGALRM, &action, &old);
    const itimerval soon{{0, 0}, {0, 20000}};
    setitimer(ITIMER_REAL, &soon, nullptr);
    std::FILE* stream = fdopen(ends[0], "r");
    EXPECT_EQ(fill(cells, variables, stream, nullptr, LineEnd::blank), 2);
    EXPECT_EQ(words(), "1");
    sigaction(SIGALRM, &old, nullptr);
    std::fclose(stream);
    close(ends[1]);
}

TEST_F(Scanner, ArrayLiteralsArePackedAsLongAsTheyAreAlike) {
    compile("(1 2 3) (1 2.5) 'abc' (T F) ('ab' 1) (1 'ab') () '' (5) .");
    const Storage storages[] = {Storage::integer,  Storage::elements, Storage::character,
                                Storage::elements, Storage::elements, Storage::elements};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(storage_of(cells[i].data_pointer), storages[i]) << i;
    const std::uint32_t types[] = {ISVECTOR | HASINTEGER,
                                   ISVECTOR | HASINTEGER | HASREAL | COMPLEXED,
                                   ISVECTOR | HASASCII,
                                   ISVECTOR | HASINTEGER,
                                   ISVECTOR | HASINTEGER | STRUCTURED,
                                   ISVECTOR | HASINTEGER | STRUCTURED | COMPLEXED,
                                   ISVECTOR | HASINTEGER | ISEMPTY,
                                   ISVECTOR | HASASCII | ISEMPTY,
                                   ISVECTOR | HASINTEGER | ISONEELEMENT};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(cells[i].type, types[i]) << i;
}

TEST_F(Scanner, EnclosedArrayTakesTheShapeInside) {
    compile("`( 1 2 3 4 )` [ 2 2 ] .");
    EXPECT_EQ(cells[0].rank, 1);
    EXPECT_EQ(cells[0].depth, 0);
    EXPECT_EQ(cells[0].type, ISSCALAR | STRUCTURED | ISSTRUCTURE);
    const Space& inner = *element_at(cells[0], 0).subarray;
    EXPECT_EQ(inner.rank, 2);
    EXPECT_EQ(extent(inner, 0), 2);
}

TEST_F(Scanner, ShapeThatFailsLeavesTheLiteral) {
    for (const char* source : {"(1 2)[-1] .", "(1 2)[3000000000] .", "(1 2)[] .", "(1 2)[1.5 x]"}) {
        compile_quietly(source);
        EXPECT_EQ(element_at(cells[0], 1).integer, 2) << source;
    }
}

TEST_F(Scanner, BodyIsCutToSize) {
    EXPECT_EQ(compile("MONADIC 1 + ; ."), 2);
    const Space& function = cells[0];
    EXPECT_EQ(function.arguments, 1);
    EXPECT_EQ(function.elements, 4u);
    EXPECT_EQ(function.body->elements, 3u);
    EXPECT_EQ(function.body->body, function.body);
    EXPECT_EQ(refr(function.body), 1);
    EXPECT_EQ(function.body[3].operation, op::FUNCTIONEND);
    EXPECT_TRUE(is_end(function.body[4]));
}

TEST_F(Scanner, MarksStayWithTheInnerFunction) {
    compile(": : READ ; ROLL ; .");
    EXPECT_EQ(cells[0].type, ISFUNCTION | ISPROBABLE);
    EXPECT_EQ(cells[0].body[1].type, ISFUNCTION | INOUT);
    EXPECT_EQ(cells[0].body->type, cells[0].type);
}

TEST_F(Scanner, LabelsCountCells) {
    compile(": %L 1 %M @%L @%M ; .");
    const Space* body = cells[0].body;
    EXPECT_EQ(body[4].rank, kind::LABEL);
    EXPECT_EQ(element_at(*body[4].target, 0).integer, 2);
    EXPECT_EQ(element_at(*body[5].target, 0).integer, 4);
}

TEST_F(Scanner, PendingNamesHaveALimit) {
    compile_quietly(": " + repeat(512, "@A ") + "; .");
    EXPECT_EQ(reported, "");
    compile_quietly(": " + repeat(513, "@A ") + "; .");
    EXPECT_EQ(reported.find("808"), reported.rfind("808"));
    EXPECT_NE(reported.find("808"), std::string::npos);
    EXPECT_EQ(cells[0].elements, 515u) << "the name's cell stays";
}

TEST_F(Scanner, TopLevelLabelsLastAsLongAsTheBatch) {
    compile("1 %L @%L .");
    EXPECT_EQ(element_at(*cells[2].target, 0).integer, 3);
}

TEST_F(Scanner, LocalsBeyondAllBounds) {
    compile_quietly("&-99999999999 &99999999999 .");
    EXPECT_LT(element_at(cells[0], 0).integer, 0);
    EXPECT_GT(element_at(cells[1], 0).integer, 0);
}

TEST_F(Scanner, SpellingsNeedNoStorage) {
    compile("ADD + FIRST ELEMENT .");
    EXPECT_LT(refr(cells[0].name), 0);
    EXPECT_LT(refr(cells[1].name), 0);
    EXPECT_EQ(refr(cells[2].name), 1);
}

TEST_F(Scanner, MeaningsOfTheUserWin) {
    compile("@SUBTRACT @SIN .");
    compile("SUBTRACT :: SUBTRACT SIN :: SIN .");
    EXPECT_EQ(words(), "SUBTRACT SUBTRACT'SUBTRACT 1 SIN 1 CIRCULAR'SIN");
    forgethash(memory, checkhash(memory, "SUBTRACT"));
    forgethash(memory, checkhash(memory, "SIN"));
}

TEST_F(Scanner, FullBatchDropsWholeTokens) {
    EXPECT_EQ(compile_quietly(repeat(1024, "1 ") + "."), 1025);
    EXPECT_EQ(reported, "");
    EXPECT_EQ(compile_quietly(repeat(1023, "1 ") + "SIN X ."), 1025);
    EXPECT_NE(reported.find("807"), std::string::npos);
    EXPECT_EQ(word(cells[1023]), "X");
    EXPECT_TRUE(is_end(cells[1024]));
    EXPECT_EQ(compile_quietly(repeat(1024, "1 ") + ": 2 ; 'ab' ."), 1025);
}

TEST_F(Scanner, FullBodyIsClosedAllTheSame) {
    compile_quietly(": " + repeat(1023, "1 ") + "; .");
    EXPECT_EQ(reported, "");
    EXPECT_EQ(cells[0].elements, 1025u);
    compile_quietly(": " + repeat(1026, "1 ") + "; .");
    EXPECT_EQ(cells[0].elements, 1026u);
    EXPECT_EQ(cells[0].body[1025].operation, op::FUNCTIONEND);
}

TEST_F(Scanner, NestingHasALimitAndNeedsNoNativeStack) {
    constexpr int limit = 16583;
    compile_quietly(repeat(limit, ": ") + repeat(limit, ";") + " .");
    EXPECT_EQ(reported, "");
    compile_quietly(repeat(limit + 1, "(") + repeat(limit + 1, ")") + " .");
    EXPECT_EQ(reported, "");
    compile_quietly(repeat(limit + 2, "(") + repeat(limit + 1, ")") + " .");
    EXPECT_NE(reported.find("807"), std::string::npos);
    compile_quietly(repeat(40000, ": ") + "1 .");
    EXPECT_EQ(words(), "function");
}

TEST_F(Scanner, EndOfInputClosesEverything) {
    compile_quietly(": 1 : %L .A 'b'");
    EXPECT_EQ(words(), "function ENDPROCESS'");
    EXPECT_STREQ(cells[0].body[2].body[4].name, ";");
    compile_quietly("1 @");
    EXPECT_EQ(words(), "1 ENDPROCESS'");
    compile("X .");
    EXPECT_EQ(words(), "@X") << "the mode goes on";
    compile_quietly("1 \"abc\nd");
    EXPECT_EQ(printed, "abc\nd");
    compile("\" 2 .");
    EXPECT_EQ(words(), "NOOP' 2");
}

TEST_F(Scanner, AbandonedBatchLeavesNothing) {
    EXPECT_EQ(compile_quietly("1 'ab' X : 2 .A (1 2) BREAK 3 ."), 0);
    EXPECT_TRUE(is_end(cells[0]));
    EXPECT_EQ(compile_quietly("1 (1l2)[65535 65537] ."), 0);
    EXPECT_NE(reported.find("27 - out of main storage."), std::string::npos);
    EXPECT_TRUE(is_end(cells[0]));
}

TEST_F(Scanner, CountsBalance) {
    Bucket* bucket = enter(memory, stringdup("counted"));
    const auto name = refr(bucket->name);
    const auto value = refr(bucket->value);
    compile("counted @counted : counted %L @%L .counted $counted _counted ; .counted "
            "(1 ('ab' #1l2) T) .");
    EXPECT_GT(refr(bucket->value), value);
    cleanup(cells);
    cells[0] = Space{};
    EXPECT_EQ(refr(bucket->name), name);
    EXPECT_EQ(refr(bucket->value), value);
}

} // namespace
} // namespace tessor
