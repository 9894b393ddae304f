#include "system/WindowsRelease.h"

#include "strings/StringFormat.h"

namespace {

constexpr uint32_t kAny = UINT32_MAX;
constexpr uint32_t kNtFamily = 2;
constexpr uint32_t kWorkstation = 1;
constexpr uint32_t kDomainController = 2;
constexpr uint32_t kServer = 3;
constexpr uint32_t kHomeSuite = 0x200;

enum class Release2 { Any, Only };

struct ReleaseRow {
    uint32_t major;
    uint32_t minor;
    uint32_t productType;
    Release2 release2;
    const char* name;  // null: the major and minor number as digits
    uint32_t number;
    bool hasServicePack;
};

// The first row that fits counts. A later system of the family 6 goes by the
// names of its first one: so scripts know it.
constexpr ReleaseRow kReleases[] = {
    {3, kAny, kAny, Release2::Any, "NT3", 300, true},
    {4, kAny, kAny, Release2::Any, "NT4", 400, true},
    {5, 0, kAny, Release2::Any, "2000", 500, false},
    {5, 1, kAny, Release2::Any, "XP", 510, false},
    {5, 2, kWorkstation, Release2::Any, "XPx64", 520, true},
    {5, 2, kAny, Release2::Only, "Server2003_R2", 520, true},
    {5, 2, kDomainController, Release2::Any, "NTDomainController", 520, true},
    {5, 2, kServer, Release2::Any, "Server2003", 520, true},
    {5, 2, kAny, Release2::Any, "<Unknown>", 520, true},
    {5, kAny, kAny, Release2::Any, nullptr, 500, false},
    {6, kAny, kWorkstation, Release2::Any, "Vista", 600, true},
    {6, kAny, kAny, Release2::Any, "Server_Longhorn", 600, true},
    {kAny, kAny, kAny, Release2::Any, nullptr, 0, false},
};

bool fits(uint32_t wanted, uint32_t given) {
    return wanted == kAny || wanted == given;
}

const ReleaseRow& findRelease(const OsWindowsVersion& version) {
    const ReleaseRow* row = kReleases;
    while (!(fits(row->major, version.major) && fits(row->minor, version.minor) &&
             fits(row->productType, version.productType) &&
             (row->release2 == Release2::Any || version.isRelease2))) {
        ++row;  // the last row fits everything
    }
    return *row;
}

}  // namespace

String* windowsReleaseName(const OsWindowsVersion& version) {
    if (version.platformId != kNtFamily) return nullptr;
    const ReleaseRow& row = findRelease(version);
    Owned<String> name(stringFromText("Windows"));
    bool done = row.name != nullptr
                    ? stringAppendText(name.get(), row.name)
                    : stringAppendFormat(name.get(), "%u%u", version.major, version.minor);
    bool isHome = version.major == 5 && version.minor == 2 && (version.suiteMask & kHomeSuite) != 0;
    if (isHome) done = done && stringAppendText(name.get(), "_Home");
    if (row.hasServicePack && version.servicePack != 0) {
        done = done && stringAppendFormat(name.get(), "_SP%i", version.servicePack);
    }
    return done ? name.release() : nullptr;
}

uint32_t windowsReleaseNumber(const OsWindowsVersion& version) {
    if (version.platformId != kNtFamily) return 0;
    const ReleaseRow& row = findRelease(version);
    bool countsMinor = row.major == 5 && row.minor == kAny;
    return countsMinor ? row.number + version.minor : row.number;
}
