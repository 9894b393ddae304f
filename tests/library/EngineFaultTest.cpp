#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "ScriptEngine3/ScriptEngine.h"
#include "containers/Memory.h"
#include "logger/MessageExpand.h"
#include "platform/machine.h"

// Memory that runs out at any moment of a script's life: nothing breaks,
// nothing leaks, and the engine ends as usual.

namespace {

// The declarators, the operators, calls, loops and failures, densely. Global
// statements run once in a process, so nothing hangs on them here.
constexpr const char* kScript = R"(
string file.level
function add first second
  eval ( total = first + second )
  return ( total > 3 )
end
function deep n
  if ( n > 0 )
    call "deep" ( n - 1 )
  end
  else
    echo n
  end
end
function main
  global total
  var v
  number n i
  string s
  file f
  list l
  vector w
  set t
  map m
  tree r
  parser a
  config c
  pointer p q
  for ( i = 0 ) ( i < 3 ) ( i += 1 )
    string inner
    call "add" i ( i * 2 + 1 )
    eval ( inner .= "piece of a longer text that needs memory " . i )
    if ( inner == "x" )
      break
    end
    elseif ( success )
      continue
    end
    else
      eval ( ++ 5 )
    end
  end
  eval ( s = "a" . 1.5 . "\"b\"" + s )
  eval ( s += "tail of a text that is long enough to need memory of its own" )
  eval ( n = 2 ^ 3 * 4 / 5 - 6 % 4 &max 1 &min 7 &avg 2 )
  eval ( n += 1 )
  eval ( n -= 1 )
  eval ( n *= 2 )
  eval ( n /= 2 )
  eval ( n ^= 2 )
  eval ( n %= 7 )
  eval ( v = ( n < 1 ) | ( n > 2 ) & ( n <= 3 ) ? "yes" : ! ( n >= 4 ) )
  eval ( v = &sizeof s + &int "12" + &num "1.5" + &bool s + &sqrt 9 )
  eval ( v = "abc" &match "a*" )
  eval ( v = "abcabcabcabcabcabcabcabcabcabc" &remove "b" )
  eval ( v = 1 &of "abc" )
  eval ( v = &esc "a\\nb" . &base "x\\y" . &fexists "no" )
  setptr p s
  eval ( p .= " written through a pointer, a rather long text once again" )
  new "list" q
  new "string" q
  eval ( q = "text of an object without a name, long enough to be outside" )
  eval ( q += q )
  eval ( l = l )
  eval ( w = l )
  retype v "map"
  is v "map"
  size s n
  default s "x"
  echo ( s . v )
  print n
  error "e"
  call "deep" 4
  eval ( p == q )
  exit 3
end
)";

constexpr char kScriptFile[] = "EngineFaultTest.qcs";

int logLevel = kLogTrace;
int errors = 0;

// Does what a listener does with a message. The records of a run's course are
// too many to be expanded in each of its lives.
bool hear(void*, int level, LogForm form, const char* format, const LogArg* args, uint32_t count) {
    if (level > kLogError) return true;
    ++errors;
    Owned<String> text(messageExpand(format, form, args, count));
    return static_cast<bool>(text);
}

class EngineFault : public testing::Test {
  protected:
    void SetUp() override {
        osSetEnvironment("QUOREL_REGISTRY", "EngineFaultTest.db");
        std::ofstream(kScriptFile, std::ios::binary) << kScript;
        logAddGlobalListener(&errors, hear, &logLevel);
        // Chunks of few records: objects ask for memory often, and can be refused it.
        scriptObjectPoolRelease();
        poolInit(&scriptObjectPool, kPoolChunk / 16);
    }
    void TearDown() override {
        logShutdown();
        remove(kScriptFile);
    }

    // From nothing to the end of a run; true when that was reached. Any other
    // end has been reported.
    static bool live() {
        errors = 0;
        Owned<String> path(stringFromText(kScriptFile));
        ScriptEngine* engine = scriptEngineCreate();
        const bool made = engine != nullptr;
        const bool ran = scriptEnginePrepareEngine(engine) &&
                         scriptEnginePrepareRun(engine, path.get()) &&
                         scriptEngineRun(engine, nullptr);
        EXPECT_TRUE(ran || !made || !path || errors > 0);
        scriptEngineDestroy(&engine);
        EXPECT_EQ(nullptr, engine);
        scriptObjectPoolRelease();
        return ran;
    }
};

}  // namespace

TEST_F(EngineFault, AnyRequestForMemoryMayFail) {
    ASSERT_TRUE(live());
    const unsigned long long before = memRequestCount();
    ASSERT_TRUE(live());
    const auto requests = static_cast<long long>(memRequestCount() - before);
    for (const bool allLater : {false, true})
        for (long long at = 0; at < requests && !HasFailure(); ++at) {
            SCOPED_TRACE(at);
            memFailAfter(at, allLater);
            live();
            memFailAfter(-1, false);
        }
    EXPECT_TRUE(live());
}
