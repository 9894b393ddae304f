#include "ScriptCases.h"

// Values, pointers and result variables: what statements make of them.

namespace {

using LanguageCases = ScriptCases;

constexpr char kVariables[] =
    "var u x y\nlist l k\nfile f\nparser i\nvector v w\nset s\nmap m\ntree t\nnumber n\nstring a b "
    "c ok\npointer p q\n";

TEST_F(LanguageCases, ValuesAndTheirTypes) {
    check(casesOf(R"(
show ( "[" . n . a . l . v . s . m . "]" ); show ( "x" + t + "y" + u ); show ( i + "x" );
  show ( ! l . ! m . ! t . ! i . ! f ) -> [0] | xy | x | 11101
show ( "" . &sizeof t . " " . &sizeof i . " " . &sizeof f ); show ( ( u | 1 ) . ( u & 1 ) . ( t |
  0 ) . ( u < l ) . ( u == x ) ); echo ( l == u . u == l ) -> 0 4294967295 4294967295 | 10011 |
  evaluateConcat: Failed to get left operand. Make sure it is defined! |
  @Evaluate: Failed to evaluate expression | @Echo: Failed to get string value
eval ( x = 3 ); eval ( a = x ); is a "number"; OK; eval ( n = l ); is n "list"; OK;
  show ( ok . "[" . n . "]" ); eval ( n = "t" ); eval ( n = n ); show ( n . "" ) -> 11[] | t
eval ( n = 1 ); eval ( y = n = x ) -> scriptObjectDefaultAssign: INTERNAL ERROR! |
  evaluateAssign: Failed to assign | @Evaluate: Failed to evaluate expression |
  Parameter 1 is not (properly) defined
eval ( n = 2 ); eval ( n = f ); is n "file"; OK; show ( ok . &bool n ); if file:;
  show ( "a name is true" . "" ); end -> 10 | a name is true
eval ( n = 5 ); retype n "string"; show ( "[" . n . "]" ); retype n "number"; show ( n . "" );
  eval ( n = 5 ); retype n "number"; retype n "nonsense"; OK; show ( n . ok ) -> [] | 0 | 50
retype n "undef"; OK; retype a "ref"; OK; show ( ok . ( n | 1 ) ); echo n -> 001 |
  @Echo: Failed to get string value
retype n "expr"; echo n -> @Evaluate: Invalid expression | @Echo: Failed to get string value
eval ( a = "four" ); size a n; show ( n . "" ); size n n; size l n; default n 7; show ( n . "" );
  default n nosuch; default a nosuch; eval ( a = "" ); default a "std"; show ( a . n ) -> 4 | 7 |
  std7
is u "undef"; OK; show ( ok . "" ); is nosuch.size "file" -> 0 |
  Parameter 1 is not (properly) defined
)"),
          kVariables);
}

TEST_F(LanguageCases, Pointers) {
    check(casesOf(R"(
setptr p n; eval ( p = 5 ); show ( n . p . p * 2 ); eval ( p += 1 ); eval ( p .= "!" );
  show ( n . "" ); eval ( n = 1 ); setptr q p; eval ( q = 2 ); show ( n . p . q ) -> 5510 | 6! |
  222
setptr p n; eval ( n = 9 ); eval ( x = p ); is x "pointer" 0; OK; setptr p a; eval ( p = "z" );
  show ( x . &num x . a . ok ); eval ( b = p ); show ( b . "" ) -> z0z1 | z
for ( n = 0 ) ( n < 2 ) ( ++ n ); setptr mine n; end; echo mine -> @Echo: Failed to get string value
setptr made n; show ( made + 1 . "" ); is made "pointer" 0; OK; is made "pointer"; OK;
  is made "number"; OK; is n "number" "no"; OK; show ( ok . "" ) -> 1 | 1011
if 1; setptr p n; eval ( p = 4 ); show ( p + 1 . "" ); end; eval ( p = 6 );
  if ( p == 6 & &sizeof p == 1 ); show ( "aimed" . n ); end; echo ( p + 1 ) -> 5 | aimed6 |
  evaluatePlus: Invalid left operand pointer | @Evaluate: Failed to evaluate expression |
  @Echo: Failed to get string value
if 1; number local; setptr p local; eval ( p = 1 ); end; show ( "" . &sizeof p . ( p |
  0 ) . ( p & 1 ) ); echo p -> 429496729500 | @Echo: Failed to get string value
if 1; number local; setptr p local; end; eval ( p = 2 ) -> evaluateAssign: Failed to assign |
  @Evaluate: Failed to evaluate expression | Parameter 1 is not (properly) defined
show ( "" . &sizeof p . ( p | 0 ) . ( p & 1 ) ); eval ( p = 5 ); is p "number"; OK;
  eval ( p = 7 ); is p "number"; OK; show ( ok . "" ); echo ( p + 0 ) -> 429496729500 | 11 |
  evaluatePlus: Invalid left operand pointer | @Evaluate: Failed to evaluate expression |
  @Echo: Failed to get string value
for ( n = 0 ) ( n < 2 ) ( ++ n ); eval ( q = 1 ); setptr q n; show ( q . "" ); end -> 0 | 1
new "nonsense" p; OK; new "list" p; show ( ok . &sizeof p ); new "string" p; eval ( p = "t" );
  setptr q p; eval ( q .= "s" ); show ( p . &sizeof p ); new "pointer" p; is p "pointer"; OK;
  show ( ok . "" ) -> 00 | ts2 | 01
setptr p p; show ( ( p | 0 ) . "" ); echo p -> 0 | @Echo: Failed to get string value
setptr p p; eval ( q = p ); show ( ( q | 0 ) . "" ); echo ( p . "" ) ->
  evaluateAssign: Failed to assign | @Evaluate: Failed to evaluate expression |
  Parameter 1 is not (properly) defined
)"),
          kVariables);
}

TEST_F(LanguageCases, ResultsOfStatements) {
    check(casesOf(R"(
retype success "string"; show ( success . "" ); eval ( error = "was text" );
  show ( "[" . error . "]" ); retype success "list"; if success; show ( "no" . "" ); end;
  retype success "undef"; show ( ( success | 1 ) . "" ) -> 0 | [0] | 1
retype success "pointer"; show ( "" . n ); retype success "number" ->
  scriptObjectSetRefValue: Invalid reference name "1" |
  scriptObjectSetRefValue: Invalid reference name "0" | 0 |
  scriptObjectSetRefValue: Invalid reference name "1" |
  scriptObjectSetRefValue: Invalid reference name "0"
)"),
          kVariables);
}

// `continue` is no result, the end of a loop is one; a parameter of such a name is not
// the variable, and a pointer finds it.
TEST_F(LanguageCases, ResultsThatAreSeen) {
    functions_ +=
        "function own success\nis success \"list\"\nif success\nlogerror ( \"\" . success "
        ")\nend\nend\n";
    check(casesOf(R"(
eval n; for ( n = 0 ) ( ( a .= success ) & n < 2 ) ( a .= success . ++ n ); is n "list"; continue; end;
  if success; eval ( a .= " " ); end; is n "number"; for 0 ( ( a .= success ) & n > 0 ) ( -- n );
  continue; end; show ( a . "" ) -> 1010020 111
call "own" 7 -> 7
is n "number"; eval ( n = success + error ); show ( n . "" ); setptr p success; is n "number";
  eval ( a = p . "" ); show ( a . "" ); is n "list"; eval ( a = p . "" ); if success;
  show ( "done" . "" ); end -> 0 | 0 | done
setptr p success; is n "list"; if p; show ( "no" . "" ); end; is n "number"; if p; show ( p . "" );
  end -> 0
)"),
          kVariables);
}

// An engine that sets only what a script can see still sets each.
TEST_F(LanguageCases, EachResultVariableAlone) {
    const struct {
        std::string name, sets, clears;
    } cases[] = {{"success", "eval n", "is n \"list\""},
                 {"error", "echo u", "eval n"},
                 {"invalid_args", "echo u", "vecset v 0 1"},
                 {"out_of_memory", "vecset v 0 1", "echo u"}};
    for (const auto& [name, sets, clears] : cases) {
        const std::string look = "\nif " + name + "\nlogerror ";
        ASSERT_TRUE(parse("function main\nnumber n\nvar u\nvector v\n" + sets + look +
                          "\"set\"\nend\n" + clears + look + "\"kept\"\nend\nend\n"));
        run("main");
        EXPECT_NE(heard.npos, heard.find("set\n")) << name;
        EXPECT_EQ(heard.npos, heard.find("kept\n")) << name;
    }
}

TEST_F(LanguageCases, BranchesAndLoops) {
    check(casesOf(R"(
eval ( x = 0 ); while ( ++ n <= 4 ); if ( n == 1 ); eval ( a .= "if " ); end;
  elseif ( ++ x & n == 2 ); eval ( a .= "elseif " ); end; elseif ( ++ x & n == 3 );
  eval ( a .= "second " ); end; else; eval ( a .= "else " ); end; end; show ( a . x ) ->
  if elseif second else 5
for ( n = 0 ) ( n < 9 ) ( ++ n ); if ( n == 1 ); if 0; end; eval ( a .= "if " ); end; elseif ( n == 3 );
  while 1; break; end; continue; end; elseif ( n == 6 ); if 0; end; else; break; end; end; else;
  if ( n != 5 ); continue; end; eval ( a .= "else " ); end; eval ( a .= n . " " ); end;
  show ( a . n ) -> if 1 else 5 6
for ( n = 0 ) ( n < 5 ) ( n += 1 ); if ( n == 1 ); continue; end; if ( n == 4 ); break; end;
  eval ( a .= "i" . n ); for ( x = 0 ) 1 ( ++ x ); if ( x < 2 ); continue; end; break; end;
  eval ( a .= "j" . x ); end; show ( a . n ) -> i0j2i2j2i3j24
eval ( n = 3 ); while n; eval ( a .= n ); eval ( -- n ); end; for 1 "" ( x = 0 );
  eval ( a .= "never" ); end; eval ( b = "x" ); for 1 b ( b = "" ); eval ( a .= "once" ); end;
  while ""; eval ( a .= "never" ); end; show ( a . "" ) -> 321once
)"),
          kVariables);
}

// What each round has for itself, and what ends with it, however the engine keeps and
// uses again what it ran in: literals, the script's name, locals, targets of pointers.
TEST_F(LanguageCases, RoundsOfTheirOwn) {
    check(casesOf(R"(
for ( n = 0 ) ( n < 2 ) ( ++ n ); while ( ++ 0 < 3 ); vecappend v ( "a" .= "b" );
  eval ( a .= ++ 5 . 5 . ( 5 = 7 ) . 5 . "," ); end; end; while ( &sizeof ( "a" .= "b" ) < 4 );
  eval ( a .= "." ); end; show ( a . v ) -> 6575,6575,6575,6575,..ab;ab;ab;ab
for ( n = 0 ) ( ( ( p = "5" ) | 1 ) & n < 2 ) ( ++ n ); logerror p; eval ( p = "7" ); end -> 5 | 7
for ( n = 0 ) ( n < 2 ) ( ++ n ); eval ( a .= &sizeof scriptname > 9 ); eval ( scriptname = "s" );
  if 1; eval ( a .= &sizeof scriptname > 9 ); retype scriptname "number"; eval ( a .= scriptname );
  end; eval ( a .= scriptname . "," ); end; show ( a . "" ) -> 110s,110s,
for ( n = 0 ) ( n < 2 ) ( ( n += 1 ) + local ); number local; list own; listappend own n;
  show ( ++ local . &sizeof own ); end -> 11 | @Evaluate: Undefined variable in expression | 11 |
  @Evaluate: Undefined variable in expression
for ( n = 0 ) ( n < 2 ) ( a .= ++ n . &sizeof p . "/" ); number local; if ( n == 0 );
  setptr p local; end; eval ( a .= &sizeof p . "," ); end; show ( a . "" ) ->
  1,14294967295/4294967295,24294967295/
for ( n = 0 ) ( n < 2 ) ( ++ n ); if n; echo ( q + 0 ); end; setptr q n; end ->
  evaluatePlus: Invalid left operand pointer | @Evaluate: Failed to evaluate expression |
  @Echo: Failed to get string value
)"),
          kVariables);
}

// One and the same statement, each time with a value of another type; a text that grows
// where it is does so for nobody else.
TEST_F(LanguageCases, KindsUnderOneStatement) {
    check(casesOf(R"(
strtovector "1;2" ";" v; vecappend w 10 "10" l v "" 9; for ( n = 0 ) ( n < 6 ) ( ++ n ); vecget w n x;
  show ( ( x < 9 ) . ( x == "9" ) . ( x >= 9 ) . ( x & 1 ) . ( ! x ) . x ); end ->
  0011010 | 1001010 | 10001 | 100101;2 | 10001 | 011109
vecappend w 5 "5" -0.5 l; for ( n = 0 ) 1 ( ++ n ); vecget w n x; eval ( b = ( x += 1 ) . "," . x );
  show ( b . "" ); end -> 6,6 | 51,51 | 0.5,0.5 | evaluateAddassign: Failed to assign |
  @Evaluate: Failed to evaluate expression | Parameter 1 is not (properly) defined
setptr p n; eval ( n = 10 ); eval ( x = p ); show ( ( p < 9 ) . ( x < 9 ) . ( x == p ) . "," . ( x + 1 ) .
  ( ++ x ) . ( x -= 1 ) . n ) -> 011,11111010
eval ( a = "a text too long to lie in its variable" ); eval ( b = a ); vecappend v a; eval ( a .= "!" );
  show ( "" . v ); show ( b . "" ); show ( a . "" ) -> a text too long to lie in its variable |
  a text too long to lie in its variable | a text too long to lie in its variable!
eval ( a = "ab" ); show ( a . ( a .= "c" ) . a ); show ( ( b = a .= "d" ) . "" ); eval ( a .= a . b );
  show ( a . "," . b . "," . ( ( a = b ) . "x" ) . "," . a . b ); eval ( a .= a .= "e" );
  show ( a . "" ) -> abcabcabc | abcd | abcdabcdabcd,abcd,abcdx,abcdabcd | abcdeabcde
)"),
          kVariables);
}

}  // namespace
