#include "frontend/spellings.h"

namespace tessor {

namespace {

constexpr Meaning with(Act act, std::string_view spellings, std::int16_t operation,
                       double argument = 0) {
    return {spellings, operation, 0, 0, act, argument};
}
constexpr Meaning circular(std::string_view spellings, int selector) {
    return with(Act::selector, spellings, op::CIRCULAR, selector);
}
constexpr Meaning power(std::string_view spellings, double exponent) {
    return with(Act::exponent, spellings, op::POWER, exponent);
}
constexpr Meaning derived(std::string_view spellings, std::int16_t operation, int number) {
    return with(Act::derived, spellings, operation, number);
}
constexpr Meaning header(std::string_view spellings, int arity) {
    return with(Act::open, spellings, op::NIHIL, arity);
}

// clang-format off
constexpr auto meanings = std::to_array<Meaning>({
    {"\xcc INPUT QUADIN", op::INPUT, 0, INOUT},
    {"\xcd QUOTED QUOTEDIN QUOTEQUAD TEXTINPUT QUOTEDINPUT", op::QUOTEDIN, 0, INOUT},
    {"TIME", op::TIME},
    {"POSITION", op::POSITION},
    {"\xb0+ CONJUGATE", op::CONJUGATE},
    {"\xb0- NEGATIVE", op::NEGATIVE},
    {"SIGN SIGNUM", op::SIGNUM},
    {"\xb0\xb9 DIRECTION", op::DIRECTION},
    {"\xb0\xba RECIPROCAL", op::RECIPROCAL},
    {"\xb0| ABS ABSOLUTE MAGNITUDE", op::MAGNITUDE},
    {"BINARY", op::BINARY},
    {"NUMBER", op::NUMBER},
    {"POLAR", op::POLAR},
    {"DEG DEGREES", op::DEG},
    {"RAD RADIANS", op::RAD},
    {"CARTESIAN", op::CARTESIAN},
    {"FLOOR \xb0\xdb", op::FLOOR},
    {"CEIL CEILING \xb0\xda", op::CEILING},
    {"TRUNC INTEGER TRUNCATE", op::TRUNCATE},
    {"eX EXP \xb0* EXPONENTIAL", op::EXPONENTIAL},
    {"LN LOGE LOGe \xb0\xa9 NATURALLOG", op::NATURALLOG},
    {"PI* PITIMES \xb0\xb1", op::PITIMES},
    {"\xb0! FACTORIAL", op::FACTORIAL},
    {"~ \xb0~ NOT", op::NOT},
    {"BOOLEAN", op::BOOLEAN},
    {"LOGICAL", op::LOGICAL},
    {"PROBABLY", op::PROBABLY, 0, ISPROBABLE},
    {"CONTRADICTION", op::CONTRADICTION},
    {"ISBOOLEAN", op::ISBOOLEAN},
    {"ISLOGICAL", op::ISLOGICAL},
    {"ISBINARY", op::ISBINARY},
    {"ISNUMBER", op::ISNUMBER},
    {"ISCARTESIAN", op::ISCARTESIAN},
    {"ISPOLAR", op::ISPOLAR},
    {"SEED", op::SEED},
    {"RANDOMISE RANDOMIZE", op::RANDOMISE},
    {"? ROLL \xb0?", op::ROLL, 0, ISPROBABLE},
    {"?? RANDOM \xb0??", op::RANDOM, 0, ISPROBABLE},
    {"CTG COTAN COTANGENS", op::COTAN},
    {"SEC SECANS", op::SEC},
    {"CSC COSEC COSECANS", op::COSEC},
    {"ACTG ACOTAN ARCCOTAN", op::ACOTAN},
    {"ASEC ARCSEC", op::ASEC},
    {"ACSC ACOSEC ARCCOSEC", op::ACOSEC},
    {"CTGH COTANH", op::COTANH},
    {"SECH", op::SECH},
    {"CSCH COSECH", op::COSECH},
    {"ACTGH ACOTANH", op::ACOTANH},
    {"ASECH", op::ASECH},
    {"ACSCH ACOSECH", op::ACOSECH},
    {"PD POW2 B2POW", op::POW2},
    {"POWE POWe BEPOW BePOW", op::POWE},
    {"POW10 B10POW", op::POW10},
    {"LD LOG2", op::LD},
    {"LOG10", op::LOG10},
    {"READ", op::READ, 0, INOUT},
    {"READTEXT TEXTREAD", op::TEXTREAD, 0, INOUT},
    {"SAVE", op::SAVE, 0, INOUT},
    {"LOAD", op::LOAD, 0, INOUT},
    {"DUMP DUMPSTACK", op::DUMPSTACK, 0, INOUT},
    {"REMEMBER", op::REMEMBER, 0, INOUT},
    {"ENASCII", op::ENASCII},
    {"ENCAPSULATE", op::ENCAPSULATE},
    {"DEASCII", op::DEASCII},
    {"DECAPSULATE", op::DECAPSULATE},
    {"RAVEL \xb0,", op::RAVEL},
    {"\xb0,[] RAVELAXIS", op::RAVELAXIS},
    {"TABLE \xb0\xb8", op::TABLE},
    {"ENCLOSE \xb0\xea", op::ENCLOSE},
    {"\xb0\xea[] ENCLOSEAXIS", op::ENCLOSEAXIS},
    {"DISCLOSE \xb0\xeb", op::DISCLOSE},
    {"\xb0\xeb[] DISCLOSEAXIS", op::DISCLOSEAXIS},
    {"CAR FIRST \xb0\xc6", op::FIRST},
    {"CDR REST \xb0\xc7", op::REST},
    {".. SPACE INTERVAL \xb0\xe9", op::INTERVAL},
    {"ENLIST \xb0\xe5", op::ENLIST},
    {"GROUP", op::GROUP},
    {"GRADEUP \xb0\xb6", op::GRADEUP},
    {"\xb0\xb7 GRADEDOWN", op::GRADEDOWN},
    {"\xb0\xce MATRIXINVERSE", op::MATRIXINVERSE},
    {"TEXT FORMAT \xb0\xe0", op::FORMAT},
    {"ASSEMBLE", op::ASSEMBLE, 0, GLOBAL},
    {"MIRROR", op::MIRROR},
    {"REVERSE \xb0\xdc REVERSEFIRSTAXIS", op::REVERSE},
    {"\xb0\xdc[] REVERSEAXIS", op::REVERSEAXIS},
    {"\xb0\xec REVERSELASTAXIS", op::REVERSELASTAXIS},
    {"\xb0\xed TRANSPOSE", op::TRANSPOSE},
    {"SHAPE LENGTH \xb0\xf2", op::SHAPE},
    {"RANK", op::RANK},
    {"DEPTH \xb0\xad", op::DEPTH},
    {"SLEEP", op::SLEEP},
    {"! EXEC EXECUTE \xb0\xf0", op::EXECUTE},
    {"LOOP", op::LOOP},
    {"RESULT", op::RESULT},
    {"REEVAL REEVALUATE", op::REEVALUATE},
    {"VERB OPERATOR", op::OPERATOR},
    {"AT", op::AT},
    {"GET", op::GET},
    {"DO", op::DO},
    {"+ ADD", op::ADD},
    {"- CENTER CENTRE SUBTRACT", op::SUBTRACT},
    {"* \xb9 TIMES MULTIPLY", op::MULTIPLY},
    {"/ \xba DIVIDE", op::DIVIDE},
    {"| MOD MODULO RESIDUE", op::RESIDUE},
    {"MIN \xdb MINIMUM SMALLER", op::MINIMUM},
    {"MAX \xda LARGER MAXIMUM", op::MAXIMUM},
    {"** POW POWER", op::POWER},
    {"LOG \xa9 LOGARITHM", op::LOGARITHM},
    {"TRIG \xb1 CIRCULAR TRIGONOMETRIC", op::CIRCULAR},
    {"BINOMIAL", op::BINOMIAL},
    {"^ AND CONJUNCTION", op::AND},
    {"v OR \xef DISJUNCTION", op::OR},
    {"~^ NAND \xde", op::NAND},
    {"~v NOR \xdf", op::NOR},
    {"!^ STRONGAND STRONGCONJUNCTION", op::STRONGAND},
    {"!v !\xef STRONGOR STRONGDISJUNCTION", op::STRONGOR},
    {"!~^ !\xde STRONGNAND", op::STRONGNAND},
    {"!~v !\xdf STRONGNOR", op::STRONGNOR},
    {"== IDENTICAL", op::IDENTICAL},
    {"## ~== NOTIDENTICAL", op::NOTIDENTICAL},
    {"< LESS", op::LESS},
    {"<= =< ~> \xc8 NOTGREATER", op::NOTGREATER},
    {"= EQUAL EQUIVALENT", op::EQUIVALENT},
    {"=> >= ~< \xc9 NOTLESS", op::NOTLESS},
    {"> GREATER", op::GREATER},
    {"# <> ~= \xbd NOTEQUAL NOTEQUIVALENT", op::NOTEQUIVALENT},
    {"WRITE", op::WRITE, 0, INOUT},
    {"APPEND", op::APPEND, 0, INOUT},
    {"TEXTWRITE WRITETEXT", op::TEXTWRITE, 0, INOUT},
    {"APPENDTEXT TEXTAPPEND", op::TEXTAPPEND, 0, INOUT},
    {"CLOSE", op::CLOSE, 0, INOUT},
    {"DATAIN DATAREAD", op::DATAIN, 0, INOUT},
    {"DATAOUT DATAWRITE", op::DATAOUT, 0, INOUT},
    {"SEEK REPOSITION", op::SEEK, 0, INOUT},
    {"REWIND", op::REWIND, 0, INOUT},
    {"SED STREAMED STREAMEDIT", op::STREAMEDIT},
    {"\xf2 RESHAPE", op::RESHAPE},
    {", CAT CONS CATENATE", op::CATENATE},
    {",[] CATENATEAXIS", op::CATENATEAXIS},
    {"\xb8 CATENATELASTAXIS", op::CATENATELASTAXIS},
    {",[.] LAMINATE", op::LAMINATE},
    {"\xea PARTITION", op::PARTITION},
    {"\xea[] PARTITIONAXIS", op::PARTITIONAXIS},
    {"PICK \xeb", op::PICK},
    {"DROP \xc7", op::DROP},
    {"\xc7[] DROPAXIS", op::DROPAXIS},
    {"TAKE \xc6", op::TAKE},
    {"\xc6[] TAKEAXIS", op::TAKEAXIS},
    {"~~ WITHOUT", op::WITHOUT},
    {"\xe9 INDEXOF", op::INDEXOF},
    {"\xe5 MEMBER", op::MEMBER},
    {"\xb6 GRADEUPCOLLATING", op::GRADEUPCOLLATING},
    {"\xb7 GRADEDOWNCOLLATING", op::GRADEDOWNCOLLATING},
    {"!?? DEAL", op::DEAL, 0, ISPROBABLE},
    {"FIND \xf5", op::FIND},
    {"\xc2 ENCODE", op::ENCODE},
    {"\xc3 DECODE", op::DECODE},
    {"\xce MATRIXDIVIDE", op::MATRIXDIVIDE},
    {"\xad MATCH", op::MATCH},
    {"\xe0 FORMATSPECIFIED", op::FORMATSPECIFIED},
    {"\xcf INDEXED", op::INDEXED},
    {"\xcf[] INDEXEDAXIS", op::INDEXEDAXIS},
    {"[] INDEX", op::INDEX},
    {"[][] INDEXAXIS", op::INDEXAXIS},
    {"\\ EXPAND", op::EXPAND},
    {"\\[] EXPANDAXIS", op::EXPANDAXIS},
    {"\xb2 EXPANDLASTAXIS", op::EXPANDLASTAXIS},
    {"\xab.\xab INNERPRODUCT", op::INNERPRODUCT},
    {"COMPRESS", op::COMPRESS},
    {"COMPRESSAXIS COMPRESSCOLUMNS", op::COMPRESSAXIS},
    {"COMPRESSROWS COMPRESSLASTAXIS", op::COMPRESSLASTAXIS},
    {"/../ REPLICATE", op::REPLICATE},
    {"/../[] REPLICATEAXIS", op::REPLICATEAXIS},
    {"\xb3 REPLICATELASTAXIS", op::REPLICATELASTAXIS},
    {"\xdc ROTATE", op::ROTATE},
    {"\xdc[] ROTATEAXIS", op::ROTATEAXIS},
    {"\xec ROTATELASTAXIS", op::ROTATELASTAXIS},
    {"\xed TRANSPOSEGENERAL", op::TRANSPOSEGENERAL},
    {"INTRODUCE", op::INTRODUCE},
    {"EXTRODUCE", op::EXTRODUCE},
    {"EACH", op::EACH},
    {"CONTEXT DICTIONARY", op::CONTEXT},
    with(Act::target, "\xc4 ASSIGN", op::ASSIGN),
    with(Act::target, "SET", op::SET),
    {"FORGET", op::FORGET, 0, GLOBALCHANGE},
    {"IF ?\xc5", op::IF},
    {"CLEAR", op::CLEAR},
    {"POP LEFT \xc1 DISCARD", op::DISCARD},
    {"\xc0 RIGHT", op::RIGHT},
    {"EXCH SWAP EXCHANGE \xc1\xc0", op::SWAP},
    {"[. MARK", op::MARK},
    {"..] COLLECT", op::COLLECT},
    {"DISPERSE", op::DISPERSE},
    {"COUNTSTACK", op::COUNTSTACK},
    {"COUNTTOMARK", op::COUNTTOMARK},
    {"CLEARTOMARK", op::CLEARTOMARK},
    {"DIP", op::DIP},
    {"DEEP", op::DEEP},
    {"PEEK", op::PEEK},
    {"POKE", op::POKE},
    {"GOTO \xc5", op::GOTO},
    {"JUMP \xc5%", op::JUMP},
    {"CHECK", op::CHECK},
    {"WIPE", op::WIPE, 0, GLOBALCHANGE},
    {"DUP \xc0\xc0 DUPLICATE", op::DUPLICATE},
    {"RETURN", op::RETURN},
    {"YIELD", op::YIELD},
    {"PARALLEL", op::PARALLEL},
    {"SERIAL", op::SERIAL},
    {"OPTIMISED OPTIMIZED", op::OPTIMISED},
    {"NOOP POSTFIX", op::NOOP},
    {"PREFIX", op::PREFIX},
    {"INFIX", op::INFIX},
    {"TRACE", op::TRACE},
    {"STEP", op::STEP},
    {"EDIT", op::EDIT},
    {"CALL", op::CALL},
    {"OFF QUIT ENDPROCESS", op::ENDPROCESS},
    // Instructions under a modifier.
    {"VARS VARIABLES", op::VARIABLES},
    {"FNS FUNCS FUNCTIONS", op::FUNCTIONS},
    {"OUTPUT TOS \xcc\xcc", op::OUTPUT, op::PRINT, INOUT},
    {"REVEAL", op::OUTPUT, op::NOOP, INOUT},
    {"PRINT QUADOUT \xcco", op::PRINT, op::PRINT, INOUT},
    {"TELL", op::PRINT, op::NOOP, INOUT},
    {"DISASSEMBLE", op::DISASSEMBLE},
    {"FORMTEXT TEXTFORM", op::DISASSEMBLE, op::TEXTWRITE, INOUT},
    {"OPEN MSB\1OPEN", op::OPEN, 0, INOUT},
    {"LSB\1OPEN", op::OPEN, op::SMALL, INOUT},
    {"ATOM SCALAR", op::ENCLOSE, op::NUMBER},
    {"FIRSTONE FIRST\2ELEMENT", op::FIRST, op::FIRST},
    {"RREST REDUCING\2REST", op::REST, op::REDUCE},
    {"REPEAT LOOPING", op::LOOP, op::DISCARD},
    {"EXACT\1MATCH", op::MATCH, op::EXACT},
    {"SUM", op::REDUCE, op::ADD},
    {"PRODUCT", op::REDUCE, op::MULTIPLY},
    {"ALL", op::REDUCE, op::AND},
    {"ANY", op::REDUCE, op::OR},
    {"SMALLEST", op::REDUCE, op::MINIMUM},
    {"LARGEST", op::REDUCE, op::MAXIMUM},
    {"SUMROWS SUMLASTAXIS", op::REDUCELASTAXIS, op::ADD},
    {"PRODUCTROWS PRODUCTLASTAXIS", op::REDUCELASTAXIS, op::MULTIPLY},
    {"ALLROWS ALLLASTAXIS", op::REDUCELASTAXIS, op::AND},
    {"ANYROW ANYLASTAXIS", op::REDUCELASTAXIS, op::OR},
    {"SMALLESTROW SMALLESTLASTAXIS", op::REDUCELASTAXIS, op::MINIMUM},
    {"LARGESTROW LARGESTLASTAXIS", op::REDUCELASTAXIS, op::MAXIMUM},
    {"MASK STENCIL", op::MASK},
    {"PREVIOUSCONTEXT PREVIOUSDICTIONARY", op::CONTEXT, op::PREVIOUS},
    {"BASICCONTEXT GLOBALCONTEXT BASICDICTIONARY GLOBALDICTIONARY", op::CONTEXT, op::BASIC},
    {"NEW\1CONTEXT NEW\1DICTIONARY", op::CONTEXT, op::SMALL},
    {"NEW\1SMALL\1CONTEXT NEW\1SMALL\1DICTIONARY", op::CONTEXT, op::SMALL},
    {"NEW\1LARGE\1CONTEXT NEW\1LARGE\1DICTIONARY", op::CONTEXT, op::LARGE},
    {":] COLLECTALL", op::COLLECT, op::DISCARD},
    {".] COLLECTFROMMARK", op::COLLECT, op::MARK},
    {".][. DISPERSEFROMMARK", op::DISPERSE, op::MARK},
    {"TRACEALL", op::TRACE, op::REST},
    {"STEPALL", op::STEP, op::REST},
    {"RUNALL", op::RUN, op::REST},
    {"TEXTEDIT", op::EDIT, op::TEXTREAD},
    {"TEXTCALL", op::CALL, op::TEXTREAD},

    // An operand comes with the word.
    circular("SIN SINUS", 1),
    circular("COS COSIN COSINUS", 2),
    circular("TAN TANGENS", 3),
    circular("ASIN ARCSIN", -1),
    circular("ACOS ACOSIN ARCCOS", -2),
    circular("ATAN ARCTAN", -3),
    circular("SINH", 5),
    circular("COSH COSINH", 6),
    circular("TANH", 7),
    circular("ASINH ARCSINH", -5),
    circular("ACOSH ACOSINH ARCCOSH ARCCOSINH", -6),
    circular("ATANH ARCTANH", -7),
    power("SQR SQUARE", 2),
    power("CBR CUBE", 3),
    power("SQRT", 0.5),
    power("CBRT", 1.0 / 3.0),
    with(Act::root, "ROOT", op::RECIPROCAL),
    with(Act::yield_to, "YIELDTO", op::YIELDTO),

    // Spellings that change the cell before them.
    derived("\xb0.\xab OUTERPRODUCT", op::OUTERPRODUCT, 74),
    derived("\\\\ \xb0\xab\\ SCAN", op::SCAN, 79),
    derived("\\\\[] \xb0\xab\\[] SCANAXIS", op::SCANAXIS, 79),
    derived("\xb0\xab\xb2 SCANLASTAXIS", op::SCANLASTAXIS, 79),
    derived("// \xb0\xab/ REDUCE", op::REDUCE, 79),
    derived("//[] \xb0\xab/[] REDUCEAXIS", op::REDUCEAXIS, 79),
    derived("/-/ REDUCEROWS \xb0\xab\xb3 REDUCELASTAXIS", op::REDUCELASTAXIS, 79),
    derived("\xab/ REDUCENWISE", op::REDUCENWISE, 79),
    derived("\xab/[] REDUCENWISEAXIS", op::REDUCENWISEAXIS, 79),
    derived("\xab\xb3 REDUCENWISELASTAXIS", op::REDUCENWISELASTAXIS, 79),
    with(Act::if_yes, "?Y IF_YES", op::IF_YES),
    with(Act::if_no, "?N IF_NO", op::IF_NO),

    // Spellings that steer the scanner.
    with(Act::modifier, "WRAP", op::WRAP),
    with(Act::modifier, "REFLECT", op::REFLECT),
    with(Act::run_on, "RUN", op::RUN),
    with(Act::break_off, "BREAK", op::NIHIL),
    with(Act::built_in, "::", op::NIHIL),
    with(Act::end_batch, ". END", op::NIHIL),
    with(Act::close, "; FUNCTIONEND", op::FUNCTIONEND),
    with(Act::address, "@", op::NIHIL),
    with(Act::comment, "\" \xbc", op::NOOP),
    header(": NEADIC FUNCTION", -1),
    header("NILADIC", 0),
    header("MONADIC", 1),
    header("DYADIC", 2),
    header("TRIADIC", 3),
});
// clang-format on

// What needs no boundary byte behind it, so that anything may follow directly.
constexpr auto standing_alone =
    std::to_array<std::string_view>({"+", "-", "*", "/", "|", "^", "v", ":", ";", "@", ".", "\"",
                                     "\xbc", "**", "::", "!v", "!~^", "!~v", "RANDOMISE"});

consteval auto make_spellings() {
    auto made = make_words<count_words(meanings)>(meanings);
    for (Word& word : made.words)
        word.stands_alone = std::ranges::find(standing_alone, word.view()) != standing_alone.end();
    return made;
}

constexpr auto spellings = make_spellings();

static_assert(well_made(spellings));
static_assert(std::ranges::count_if(spellings.words, &Word::stands_alone)
              == std::ssize(standing_alone));

constinit Word no_bytes = make_word("", 0);
constinit Word closing = make_word(";", 0);
constinit Word line_end = make_word("\n", 0);

} // namespace

const Meaning& meaning_of(const Word& word) {
    return meanings[word.row];
}

std::span<const Word> all_spellings() {
    return spellings.words;
}

WordMatch find_spelling(Input& input, bool across_lines) {
    return match_word(input, 0, spellings, across_lines);
}

char* empty_spelling() {
    return no_bytes.text;
}
char* semicolon() {
    return closing.text;
}
char* line_end_spelling() {
    return line_end.text;
}

// Nothing ever writes a text with a negative count.
char* text_of(const Word& word) {
    return const_cast<char*>(word.text);
}

} // namespace tessor
