#include <algorithm>

#include "config/ConfFailure.h"
#include "files/FileStream.h"
#include "files/ReplaceFile.h"
#include "platform/replace.h"

namespace {

constexpr std::string_view kTabs =
    "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
constexpr const char* kTemporarySuffix = ".tmp";

// Writes one configuration. Lines come to nothing once one of them could not be
// written.
class ConfWriter {
  public:
    ConfWriter(const ConfPatcher* conf, BasicFile* file) : conf_(conf), file_(file) {}

    bool write(const ConfNode* root);

  private:
    void open(const ConfNode* node);
    void close() { confSaveWriteLine("}", {}); }
    void confSaveWriteLine(std::string_view start, std::string_view rest);
    void put(std::string_view text);
    void check(FileStatus status);

    const ConfPatcher* conf_;
    BasicFile* file_;
    uint32_t depth_ = 0;
    bool whole_ = true;
};

bool ConfWriter::write(const ConfNode* root) {
    const ConfNode* node = root;
    while (node != nullptr && whole_) {
        open(node);
        const ConfNode* next = confNodeChildAt(node, 0);
        if (next != nullptr) ++depth_;
        while (next == nullptr) {
            close();
            if (node == root) break;
            next = confNodeNext(node);
            if (next != nullptr) break;
            node = node->parent;
            --depth_;
        }
        node = next;
    }
    if (whole_) check(bfileFlush(file_));
    return whole_;
}

// All of a node but its children and its end.
void ConfWriter::open(const ConfNode* node) {
    confSaveWriteLine(stringView(&node->name), {});
    confSaveWriteLine("{", {});
    const char* word = confTypeWord(node->type);
    if (word == nullptr) return;
    ++depth_;
    confSaveWriteLine("type=", word);
    for (uint32_t at = 0; at < vectorSize(node->values); ++at)
        confSaveWriteLine("value=", stringView(confNodeValueAt(node, at)));
    if (vectorSize(node->values) == 0) confSaveWriteLine("value=", {});
    --depth_;
}

void ConfWriter::confSaveWriteLine(std::string_view start, std::string_view rest) {
    for (size_t left = depth_; left > 0 && whole_; left -= std::min(left, kTabs.size()))
        put(kTabs.substr(0, left));
    put(start);
    put(rest);
    put("\n");
}

void ConfWriter::put(std::string_view text) {
    if (!whole_ || text.empty()) return;
    check(bfileWriteVal(file_, text.data(), static_cast<uint32_t>(text.size())));
}

void ConfWriter::check(FileStatus status) {
    if (status == kFileDone) return;
    logError(conf_->logger, "confSaveWriteLine: #::205 #::14", file_->name, status);
    logLocation(conf_->logger, kLogError);
    whole_ = false;
}

// Writes the temporary file, on the disk to its last byte.
bool writeTemporary(ConfPatcher* conf, const String* temporary) {
    fileReplacePrepare(stringView(&conf->fileName), stringView(temporary));
    Owned<BasicFile> file(bfileInitStr(temporary));
    if (!file || bfileOpen(file.get(), kFileWrite) != kFileDone)
        return confFailed(conf, "confPatchSave: #::203", temporary);
    if (!confPatchSaveConf(conf, file.get())) return false;
    const int error = osReplaceSync(file->stream->file);
    if (error != 0) {
        logError(conf->logger, "confPatchSave: #::205 #::14", temporary, error);
        logLocation(conf->logger, kLogError);
        return false;
    }
    return bfileClose(file.get()) == kFileDone;
}

void copyRights(const ConfPatcher* conf, const String* temporary) {
    OsFileInfo info;
    if (osFileInfo(stringView(&conf->fileName), &info) != 0) return;
    const int error = osReplaceCopyRights(stringView(&conf->fileName), stringView(temporary));
    if (error != 0)
        logVerbose(conf->logger, "confPatchSave: Not all rights of \"%S\" could be kept #::14",
                   &conf->fileName, error);
}

}  // namespace

bool confPatchSaveConf(ConfPatcher* conf, BasicFile* file) {
    if (conf == nullptr) return false;
    if (!bfileIsWritable(file))
        return confFailed(conf, "confPatchSaveConf: #::500", &conf->fileName);
    if (conf->root == nullptr || stringIsEmpty(&conf->root->name))
        return confFailed(conf, "confPatchSaveConf: #::501", &conf->fileName);
    return ConfWriter(conf, file).write(conf->root);
}

bool confPatchSave(ConfPatcher* conf) {
    if (conf == nullptr) return false;
    if (stringIsEmpty(&conf->fileName)) {
        logError(conf->logger, "confPatchSave: #::502");
        return false;
    }
    logTrace(conf->logger, "confPatchSave: Saving configuration");
    // A zero byte ends a path: behind one the suffix would go unseen.
    LocalString temporary;
    if (!stringSetText(&temporary, stringText(&conf->fileName)) ||
        !stringAppendText(&temporary, kTemporarySuffix))
        return confFailed(conf, "confPatchSave: #::100");
    if (!writeTemporary(conf, &temporary)) {
        osReplaceRemove(stringView(&temporary));
        return false;
    }
    copyRights(conf, &temporary);
    if (osReplaceRename(stringView(&temporary), stringView(&conf->fileName)) != 0)
        return confFailed(conf, "confPatchSave: #::211", &temporary, &conf->fileName);
    logTrace(conf->logger, "confPatchSave: Finished saving configuration");
    return true;
}
