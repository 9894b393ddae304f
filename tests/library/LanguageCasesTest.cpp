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
)"),
          kVariables);
}

TEST_F(LanguageCases, BranchesAndLoops) {
    check(casesOf(R"(
eval ( x = 0 ); while ( ++ n <= 4 ); if ( n == 1 ); eval ( a .= "if " ); end;
  elseif ( ++ x & n == 2 ); eval ( a .= "elseif " ); end; elseif ( ++ x & n == 3 );
  eval ( a .= "second " ); end; else; eval ( a .= "else " ); end; end; show ( a . x ) ->
  if elseif second else 5
for ( n = 0 ) ( n < 3 ) ( n += 1 ); if ( n == 1 ); end; else; if ( n == 2 ); eval ( a .= "2" );
  end; else; eval ( a .= "else " ); end; end; end; show ( a . "" ) -> else 2
for ( n = 0 ) ( n < 5 ) ( n += 1 ); if ( n == 1 ); continue; end; if ( n == 4 ); break; end;
  eval ( a .= "i" . n ); for ( x = 0 ) 1 ( ++ x ); if ( x < 2 ); continue; end; break; end;
  eval ( a .= "j" . x ); end; show ( a . n ) -> i0j2i2j2i3j24
while ( ++ 0 < 3 ); eval ( a .= "r" ); end; while ( ++ 0 < 3 ); eval ( a .= "g" ); end;
  for ( n = 0 ) ( n < 2 ) ( ++ n ); number local; eval ( a .= ++ 5 . "," );
  eval ( a .= ++ 5 . ++ local . "," ); while ( ++ 0 < 3 ); eval ( a .= ++ 10 . " " ); end; end;
  show ( a . "." ) -> rrgg6,61,11 11 6,61,11 11 .
eval ( n = 3 ); while n; eval ( a .= n ); eval ( -- n ); end; for 1 "" ( x = 0 );
  eval ( a .= "never" ); end; eval ( b = "x" ); for 1 b ( b = "" ); eval ( a .= "once" ); end;
  while ""; eval ( a .= "never" ); end; show ( a . "" ) -> 321once
)"),
          kVariables);
}

}  // namespace
