#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quorel {

class ScriptToSign;

// The program that signs scripts and verifies their signatures.
class SignScript {
  public:
    // Reads the command line and does what it says. Gives the exit code: the
    // worst of those of its scripts.
    int run(int argc, char** argv);

  private:
    struct Option;
    static const Option* findOption(std::string_view argument);
    // False after a message.
    bool readArguments(int argc, char** argv);
    bool readVariant(const char* word);

    // Each gives the exit code for its script.
    int sign(const std::string& path) const;
    int verify(const std::string& path) const;
    // Why the signature of the script does not hold; empty for one that does.
    std::string refusal(const ScriptToSign& script, const std::string& path) const;

    bool helpWanted_ = false;
    bool verifies_ = false;
    bool toStandardOutput_ = false;
    bool isIncluded_ = false;
    int variant_ = 0;  // 0 without the option
    std::vector<std::string> scripts_;
};

}  // namespace Quorel
