#include "platform/registry.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr size_t kFirstBufferSize = 256;
// KEY_WRITE without the right to make links.
constexpr REGSAM kWriteAccess = 0x20006;

// An open key, closed with its object.
class OpenKey {
  public:
    OpenKey() = default;
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey() {
        if (key_ != nullptr) RegCloseKey(key_);
    }
    HKEY get() const { return key_; }
    HKEY* receive() { return &key_; }

  private:
    HKEY key_ = nullptr;
};

HKEY rootKey(uint32_t root) {
    // The handles of the roots are these numbers with their sign carried upward.
    return reinterpret_cast<HKEY>(static_cast<intptr_t>(static_cast<int32_t>(root)));
}

OsRegistryResult resultOf(LSTATUS status) {
    switch (status) {
        case ERROR_SUCCESS:
            return OsRegistryResult::Done;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return OsRegistryResult::NotFound;
        case ERROR_ACCESS_DENIED:
            return OsRegistryResult::NoAccess;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
            return OsRegistryResult::NoMemory;
        default:
            return OsRegistryResult::Failed;
    }
}

OsRegistryResult openKey(uint32_t root, std::string_view key, REGSAM access, OpenKey* opened) {
    std::string name(key);
    return resultOf(RegOpenKeyExA(rootKey(root), name.c_str(), 0, access, opened->receive()));
}

}  // namespace

bool osRegistryFile(uint32_t, std::string*) {
    return false;
}

OsRegistryResult osRegistryGet(uint32_t root, std::string_view key, std::string_view value,
                               uint32_t* type, std::string* data) {
    OpenKey opened;
    OsRegistryResult result = openKey(root, key, KEY_READ, &opened);
    if (result != OsRegistryResult::Done) return result;
    std::string name(value);
    std::string buffer(kFirstBufferSize, '\0');
    DWORD found = 0;
    LSTATUS status;
    DWORD size;
    do {
        size = static_cast<DWORD>(buffer.size());
        BYTE* bytes = reinterpret_cast<BYTE*>(buffer.data());
        status = RegQueryValueExA(opened.get(), name.c_str(), nullptr, &found, bytes, &size);
        // A value that another process makes longer meanwhile needs another round.
        if (status == ERROR_MORE_DATA) buffer.resize(std::max<size_t>(size, buffer.size() * 2));
    } while (status == ERROR_MORE_DATA);
    if (status != ERROR_SUCCESS) return resultOf(status);
    buffer.resize(size);
    *type = found;
    data->swap(buffer);
    return OsRegistryResult::Done;
}

OsRegistryResult osRegistrySet(uint32_t root, std::string_view key, std::string_view value,
                               uint32_t type, std::string_view data) {
    OpenKey opened;
    std::string keyName(key);
    LSTATUS status = RegCreateKeyExA(rootKey(root), keyName.c_str(), 0, nullptr, 0, kWriteAccess,
                                     nullptr, opened.receive(), nullptr);
    if (status != ERROR_SUCCESS) return OsRegistryResult::Failed;
    std::string valueName(value);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(data.data());
    status = RegSetValueExA(opened.get(), valueName.c_str(), 0, type, bytes,
                            static_cast<DWORD>(data.size()));
    return status == ERROR_SUCCESS ? OsRegistryResult::Done : OsRegistryResult::Failed;
}

OsRegistryResult osRegistryDeleteValue(uint32_t root, std::string_view key,
                                       std::string_view value) {
    OpenKey opened;
    OsRegistryResult result = openKey(root, key, KEY_SET_VALUE, &opened);
    if (result == OsRegistryResult::NotFound) return result;
    if (result != OsRegistryResult::Done) return OsRegistryResult::Failed;
    std::string name(value);
    bool removed = RegDeleteValueA(opened.get(), name.c_str()) == ERROR_SUCCESS;
    return removed ? OsRegistryResult::Done : OsRegistryResult::Failed;
}

OsRegistryResult osRegistrySubKeys(uint32_t root, std::string_view key,
                                   std::vector<std::string>* names) {
    OpenKey opened;
    OsRegistryResult result = openKey(root, key, KEY_ENUMERATE_SUB_KEYS, &opened);
    if (result != OsRegistryResult::Done) return result;
    std::vector<std::string> found;
    std::string buffer(kFirstBufferSize, '\0');
    for (DWORD index = 0;;) {
        DWORD size = static_cast<DWORD>(buffer.size());
        LSTATUS status = RegEnumKeyExA(opened.get(), index, buffer.data(), &size, nullptr, nullptr,
                                       nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) break;
        if (status == ERROR_MORE_DATA) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (status != ERROR_SUCCESS) return OsRegistryResult::Failed;
        found.emplace_back(buffer, 0, size);
        ++index;
    }
    names->swap(found);
    return OsRegistryResult::Done;
}

OsRegistryResult osRegistryDeleteKey(uint32_t root, std::string_view key) {
    // A root is not a key that could go.
    if (key.find_first_not_of('\\') == std::string_view::npos) return OsRegistryResult::Failed;
    std::vector<std::string> below;
    OsRegistryResult result = osRegistrySubKeys(root, key, &below);
    if (result != OsRegistryResult::Done) return result;
    std::string name(key);
    for (const std::string& child : below) {
        result = osRegistryDeleteKey(root, name + "\\" + child);
        if (result != OsRegistryResult::Done) return result;
    }
    bool removed = RegDeleteKeyA(rootKey(root), name.c_str()) == ERROR_SUCCESS;
    return removed ? OsRegistryResult::Done : OsRegistryResult::Failed;
}
