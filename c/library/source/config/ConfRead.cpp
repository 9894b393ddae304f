#include "config/ConfFailure.h"
#include "paths/Paths.h"
#include "strings/StringEdit.h"

namespace {

constexpr std::string_view kOpening = "{";
constexpr std::string_view kClosing = "}";
constexpr std::string_view kMulti = "multi";
constexpr char kCommentSign = '#';

std::string_view trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

// A line that cannot be a key with its value.
bool isName(std::string_view line) {
    return line.find('=', 1) == std::string_view::npos;
}

// Reads one configuration. Nodes are entered and left in a loop: a file may nest
// them as deep as it likes.
class ConfReader {
  public:
    ConfReader(ConfPatcher* conf, BasicFile* file) : conf_(conf), file_(file) {}

    bool read(ConfNode* root);

  private:
    bool nextLine();
    bool enter();
    ConfNode* take(ConfNode* node);
    bool takeKey(ConfNode* node);
    bool takeType(ConfNode* node, std::string_view word);
    bool takeValue(ConfNode* node, std::string_view value);
    bool noMemory();

    ConfPatcher* conf_;
    BasicFile* file_;
    LocalString bytes_;
    LocalString word_;
    std::string_view line_;
    uint32_t lineNumber_ = 0;
};

bool ConfReader::read(ConfNode* root) {
    if (!nextLine()) {
        logError(conf_->logger, "confPatchParseConf: #::506", lineNumber_, &conf_->fileName);
        return false;
    }
    if (!stringSetView(&root->name, line_)) return noMemory();
    ConfNode* node = enter() ? root : nullptr;
    while (node != nullptr) {
        if (!nextLine()) return false;
        if (line_ != kClosing)
            node = take(node);
        else if (node == root)
            return true;
        else
            node = node->parent;
    }
    return false;
}

// The next line that says something. False at the end of the file, and when it
// cannot be read.
bool ConfReader::nextLine() {
    do {
        ++lineNumber_;
        if (bfileReadLine(file_, &bytes_, kNoLimit) != kFileDone) return false;
        line_ = trimmed(stringView(&bytes_));
    } while (line_.empty() || line_.front() == kCommentSign);
    return true;
}

// The line that stands between a node's name and what it holds.
bool ConfReader::enter() {
    if (nextLine() && line_ == kOpening) return true;
    logError(conf_->logger, "confPatchParseNode: #::503", lineNumber_, &conf_->fileName);
    return false;
}

// Takes a line of a node, and gives the node that the next line belongs to.
ConfNode* ConfReader::take(ConfNode* node) {
    if (!isName(line_)) return takeKey(node) ? node : nullptr;
    ConfNode* child = confNodeCreate(node, line_);
    if (child == nullptr) noMemory();
    return child != nullptr && enter() ? child : nullptr;
}

bool ConfReader::takeKey(ConfNode* node) {
    const size_t end = line_.find('=');
    const std::string_view key = line_.substr(0, end);
    const std::string_view rest = trimmed(line_.substr(end + 1));
    if (key == "value") return takeValue(node, rest);
    if (key == "type") return takeType(node, rest);
    logWarning(conf_->logger, "confPatchParseNode: #::504", key, lineNumber_, &conf_->fileName);
    return true;
}

bool ConfReader::takeType(ConfNode* node, std::string_view word) {
    if (!stringSetView(&word_, word)) return noMemory();
    stringLower(&word_);
    word = stringView(&word_);
    if (word.starts_with(kMulti)) {
        node->multi = 1;
        word.remove_prefix(kMulti.size());
    }
    node->type = confTypeFromWord(word);
    return true;
}

bool ConfReader::takeValue(ConfNode* node, std::string_view value) {
    if (!confNodeAddValue(node, value)) return noMemory();
    if (vectorSize(node->values) > 1) node->multi = 1;
    return true;
}

bool ConfReader::noMemory() {
    return confFailed(conf_, "confPatchParseNode: #::100");
}

}  // namespace

bool confPatchParseConf(ConfPatcher* conf, BasicFile* file) {
    if (conf == nullptr) return false;
    if (!bfileIsReadable(file))
        return confFailed(conf, "confPatchParseConf: #::505", &conf->fileName);
    confNodeDestroy(&conf->root);
    conf->root = confNodeCreate(nullptr, {});
    if (conf->root == nullptr) return confFailed(conf, "confPatchParseConf: #::100");
    return ConfReader(conf, file).read(conf->root);
}

bool confPatchParse(ConfPatcher* conf, const String* fileName) {
    if (conf == nullptr) return false;
    if (!stringSet(&conf->fileName, fileName) || !pathFileExists(&conf->fileName))
        return confFailed(conf, "confPatchParse: #::502");
    Owned<BasicFile> file(bfileInitStr(&conf->fileName));
    if (!file || bfileOpen(file.get(), kFileRead) != kFileDone)
        return confFailed(conf, "confPatchParse: #::202", &conf->fileName);
    logTrace(conf->logger, "confPatchParse: Reading configuration");
    const bool whole = confPatchParseConf(conf, file.get());
    bfileClose(file.get());
    if (whole) logTrace(conf->logger, "confPatchParse: Finished reading configuration");
    return whole;
}
