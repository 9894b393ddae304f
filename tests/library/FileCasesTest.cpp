#include <filesystem>

#include "ScriptCases.h"

// What the commands on files say where they refuse or fail.

namespace {

using FileCases = ScriptCases;
namespace fs = std::filesystem;

constexpr char kVariables[] =
    "file f\nparser a\nvar u\nlist l\nvector w\nmap m\nstring s\nnumber n\n";

constexpr char kTable[] = R"(
fileopen n "x" "read" -> Parameter 1 must be a "file"
fileopen f "x" "Read" -> @FileOpen: Invalid file mode
fileopen f "~/n/o" "read" -> bfileOpen: Cannot open file "~/n/o" | @FileOpen: Failed to open file
fileopen f "~/long/x/y" "append" -> @FileOpen: Could not access directory of "~/long/x/y"
fileread f 1 s -> @FileRead: File not opened for reading
filereadline f s -> @FileReadLine: File not opened for reading
filereaduntil f ";" s -> @FileReadUntil: File not opened for reading
fileopen f "~/long" "read"; fileread f 1 f -> Parameter 1 must be a "file"
fileopen f "~/long" "read"; fileread f "1" s -> Parameter 2 must be a "number"
fileopen f "~/long" "read"; filewrite f s -> @FileWrite: File not opened for writing
fileopen f "~/long" "read"; filewriteline f s -> @FileWriteLine: File not opened for writing
filewrite f 1 -> Parameter 2 must be a "string"
fileopen f "~/long" "read"; filereadline f s; show ( "" . &sizeof s ); filereadline f s
  -> 4095 | @FileReadLine: Failed to read
fileopen f "~/long" "read"; filereaduntil f "y" s; filereaduntil f ";" s
  -> @FileReadUntil: Failed to read
filetostr "~/huge" s -> @FileToStr: Failed to read from file
fileopen f "~/huge" "read"; size f n; show ( n . " " . &fsize "~/huge" ) -> 1073741824 5368709120
vecappend w 1; filetovector "~/long" w -> @FileToVector: Failed to read from file
filetolines "~/n/o" s -> bfileOpen: Cannot open file "~/n/o" | @FileToLines: Failed to open file
filetolines "~/long" s s s s -> @FileToLines: Failed to read from file
filetolist "~/n/o" l; strtofile s "~/n/o"
  -> bfileOpen: Cannot open file "~/n/o" | @StrToFile: Failed to open file
vectortofile l "~/x" -> Parameter 1 must be a "vector"
listappend l "1" 2; listtofile l "~/x" -> @ListToFile: Failed to write to file
mapset m 1 a; maptofile m "=" "~/x" -> @MapToFile: Failed to write to file
linestofile "~/x" 1 l u -> @LinesToFile: Parameter 3 has no value
)";

TEST_F(FileCases, TellWhatIsWrong) {
    const fs::path folder = "FileCases.tmp";
    fs::create_directories(folder);
    std::ofstream(folder / "long") << std::string(4095, 'x') << "\n" << std::string(4096, 'y');
    std::ofstream(folder / "huge").close();
    fs::resize_file(folder / "huge", 5368709120);
    std::string table = kTable;
    for (size_t at; (at = table.find('~')) != table.npos;) table.replace(at, 1, "FileCases.tmp");
    check(casesOf(table), kVariables);
    fs::remove_all(folder);
}

}  // namespace
