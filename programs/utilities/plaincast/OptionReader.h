#pragma once

#include <span>
#include <string_view>

#include "PlainCast.h"

namespace Quorel {

// Reads the options of the command line into the object that it was made for.
class PlainCast::OptionReader {
  public:
    enum class Result { Done, HelpShown, Failed };

    // Both outlive the reader.
    OptionReader(PlainCast* target, Variables* variables)
        : target_(target), variables_(variables) {}

    // Reads the arguments in order. `Failed` after a message or the usage text.
    Result read(int argc, char** argv);

  private:
    struct Option {
        std::string_view name;
        bool (OptionReader::*apply)(const Option& option, const char* value);
        bool takesValue = false;
        int level = 0;
    };
    static std::span<const Option> options();
    static const Option* find(std::string_view argument);

    bool setLevel(const Option& option, const char* value);
    bool setUsage(const Option& option, const char* value);
    bool setStartFunction(const Option& option, const char* value);
    bool setPeriod(const Option& option, const char* value);
    bool setVariable(const Option& option, const char* value);
    bool setScript(const Option& option, const char* value);
    bool setParseOnly(const Option& option, const char* value);

    PlainCast* target_;
    Variables* variables_;
};

}  // namespace Quorel
