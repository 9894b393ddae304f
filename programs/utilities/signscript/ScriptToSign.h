#pragma once

#include <string>
#include <string_view>

#include "ScriptEngine3/SourceLines.h"

namespace Quorel {

// One script as the program reads it, and what its signature is and should be.
class ScriptToSign {
  public:
    // Reads the file. An included file's function "main" is passed over, and so
    // belongs to no signature. False when it cannot be signed; `fault` tells why.
    bool read(const std::string& path, bool isIncluded);
    const std::string& fault() const { return fault_; }

    bool hasSignature() const { return directiveLine_ != 0; }
    // The text behind the word `signature`, as it stands there.
    const std::string& signature() const { return signature_; }
    // The line it stands on, from 1; 0 without one.
    uint32_t directiveLine() const { return directiveLine_; }

    // The text that would be right; empty when memory runs out.
    std::string fitting(int variant) const;

    // The file's bytes with this text in its signature line, which is put at the
    // top when there is none. Empty when the file changed while it was read.
    std::string signedWith(const std::string& signature) const;

  private:
    bool readBytes();
    bool readLines(bool isIncluded);
    // Lets the hash begin with the next line.
    bool startHash(SourceLines* lines);
    bool meetDirective(SourceLines* lines);
    std::string withNewLine(const std::string& statement) const;
    bool fail(const std::string& fault);

    std::string path_;
    std::string bytes_;
    std::string directive_;  // the whole statement, without blanks and comment around it
    std::string signature_;
    std::string fault_;
    uint32_t directiveLine_ = 0;
    Owned<HashState> hash_;
};

}  // namespace Quorel
