#include "platform/namedlocks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>

// A lock is a file that somebody has locked. The files stay: a file that went
// while others wait for it would be two locks of one name.

struct OsNamedLock {
    int file;
};

namespace {

constexpr const char* kFolders[] = {"/run/lock/quorel", "/tmp/quorel-lock"};
constexpr mode_t kForAll = 01777;
constexpr mode_t kFileMode = 0666;
constexpr size_t kLongestFileName = 200;
constexpr size_t kKeptOfLongName = 100;
constexpr int kAttempts = 100;

bool isPlain(unsigned char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '-' || byte == '_';
}

uint64_t hashOf(std::string_view bytes, uint64_t hash) {
    for (unsigned char byte : bytes) {
        hash = (hash ^ byte) * 0xff51afd7ed558ccd;
        hash ^= hash >> 33;
        hash *= 0xc4ceb9fe1a85ec53;
        hash ^= hash >> 29;
    }
    return hash;
}

// The name with `%` and two digits for each byte that is not plain, or the
// beginning of that with `%-` and a hash of the whole: no other name gives it.
std::string fileNameOf(std::string_view name) {
    std::string file;
    char digits[2 * sizeof(uint64_t) * 2 + sizeof "%-"];
    for (unsigned char byte : name) {
        if (isPlain(byte)) {
            file += static_cast<char>(byte);
        } else {
            snprintf(digits, sizeof digits, "%%%02x", byte);
            file += digits;
        }
        if (file.size() > kLongestFileName) break;
    }
    if (file.size() <= kLongestFileName) return file;
    snprintf(digits, sizeof digits, "%%-%016llx%016llx",
             static_cast<unsigned long long>(hashOf(name, name.size())),
             static_cast<unsigned long long>(hashOf(name, ~name.size())));
    return file.substr(0, kKeptOfLongName) + digits;
}

// An open descriptor, closed with its object.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    int get() const { return number_; }
    int release() { return std::exchange(number_, -1); }

  private:
    int number_;
};

// A folder that is there or can be made; -1 with `errno`.
int openFolder(const char* path, int flags) {
    // Made for everybody, whatever this process's mask is.
    if (mkdir(path, kForAll) == 0) chmod(path, kForAll);
    return open(path, O_PATH | O_DIRECTORY | O_CLOEXEC | flags);
}

int openFile(int folder, const char* name) {
    // Not made where it is there: in a folder for all the system may refuse to
    // make what another user owns. A descriptor for reading is enough to lock it.
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        int file = openat(folder, name, kFlags);
        if (file >= 0 || errno != ENOENT) return file;
        file = openat(folder, name, kFlags | O_CREAT | O_EXCL, kFileMode);
        if (file >= 0) {
            fchmod(file, kFileMode);
            return file;
        }
        if (errno != EEXIST) return -1;
    }
    return -1;
}

int openLockFile(const char* name) {
    const char* chosen = getenv("QUOREL_LOCKS");
    if (chosen != nullptr && *chosen != '\0') {
        Descriptor folder(openFolder(chosen, 0));
        return folder.get() < 0 ? -1 : openFile(folder.get(), name);
    }
    int file = -1;
    for (const char* path : kFolders) {
        // Where everybody may write somebody could lead us elsewhere.
        Descriptor folder(openFolder(path, O_NOFOLLOW));
        if (folder.get() >= 0) file = openFile(folder.get(), name);
        if (file >= 0) break;
    }
    return file;
}

int lockFile(int file, bool wait) {
    int result;
    do {
        result = flock(file, LOCK_EX | (wait ? 0 : LOCK_NB));
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

// Somebody may have cleaned the folder up while this process waited.
bool isStillThere(int file) {
    struct stat status;
    return fstat(file, &status) == 0 && status.st_nlink > 0;
}

}  // namespace

int osNamedLockTake(std::string_view name, bool wait, OsNamedLock** lock) {
    *lock = nullptr;
    const std::string fileName = fileNameOf(name);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        Descriptor file(openLockFile(fileName.c_str()));
        if (file.get() < 0) return errno;
        int error = lockFile(file.get(), wait);
        if (error == EWOULDBLOCK) return 0;
        if (error != 0) return error;
        if (!isStillThere(file.get())) continue;
        *lock = new (std::nothrow) OsNamedLock();
        if (*lock == nullptr) return ENOMEM;
        (*lock)->file = file.release();
        return 0;
    }
    return EAGAIN;
}

int osNamedLockRelease(OsNamedLock** lock) {
    // A child in the making may have the descriptor for a moment: the lock must
    // not wait for it.
    if (flock((*lock)->file, LOCK_UN) != 0) return errno;
    close((*lock)->file);
    delete std::exchange(*lock, nullptr);
    return 0;
}
