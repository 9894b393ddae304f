#include "text/TextParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "strings/StringCompare.h"

namespace {

// Lines are written between `/`, and blocks between `=`.
std::string shown(const ParserBlock* block) {
    if (block == nullptr) return "refused";
    std::string out;
    for (const std::string_view line : block->lines) out.append(line) += '/';
    return out;
}

std::string shown(bool done, const ParserBlocks& blocks) {
    std::string out = done ? "" : "failed";
    for (const ParserBlock* block : blocks) out += shown(block) + "=";
    return out;
}

ParserBlock* parsed(Parser* parser, std::string_view ruleText, std::string_view text) {
    SplitRule rule;
    return splitRuleRead(&rule, ruleText) ? parserParse(parser, &rule, text) : nullptr;
}

std::string cut(Parser* parser, std::string_view rule, std::string_view text) {
    return shown(parsed(parser, rule, text));
}

template <auto& kRead, auto& kCut, typename Rule>
std::string cutLines(Parser* parser, std::string_view ruleText, std::string_view text) {
    Rule rule;
    ParserBlocks made;
    if (!kRead(&rule, ruleText)) return "refused";
    return shown(kCut(parser, parsed(parser, "single-:/", text), &rule, &made), made);
}
constexpr auto cutBlocks = cutLines<blockingRuleRead, parserBlocking, BlockingRule>;
constexpr auto cutColumns = cutLines<splitRuleRead, parserVBlocking, SplitRule>;

std::string filtered(Parser* parser, std::string_view ruleText, std::string_view text) {
    FilterRule rule;
    ParserBlock* block = parsed(parser, "single-:/", text);
    if (!filterRuleRead(&rule, ruleText)) return "refused";
    return parserFilter(block, &rule) ? shown(block) : "failed";
}

struct TextParser : testing::Test {
    Owned<Parser> parser{parserCreate()};

    ParserBlock* lines(std::string_view text) { return parsed(parser.get(), "single-:/", text); }

    // Each row is a rule, `~`, a text, `~`, and what comes out.
    void check(std::string (*apply)(Parser*, std::string_view rule, std::string_view text),
               std::initializer_list<std::string_view> rows) {
        for (const std::string_view row : rows) {
            const size_t first = row.find('~');
            const size_t last = row.rfind('~');
            const std::string_view text = row.substr(first + 1, last - first - 1);
            EXPECT_EQ(row.substr(last + 1), apply(parser.get(), row.substr(0, first), text)) << row;
        }
    }
    void refuse(std::string (*apply)(Parser*, std::string_view rule, std::string_view text),
                std::initializer_list<std::string_view> rules) {
        for (const std::string_view rule : rules)
            EXPECT_EQ("refused", apply(parser.get(), rule, "a,b")) << rule;
    }
};

TEST_F(TextParser, CutsTextsByEachRule) {
    check(cut, {"single-:,x~a,b,~a/b/", "single-:,~,~/", "single-:,~a,,b~a//b/",
                "single+:,~a,,b~a,/,/b/", "single-:,~~", "SINGLE-::~a:b~a/b/",
                "string-:--~a---b--~a/-b/", "string+:--~a--b~a--/b/",
                "string-:longer than~abc~abc/", "size:2~abcde~ab/cd/e/", "size:4294967295~abc~abc/",
                "size:-1~abc~abc/", "multi-:,|;~a;b,;c~a/b//c/", "multi-:ab|abc~xabcx~x/cx/",
                "multi-:abc|ab~xabcx~x/x/", "multi-:b||~abc~a/c/", "multi+:ab|bc~xabcx~xabc/x/",
                "multi+:bc|ab~xabcx~xab/cx/", "multi+:c|ab|zz~abcab~ab/c/ab/"});
    refuse(cut, {"", ":", "single-", "single- :,", " single-:,",
                 "single-:", "string+:", "multi-:", "multi+:||", "size:", "size:0", "size:x",
                 "colsize:", "pos:", "colsize:5", "pos:5", "line+:x"});
}

TEST_F(TextParser, MakesBlocksOfLines) {
    check(cutBlocks,
          {"single+:x*~x1/a/x2/~x1/x2/=", "single-:x*~x1/a/x2/b~a/b/=", "single-:~a//b~a/b/=",
           "single+:x~a/b~", "multi+:x*~a/x1/x2/b/x3~x1/x2/=x3/=", "multi-:x*~a/x1/x2/b/c~a/=b/c/=",
           "sep]:x*~a/x1/x2/b~a/x1/=x2/=b/=", "sep[:x*~a/x1/b/x2/~a/=x1/b/=x2/=",
           "sep[:x*~x0/x1~x0/=x1/=", "sep-:~a///b~a/=b/=", "Sep-:X~a/X/x~a/=x/=",
           "count:2~a/b/c/d/e~a/b/=c/d/=e/=", "count:1~~"});
    refuse(cutBlocks, {"single+:", "multi+:", "multi-:", "sep]:", "sep[:", "count:", "count:0",
                       "count:x", "sep-", "size:3", "sep:x"});
}

TEST_F(TextParser, MakesBlocksOfColumns) {
    check(cutColumns,
          {"single-:;~a;b;c/d//e;;f~a/d/e/=b//=c/f/=", "size:2~abc/d~ab/d/=c/=",
           "multi+:;|,~a;b,/c~a;/c/=b,/=", "colsize:2|0|2~abcdef/a/~ab/a/=/=cd/=",
           "colsize:0|9~abc/d~//=abc/d/=", "pos:2|4~abcdef/abc/a~ab/ab/a/=cd/c//=ef///=",
           "pos:3|1|5|5~abcdefg~abc/=/=de/=/=fg/=", "pos:-1|x~ab//~ab/=/=/="});
    refuse(cutColumns, {"colsize:", "pos:", "size:0", "sep-:x"});
}

TEST_F(TextParser, FiltersLines) {
    check(filtered,
          {"line+:#*~#a/b/#~b/", "LINE-:#*~#a/b/#~#a/#/", "line+:~a//b~a/b/", "line-:*~a//b~a//b/",
           "segment+:1:2:bc~abc/ab/abd/xbcd~ab/abd/", "segment-:1:2:bc~abc/ab/abd/xbcd~abc/xbcd/",
           "segment-:0:3:a:*~a:b/abc/a:bc~a:b/a:bc/", "segment+:1:0:~a//bc~/",
           "segment+:1:4294967295:*~abc/a~abc/a/", "segment-::1:a~abc/ba~abc/"});
    refuse(filtered, {"line+", "line:x", "segment+:", "segment-:1", "segment+:1:2", "x+:1:2:3"});
}

TEST_F(TextParser, SortsAsSignedBytesOnceUntilLinesChange) {
    std::mt19937 random(7);
    for (const int alphabet : {2, 3, 256}) {
        std::string text = "\x80/\x80\x80/a/a\x80/aaaaaaa/aaaaaaaa/aaaaaaa\x80/";
        for (int line = 0; line < 3000; ++line, text += '/')
            for (unsigned at = random() % 40; at > 0; --at)
                text +=
                    static_cast<char>((random() % alphabet ? 'a' : 128) + random() % alphabet / 2);
        ParserBlock* block = lines(text);
        std::vector<std::string_view> expected(block->lines.begin(), block->lines.end());
        std::sort(expected.begin(), expected.end(),
                  [](auto a, auto b) { return stringCompareViews(a, b) < 0; });
        const auto isSorted = [&] {
            return std::equal(expected.begin(), expected.end(), block->lines.begin(),
                              block->lines.end());
        };
        EXPECT_TRUE(parserSort(block, false) && isSorted());
        EXPECT_TRUE(parserSort(block, true) && isSorted()) << "counts as sorted";
        FilterRule none;
        ASSERT_TRUE(filterRuleRead(&none, "line+:none") && parserFilter(block, &none));
        std::reverse(expected.begin(), expected.end());
        EXPECT_TRUE(parserSort(block, true) && isSorted());
    }
}

}  // namespace
