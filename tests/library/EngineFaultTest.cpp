#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "ScriptEngine3/ScriptEngine.h"
#include "containers/Memory.h"
#include "logger/MessageExpand.h"
#include "platform/machine.h"
#include "threads/Thread.h"

// Memory that runs out at any moment of a script's life: nothing breaks,
// nothing leaks, and the engine ends as usual.

namespace {

// The declarators, the operators, calls, loops and failures, densely. Global
// statements run once in a process, so nothing hangs on them here.
constexpr const char* kScript = R"(
signature [NON:]
limit +u:$qrx +U:a;$qrx +t:2009-01-01;
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
  parserparse a "single-:;" "key=1;a line too long to lie in an object=2" s
  parserpad a s "a prefix " ""
  parsersort a s "decr"
  parserrecordize a s "string-:=" w
  recsort w
  strdiff "a=1\na=2" "a=2" "sep=S:'=',C:9|num=2|exclude=b" w
  parseritemize a s "multi-:=" m
  parservblocking a s "pos:1|3" w
  parserblocking a s "sep]:*key*" w
  parsergetlines a s l
  eval ( v = a )
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

// The commands on containers, texts and times. `out` is what all this comes to.
constexpr const char* kCommands = R"(
function begin
end
function ended
end
function main
  global out
  vector v
  list l
  set s
  map m
  tree t
  number n
  string a b
  var x
  pointer p
  eval ( out = "" )
  eval ( a = "a text; with parts; that need memory of their own" )
  strtovector a ";" v
  strtolist a ";" l
  strtoset a ";" s 1
  strtomap a "t" ";" m 0
  vecappend v ( a . n ) v l
  vecinsert v 1 m
  vecset v 0 a
  vecgetfirst v x
  while success
    vecsetcur v a
    vecgetnext v x
  end
  vecerase v 0 2
  vecgetlast v p
  listpush l a v
  listgetfirst l x
  while success
    listinsert l a
    listsetcur l v
    listerase l
    listgetnext l x
  end
  setinsert s a v l s
  setgetlast s x
  while success
    setgetnext s x
  end
  seterase s ( a . "" )
  mapset m a v
  mapset m ( a . 1 ) m
  mapgetfirst m x b
  while success
    mapsetcur m a
    mapgetnext m x b
  end
  maperase m ( "" . a )
  mapget m ( a . 1 ) x
  treeaddnode t "" "node"
  treeaddnode t "node" "below"
  treeset t "" a
  treeset t "node.below" m
  treecopynode t t "node" "node.below"
  treegetsub t "node" v
  treeget t "node.below.node.below" x
  eval ( x = t )
  treeerase t "node"
  strreplace a ";" " and much more than that;"
  strsplit a ";" b x x
  strfind n a "memory"
  strsub a 3 30 b
  strinsert b 5 a
  strerase b 0 40
  stralign b "-" 0 200
  strmakelines b 20 1
  strupper a a
  strtrim a b
  strpatternmatch a "*MEMORY*"
  gmtime 1236866709 m
  localtime 1236866709 m
  timetostr 1236866709 x
  strtotime "3909-04-12T14:05:09Z" n
  mapclear m
  gmtime n m
  maketime m n
  eval ( out = a . b . l . s . m . v . n )
end
)";

// The commands on what lies outside: other programs, the registry, locks.
constexpr const char* kOutside = R"(
function settings
  global out
  number n
  string s w
  vector v
  setlock "EngineFaultTest" "wait"
  removelock "EngineFaultTest"
  setenv "EngineFaultTest" "a text that is long enough to need memory of its own"
  getenv "EngineFaultTest" s
  setreg "HKEY_CURRENT_USER\\EngineFaultTest\\below" "text" "str" s w
  getreg "HKEY_CURRENT_USER\\EngineFaultTest\\below" "TEXT" "str" s w
  getreg "HKEY_CURRENT_USER\\EngineFaultTest" "none" "num" n w
  getregsubkeys "HKEY_CURRENT_USER\\EngineFaultTest" v w
  delregvalue "HKEY_CURRENT_USER\\EngineFaultTest\\below" "text" w
  delregkey "HKEY_CURRENT_USER\\EngineFaultTest" w
  setglobreg "EngineFaultTest" s
  getglobreg "EngineFaultTest" s
  delglobreg "EngineFaultTest"
  eval ( out = s . n . v . w )
end
function run
  global out
  number code
  string s e w
  eval ( out = "" )
  pipeexec "\")" PLAINCAST_CHILD R"(\"" "out a err b exit 3" 20000 s e code w
  eval ( out = s . e . code )
end
function look
  global out
  number n code
  string w
  vector v
  map m
  exec "no such program" "" 20000 code w
  spawn "no such program" "" w n code
  getpid n
  isrunning n
  stop 0 n
  getprocessinfo n m
  getrunningprocesses v
  eval ( out = w )
end
)";

// A listener, both ends of a connection, and all that passes without an answer. No
// step waits for what a step that failed has not sent.
constexpr const char* kNetwork = R"(
function begin
  global port near far
  getpid port
  eval ( port = 10000 + port % 20000 )
end
function main
  global out port near far
  number n
  number tries
  string s host
  list l
  map m
  eval ( out = "" )
  startlistener port
  sleep 20
  connect "127.0.0.1" port near
  if ( ! success )
    return 0
  end
  getnextconn port far host n
  while ( ! success & tries < 100 )
    sleep 1
    eval ( ++ tries )
    getnextconn port far host n
  end
  if ( ! success )
    return 0
  end
  tonetworkbyteorder 1 s
  fromnetworkbyteorder s n
  sendnumber near 2.5
  recvnumber far n
  sendraw near "\a0000023a text of its own, long\a0000005@list\a0000001\a0000020an element of a list" 80
  if success
    recvstring far s
  end
  if success
    recvlist far l
  end
  sendraw near "\a0000004@map\a0000001\a0000001k\a0000020a value that is long" 57
  if success
    recvmap far m
  end
  sendraw near host 9
  recvraw far s 9
  eval ( out = "all " . s . l . m . n )
end
function ended
  global port near far
  closeconnection near
  closeconnection far
  endlistener port
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
        osSetEnvironment("QUOREL_LOCKS", "EngineFaultTest.locks");
        // A new record puts the logger back into service.
        LogListener* record = logListenerCreate(&errors, hear, &logLevel);
        logListenerDestroy(&record);
        logAddGlobalListener(&errors, hear, &logLevel);
        // Chunks of few records: objects ask for memory often, and can be refused it.
        scriptObjectPoolRelease();
        poolInit(&scriptObjectPool, kPoolChunk / 16);
    }
    void TearDown() override {
        logShutdown();
        remove(kScriptFile);
    }

    struct Walk {
        const char* script;
        const char* before;    // may be null, like `after`
        const char* function;  // sets `out`
        const char* after;
        int errors;  // of the script itself
        size_t leastText;
    };
    static void walk(const Walk& walk);

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
    std::ofstream(kScriptFile, std::ios::binary) << kScript;
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

// Runs a function of the script, between two others, again and again, each time
// with less memory.
void EngineFault::walk(const Walk& walk) {
    SCOPED_TRACE(walk.function);
    std::ofstream(kScriptFile, std::ios::binary) << walk.script;
    const Owned<String> path(stringFromText(kScriptFile));
    ScriptEngine* engine = scriptEngineCreate();
    ASSERT_TRUE(scriptEnginePrepareEngine(engine));
    engine->requireSignature = 0;
    const uint32_t id = scriptVarNameToId(engine->parseTables, "out");
    ASSERT_TRUE(scriptEnginePrepareRun(engine, path.get()));
    long long requests = 0;
    const auto runFunction = [engine](const char* name) {
        if (name == nullptr) return;
        const Owned<String> function(stringFromText(name));
        scriptEngineRun(engine, function.get());
    };
    const Owned<String> function(stringFromText(walk.function));
    const auto run = [&](long long at, bool allLater) {
        runFunction(walk.before);
        errors = 0;
        memFailAfter(at, allLater);
        scriptEngineRun(engine, function.get());
        if (at < 0) requests = static_cast<long long>(memRequestCount());
        memFailAfter(-1, false);
        runFunction(walk.after);
        EXPECT_EQ(0u, engine->stack.size());
        const ScriptObject* out = scriptBlockOwnVar(engine->globalBlock, id);
        return out == nullptr || out->type != kTypeString ? "none"
                                                          : std::string(stringView(&out->string));
    };
    const std::string whole = run(-1, false);
    EXPECT_LE(walk.leastText, whole.size());
    EXPECT_EQ(walk.errors, errors);
    ASSERT_EQ(whole, run(-1, false));
    const long long wholeRequests = requests;
    EXPECT_LT(10, wholeRequests);
    for (const bool allLater : {false, true})
        for (long long at = 0; at < wholeRequests && !HasFailure(); ++at) {
            SCOPED_TRACE(at);
            run(at, allLater);
        }
    EXPECT_EQ(whole, run(-1, false));
    scriptEngineDestroy(&engine);
}

TEST_F(EngineFault, EveryCommandEndsWithAStatusWhenMemoryEnds) {
    walk({kCommands, nullptr, "main", nullptr, 0, 400});
    walk({kOutside, nullptr, "settings", nullptr, 0, 60});
    walk({kOutside, nullptr, "run", nullptr, 0, 4});
    walk({kOutside, nullptr, "look", nullptr, 5, 6});
    threadModuleInit();
    walk({kNetwork, "begin", "main", "ended", 0, 20});
    threadModuleDone();
}
