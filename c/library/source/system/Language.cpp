#include <string>

#include "platform/machine.h"
#include "platform/registry.h"
#include "registry/Registry.h"
#include "strings/StringEdit.h"
#include "strings/StringFormat.h"
#include "system/SystemInfo.h"

namespace {

constexpr char kUnknownLanguage[] = "unknown(unknown)";
constexpr uint32_t kLayoutIdWidth = 8;

constexpr char kLanguageKey[] = "SYSTEM\\CurrentControlSet\\Control\\Nls\\Language";
constexpr char kLayoutsKey[] = "SYSTEM\\ControlSet001\\Control\\Keyboard Layouts\\%S";
constexpr char kCodesKey[] = "SYSTEM\\ControlSet001\\Control\\Keyboard Layout\\DosKeybCodes";

// A text value of the machine's root; null when it cannot be read.
String* machineText(const String* key, const String* value) {
    Owned<String> text(stringNewEmpty());
    bool read =
        key != nullptr && regGetString(kOsLocalMachine, key, value, text.get()) == RegResult::Done;
    return read ? text.release() : nullptr;
}

// A system without a registry of keyboards tells its language by the locale:
// "en_US.UTF-8" gives "en_US(UTF-8)".
String* languageOfLocale(std::string_view locale) {
    locale = locale.substr(0, locale.find('@'));
    size_t point = locale.find('.');
    std::string_view name = locale.substr(0, point);
    std::string_view code = point < locale.size() ? locale.substr(point + 1) : std::string_view();
    constexpr std::string_view kUnknown = "unknown";
    return stringFormatNew("%s(%s)", name.empty() ? kUnknown : name,
                           code.empty() ? kUnknown : code);
}

}  // namespace

String* sysGetLanguage() {
    std::string locale;
    if (osLocale(&locale)) return languageOfLocale(locale);
    Owned<String> languageKey(stringFromText(kLanguageKey));
    Owned<String> defaultName(stringFromText("Default"));
    Owned<String> id(machineText(languageKey.get(), defaultName.get()));
    if (!id || !stringPadLeft(id.get(), kLayoutIdWidth, '0')) {
        return stringFromText(kUnknownLanguage);
    }
    Owned<String> layoutKey(stringFormatNew(kLayoutsKey, id));
    Owned<String> layoutName(stringFromText("Layout Text"));
    Owned<String> layout(machineText(layoutKey.get(), layoutName.get()));
    if (!layout) return stringFromText(kUnknownLanguage);
    Owned<String> codesKey(stringFromText(kCodesKey));
    Owned<String> code(machineText(codesKey.get(), id.get()));
    if (!code) return stringFormatNew("%S(unknown)", layout);
    return stringFormatNew("%S(%S)", layout, code);
}
