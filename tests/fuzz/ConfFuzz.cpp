#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "config/ConfPatcher.h"

namespace {

// A file in memory, reached by a name.
class MemoryFile {
  public:
    MemoryFile() : handle_(memfd_create("fuzz", MFD_CLOEXEC)) {
        name_.reset(stringFromView("/proc/self/fd/" + std::to_string(handle_)));
    }
    ~MemoryFile() { close(handle_); }

    const String* name() const { return name_.get(); }
    void fill(const uint8_t* data, size_t size) {
        if (write(handle_, data, size) != static_cast<ssize_t>(size)) std::abort();
    }
    std::string content() const {
        std::string text(static_cast<size_t>(lseek(handle_, 0, SEEK_END)), '\0');
        if (pread(handle_, text.data(), text.size(), 0) < 0) std::abort();
        return text;
    }

  private:
    int handle_;
    Owned<String> name_;
};

void askForChildren(ConfPatcher* conf) {
    const ConfNode* root = conf->root;
    for (uint32_t at = 0; at < vectorSize(root->children); ++at) {
        LocalString path;
        stringAppend(&path, &root->name);
        stringAppendChar(&path, '.');
        stringAppend(&path, &confNodeChildAt(root, at)->name);
        confPatchGet(conf, &path, false);
    }
}

// Reads `from` and writes it to `to`; false when it is no configuration.
bool pass(const MemoryFile& from, const MemoryFile& to) {
    const Owned<ConfPatcher> conf(confPatchCreate());
    const bool whole = confPatchParse(conf.get(), from.name());
    if (conf->root != nullptr) askForChildren(conf.get());
    const Owned<ConfPatcher> copy(confPatchCopy(conf.get()));
    const Owned<BasicFile> file(bfileInitStr(to.name()));
    bfileOpen(file.get(), kFileWrite);
    const bool written = confPatchSaveConf(copy.get(), file.get());
    bfileClose(file.get());
    if (whole && !written) std::abort();
    return whole;
}

}  // namespace

// What was read once and written is read and written the same ever after.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFile given;
    MemoryFile once;
    MemoryFile twice;
    given.fill(data, size);
    if (!pass(given, once)) return 0;
    if (!pass(once, twice) || once.content() != twice.content()) std::abort();
    return 0;
}
