#include "kernel/KPreferenceStore.h"

#include "kernel/KTextCodec.h"

#include <glib.h>
#include <glib/gstdio.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

namespace {

// Every file holds one section; the group is the file's name.
constexpr const char* kSection = "Preferences";
constexpr const char* kHeader = " TaleLoom preferences. Each value is typed: string:<text>, integer:<decimal>\n"
                                " or binary:<hex bytes>.";

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

struct ErrorHolder {
    GError* error = nullptr;
    ~ErrorHolder() { g_clear_error(&error); }
    const char* message() const { return error ? error->message : "unknown error"; }
};

std::string takeString(gchar* text)
{
    std::string result(text ? text : "");
    g_free(text);
    return result;
}

std::string joinPath(const std::string& folder, const std::string& name)
{
    return takeString(g_build_filename(folder.c_str(), name.c_str(), nullptr));
}

// A group or application name must be one plain path component.
bool isPlainName(const char* name)
{
    if (!name || !*name || std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
        return false;
    for (const char* p = name; *p; ++p) {
        auto c = static_cast<unsigned char>(*p);
        if (c < 0x20 || c == '/' || c == 0x7F)
            return false;
    }
    return true;
}

std::string utf8Name(const char* name) { return KTextCodec::toUtf8(std::string_view(name)); }

std::string userFolder(const char* application) { return joinPath(g_get_user_config_dir(), utf8Name(application)); }

std::vector<std::string> systemFolders(const char* application)
{
    std::vector<std::string> folders;
    for (const gchar* const* dir = g_get_system_config_dirs(); dir && *dir; ++dir)
        folders.push_back(joinPath(*dir, utf8Name(application)));
    return folders;
}

std::string groupFile(const std::string& folder, const char* group)
{
    return joinPath(folder, utf8Name(group) + ".conf");
}

// The user's file of the group when it is there, else the first machine-wide one.
std::optional<std::string> findGroupFile(const char* application, const char* group)
{
    if (!isPlainName(application) || !isPlainName(group))
        return std::nullopt;
    std::string user = groupFile(userFolder(application), group);
    if (g_file_test(user.c_str(), G_FILE_TEST_EXISTS))
        return user;
    for (const std::string& folder : systemFolders(application)) {
        std::string path = groupFile(folder, group);
        if (g_file_test(path.c_str(), G_FILE_TEST_EXISTS))
            return path;
    }
    return std::nullopt;
}

void warn(const std::string& path, const char* what, const char* detail)
{
    g_printerr("TaleLoom: preferences file %s %s (%s)\n", path.c_str(), what, detail);
}

// --- Key names ---------------------------------------------------------------
// Preference names are free text; the few characters a key file gives a
// meaning to travel as %XX.

bool needsEscape(unsigned char c, size_t index, size_t length)
{
    if (c < 0x20 || c == 0x7F || c == '%' || c == '=' || c == '[' || c == ']' || c == '\\')
        return true;
    if (index == 0 && (c == '#' || c == ' '))
        return true;
    return index + 1 == length && c == ' ';
}

std::string escapeKey(const KString& name)
{
    std::string escaped;
    auto length = size_t(name.getLength());
    for (size_t i = 0; i < length; ++i) {
        auto c = static_cast<unsigned char>(name.charAt(int32_t(i)));
        if (needsEscape(c, i, length)) {
            char hex[4];
            g_snprintf(hex, sizeof hex, "%%%02X", c);
            escaped += hex;
        } else {
            escaped += char(c);
        }
    }
    return KTextCodec::toUtf8(escaped);
}

KString unescapeKey(const char* key)
{
    KString name = KTextCodec::fromUtf8(key);
    std::string bytes;
    for (int32_t i = 0; i < name.getLength(); ++i) {
        char c = name.charAt(i);
        int high = g_ascii_xdigit_value(name.charAt(i + 1));
        int low = g_ascii_xdigit_value(name.charAt(i + 2));
        if (c == '%' && high >= 0 && low >= 0) {
            bytes += char(high * 16 + low);
            i += 2;
        } else {
            bytes += c;
        }
    }
    KString result;
    result.setText(bytes.data(), int32_t(bytes.size()));
    return result;
}

// --- Values ------------------------------------------------------------------

std::string hexOf(const std::vector<unsigned char>& data)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (unsigned char byte : data) {
        hex += digits[byte >> 4];
        hex += digits[byte & 15];
    }
    return hex;
}

bool parseHex(const std::string& text, std::vector<unsigned char>& data)
{
    if (text.size() % 2 != 0)
        return false;
    for (size_t i = 0; i < text.size(); i += 2) {
        int high = g_ascii_xdigit_value(text[i]);
        int low = g_ascii_xdigit_value(text[i + 1]);
        if (high < 0 || low < 0)
            return false;
        data.push_back(static_cast<unsigned char>(high * 16 + low));
    }
    return true;
}

bool parseInteger(const std::string& text, std::vector<unsigned char>& data)
{
    gint64 number = 0;
    if (!g_ascii_string_to_signed(text.c_str(), 10, G_MININT32, G_MAXUINT32, &number, nullptr))
        return false;
    auto bits = static_cast<uint32_t>(number);
    data.resize(4);
    std::memcpy(data.data(), &bits, 4);
    return true;
}

std::string encodeValue(const KPreferenceStore::Value& value)
{
    switch (value.kind) {
    case KPreferenceStore::Text:
        return "string:"
               + KTextCodec::toUtf8(
                   std::string_view(reinterpret_cast<const char*>(value.data.data()), value.data.size()));
    case KPreferenceStore::Integer: {
        int32_t number = 0;
        std::memcpy(&number, value.data.data(), value.data.size() < 4 ? value.data.size() : 4);
        return "integer:" + std::to_string(number);
    }
    default:
        return "binary:" + hexOf(value.data);
    }
}

// False for a value whose text does not follow the form at all; an unknown
// type name gives the kind Unknown for the caller to report.
bool decodeValue(const std::string& text, KPreferenceStore::Value& value)
{
    size_t colon = text.find(':');
    if (colon == std::string::npos)
        return false;
    std::string type = text.substr(0, colon);
    std::string payload = text.substr(colon + 1);
    if (type == "string") {
        KString decoded = KTextCodec::fromUtf8(payload);
        value.kind = KPreferenceStore::Text;
        value.data.assign(decoded.c_str(), decoded.c_str() + decoded.getLength());
        return true;
    }
    if (type == "integer") {
        value.kind = KPreferenceStore::Integer;
        return parseInteger(payload, value.data);
    }
    if (type == "binary") {
        value.kind = KPreferenceStore::Binary;
        return parseHex(payload, value.data);
    }
    value.kind = KPreferenceStore::Unknown;
    return true;
}

KeyFile loadKeyFile(const std::string& path, ErrorHolder& error)
{
    KeyFile file(g_key_file_new());
    if (!g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_KEEP_COMMENTS, &error.error))
        return nullptr;
    return file;
}

void readValues(GKeyFile* file, const std::string& path, std::vector<KPreferenceStore::Value>& values)
{
    if (!g_key_file_has_group(file, kSection))
        return;
    gsize count = 0;
    gchar** keys = g_key_file_get_keys(file, kSection, &count, nullptr);
    for (gsize i = 0; i < count; ++i) {
        ErrorHolder error;
        gchar* raw = g_key_file_get_string(file, kSection, keys[i], &error.error);
        KPreferenceStore::Value value;
        value.name = unescapeKey(keys[i]);
        if (raw && decodeValue(raw, value))
            values.push_back(std::move(value));
        else
            warn(path, "has an unreadable value, skipped", keys[i]);
        g_free(raw);
    }
    g_strfreev(keys);
}

bool writeInto(const std::string& folder, const char* group, const std::vector<KPreferenceStore::Value>& values)
{
    if (g_mkdir_with_parents(folder.c_str(), 0700) != 0)
        return false;
    std::string path = groupFile(folder, group);
    KeyFile file;
    if (g_file_test(path.c_str(), G_FILE_TEST_EXISTS)) {
        ErrorHolder error;
        file = loadKeyFile(path, error);
        if (!file)
            warn(path, "was unreadable and is replaced", error.message());
    }
    if (!file) {
        file.reset(g_key_file_new());
        g_key_file_set_comment(file.get(), nullptr, nullptr, kHeader, nullptr);
    }
    for (const KPreferenceStore::Value& value : values)
        g_key_file_set_string(file.get(), kSection, escapeKey(value.name).c_str(), encodeValue(value).c_str());
    ErrorHolder error;
    if (!g_key_file_save_to_file(file.get(), path.c_str(), &error.error)) {
        warn(path, "could not be written", error.message());
        return false;
    }
    return true;
}

} // namespace

namespace KPreferenceStore {

bool readGroup(const char* application, const char* group, std::vector<Value>& values)
{
    std::optional<std::string> path = findGroupFile(application, group);
    if (!path)
        return false;
    ErrorHolder error;
    KeyFile file = loadKeyFile(*path, error);
    if (!file) {
        warn(*path, "is unreadable; the defaults stay", error.message());
        return false;
    }
    readValues(file.get(), *path, values);
    return true;
}

bool writeGroup(const char* application, const char* group, const std::vector<Value>& values)
{
    if (!isPlainName(application) || !isPlainName(group)) {
        g_printerr("TaleLoom: preferences group \"%s\" cannot be saved: not a plain name\n", group ? group : "");
        return false;
    }
    if (writeInto(userFolder(application), group, values))
        return true;
    for (const std::string& folder : systemFolders(application)) {
        if (writeInto(folder, group, values))
            return true;
    }
    g_printerr("TaleLoom: preferences group \"%s\" could not be saved\n", group);
    return false;
}

bool groupExists(const char* application, const char* group) { return findGroupFile(application, group).has_value(); }

bool userGroupUnreadable(const char* application, const char* group)
{
    if (!isPlainName(application) || !isPlainName(group))
        return false;
    std::string path = groupFile(userFolder(application), group);
    if (!g_file_test(path.c_str(), G_FILE_TEST_EXISTS))
        return false;
    ErrorHolder error;
    return !loadKeyFile(path, error);
}

bool setAsideUserGroup(const char* application, const char* group)
{
    if (!isPlainName(application) || !isPlainName(group))
        return false;
    std::string path = groupFile(userFolder(application), group);
    std::string aside = path + ".bad";
    return g_rename(path.c_str(), aside.c_str()) == 0;
}

} // namespace KPreferenceStore
