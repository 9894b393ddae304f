#include <gtest/gtest.h>

#include <random>
#include <string>

#include "containers/Memory.h"
#include "text/RecordDiff.h"

namespace {

// The entries with "; " between them, the counts short, a slash for each line feed
// and a blank for each tab, or "failed".
std::string diff(std::string_view left, std::string_view right, std::string_view ruleText) {
    const Owned<String> l(stringFromView(left)), r(stringFromView(right));
    const Owned<String> text(stringFromView(ruleText));
    const Owned<DiffRules> rules(diffCompile(text.get()));
    Vector* out = vectorCreate();
    const int64_t differences = diffRun(l.get(), r.get(), rules.get(), out);
    EXPECT_EQ(differences, int64_t{vectorSize(out)} - 1);
    std::string all = differences < 0 ? "failed" : "";
    for (uint32_t at = 0; at < vectorSize(out); ++at)
        all.append(at == 0 ? "" : "; ").append(stringText(static_cast<String*>(out->data[at])));
    vectorDestroyWith(&out, stringDestroyElement);
    const size_t words = all.find(" diff of total ");
    if (words < all.size())
        all = all.substr(0, words) + " of " + all.substr(words + 15, all.size() - words - 25);
    for (char& c : all) c = c == '\n' ? '/' : c == '\t' ? ' ' : c;
    return all;
}

std::string repeated(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

struct Case {
    std::string_view left, right, rules, expected;
};

void check(std::initializer_list<Case> cases) {
    for (const auto& [left, right, rules, expected] : cases)
        EXPECT_EQ(expected, diff(left, right, rules)) << left << " / " << right << " / " << rules;
}

TEST(RecordDiff, ReadsRules) {
    const std::string_view second = "orig (1): a|1/new  (1): a|2/DIFF (field) 2; 1 of 1";
    const std::string_view whole = "0 of 1";
    check({
        {"a;1", "a;2", "sep=S:;+", second},
        {"a;1", "a;2", "||what=ever|sep='S:;'+|sep", second},
        {"a|1", "a|2", "sep='S:|+'", second},
        // A separator is not protected so, and a text to cut at that is empty cuts nothing.
        {"a|1", "a|2", "sep=S:\\|+", "orig (1): a|1/new  (1): a|2/DIFF (field) 1; 1 of 1"},
        {"a,1", "a,2", "sep=\"S:','+\"", second},
        {"a'1", "a'2", "sep=\"S:\\\\'+\"", second},
        {"a'1", "a'2", "sep='S:\\\\\\'+'", second},
        {"a\\1", "a\\2", "sep=S:\\\\\\\\+", second},
        {"a+1", "a+2", "sep=S:++", second},
        {"a1", "a2", "sep=C:1+", second},
        {"a1", "a2", "sep=C:1,,C:4294967295", second},
        {"a;1", "a;2", "sep=S:;", whole},  // the rest of the line takes no part
        {"a;1", "a;2", "sep=", whole},
        {"a;1", "a;2", "sep=S:;+|block=1,2", whole},
        {"a;1.001", "a;1.004", "num=2|declevel=2|sep=S:;+", whole},
        {"a; 1e2x", "a;100", "num=2|declevel=0|sep=S:;+", whole},
        {"a;.5", "b;0.5", "num=2|declevel=0|sep=S:;+",
         "orig (1): a|0.500000/new  (1): b|0.500000/DIFF (field) 1; 1 of 1"},
        {"1;1e300", "2;1e300", "block=1|num=2|sep=S:;+|declevel=4294967295", whole},
        {"#a\nb\nc;1", "c;1\nb1", "exclude=#*|include=b|exclude=b*|sep=S:;+",
         "orig (2): b/new  (1): c|1/DIFF (field) 1 2; 1 of 2"},
        {"", "\n", "sep=S:;+", "new  (1): /MISSING in original; 1 of 1"},
        {"", "", "", "0 of 0"},
        {"a", "a", "exclude=*", "0 of 0"},
        {"a", "a", "lines=1", "failed"},
        {"a", "a", "lines=0|sep=S:;", "failed"},
        {"a", "a", "sep=C:0+", "failed"},  // would cut for ever
        {"a", "a", "sep=X:9+", "failed"},
        {"ab", "ab", "sep=C:1,S:+", "failed"},
    });
}

TEST(RecordDiff, CutsRecordsOfSomeLines) {
    check({
        // A separator at the line's start is none, and one at its end ends no field.
        {";a;b\nc;;d;", "", "sep=S:;+",
         "orig (1): ;a;b/MISSING in new; orig (2): c||d/MISSING in new; 2 of 2"},
        // Lines beyond the last `sep` use the last one, `block` and `num` their own line.
        {"ab\nc;1\nd;2\ne", "xb\ny;1.5\nd;2\ne",
         "lines=3|sep=C:1+|sep=S:;+|block=|block=1|num=|num=2|declevel=1",
         "orig (1):/ a|b/ |1.0/ d|2/new  (1):/ x|b/ |1.5/ d|2/DIFF (line:field) 1:1 2:2; 1 of 2"},
        // An excluded line has used its place up; a record without lines is none.
        {"#\nb;2\n#\n#\nc;3", "a;1\nb;2\n\nc;3;4", "lines=2|exclude=#*|sep=C:9|sep=S:;+",
         "orig (1):/ b|2/new  (3):/ / c|3|4/DIFF (line:field) 1:1 1:2 2:; orig (5):/ c;3/new  "
         "(1):/ a;1/ b|2/DIFF (line:field) 1:1 2:; 2 of 2"},
    });
}

TEST(RecordDiff, PairsEachRecordWithItsNearest) {
    check({
        // What is gone stands against the record that was nearest, though that one is the same.
        {"a;1\na;2", "a;2", "sep=S:;+", "orig (1): a|1/new  (1): a|2/DIFF (field) 2; 1 of 2"},
        // A record that is not on the other side is sought from the middle on.
        {"x;9", "a;1\nb;1\nc;1\nd;1", "sep=S:;+",
         "orig (1): x|9/new  (3): c|1/DIFF (field) 1 2; new  (1): a|1/MISSING in original; new  "
         "(2): b|1/MISSING in original; new  (4): d|1/MISSING in original; 4 of 4"},
        // A nearer one takes the partner over, an equally near one goes elsewhere.
        {"a;1;9\nb;1;1", "m;1;1", "sep=S:;+",
         "orig (1): a|1|9/MISSING in new; orig (2): b|1|1/new  (1): m|1|1/DIFF (field) 1; 2 of 2"},
        {"a;1;1\nb;1;1", "m;1;1\nn;2;2", "sep=S:;+",
         "orig (1): a|1|1/new  (1): m|1|1/DIFF (field) 1; orig (2): b|1|1/new  (2): n|2|2/DIFF "
         "(field) 1 2 3; 2 of 2"},
        // Bytes above 127 come before the others.
        {"\xe4", "z\n\xe4\n", "sep=S:;", "new  (1): z/MISSING in original; 1 of 2"},
    });
    // Equal records go from the middle outward; from 38 on they have turned round.
    EXPECT_EQ("new  (38): a/MISSING in original; 1 of 38",
              diff(repeated(37, "a\n"), repeated(38, "a\n"), "sep=S:;+"));
    EXPECT_EQ("new  (1): a/MISSING in original; 1 of 37",
              diff(repeated(36, "a\n"), repeated(37, "a\n"), "sep=S:;+"));
    // The search ends 500 places away.
    const std::string most = diff(repeated(2000, "a\n"), repeated(2000, "a\n"), "sep=S:;+");
    EXPECT_EQ("1998 of 2999", most.substr(most.rfind("; ") + 2));
}

TEST(RecordDiff, EndsOnAnyInput) {
    const std::string line = repeated(500000, "a;");
    EXPECT_EQ("0 of 1", diff(line, line, "sep=S:;+"));
    EXPECT_EQ("failed", diff(line, line, "sep=S:;+,S:+|lines=0"));
    EXPECT_EQ("0 of 1", diff(line, line, "sep='" + line));
    std::mt19937 random(5);
    const std::string keys[] = {"exclude=",  "include=", "lines=", "sep=", "block=", "num=",
                                "declevel=", "S:",       "C:",     "|",    ",",      "'",
                                "\\",        "+",        "\n",     "a"};
    for (int round = 0; round < 3000; ++round) {
        std::string text[3] = {"", "", "sep=S:;+|"};
        for (std::string& each : text)
            for (unsigned left = random() % 40; left > 0; --left)
                each += random() % 2 != 0 ? keys[random() % std::size(keys)]
                                          : std::string(1, static_cast<char>(random()));
        diff(text[0], text[1], text[2]);
    }
}

TEST(RecordDiff, LeavesTheResultAloneWhenMemoryRunsOut) {
    const Owned<String> left(stringFromText("a;1\nb;2\nc;3")), right(stringFromText("a;1\nb;4"));
    const Owned<String> text(stringFromText("exclude=#*|num=2|block=3|sep=S:;+,C:1"));
    int64_t differences = -1;
    for (long long allowed = 0; differences < 0 && allowed < 1000; ++allowed) {
        Vector* out = vectorCreate();
        memFailAfter(allowed, true);
        Owned<DiffRules> rules(diffCompile(text.get()));
        differences = diffRun(left.get(), right.get(), rules.get(), out);
        memFailAfter(-1, false);
        EXPECT_EQ(differences + 1, vectorSize(out)) << allowed;
        vectorDestroyWith(&out, stringDestroyElement);
    }
    EXPECT_EQ(2, differences);
}

}  // namespace
