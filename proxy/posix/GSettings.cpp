#include "proxy/posix/GSettings.h"

#include <dlfcn.h>
#include <memory>

namespace vantra {

using kel::String;

namespace {

struct GSettings;
struct GSettingsBackend;
struct GSettingsSchema;
struct GSettingsSchemaSource;

// NOLINTBEGIN(readability-identifier-naming)
/// The functions of GLib in use, with GLib's own declarations.
struct GLibFunctions {
    GSettingsSchemaSource* (*g_settings_schema_source_get_default)();
    GSettingsSchema* (*g_settings_schema_source_lookup)(GSettingsSchemaSource*, const char* id,
                                                        int recursive);
    int (*g_settings_schema_has_key)(GSettingsSchema*, const char* key);
    void (*g_settings_schema_unref)(GSettingsSchema*);
    GSettings* (*g_settings_new_full)(GSettingsSchema*, GSettingsBackend*, const char* path);
    char* (*g_settings_get_string)(GSettings*, const char* key);
    int (*g_settings_get_int)(GSettings*, const char* key);
    char** (*g_settings_get_strv)(GSettings*, const char* key);
    void (*g_free)(void*);
    void (*g_strfreev)(char**);
    void (*g_object_unref)(void*);
};
// NOLINTEND(readability-identifier-naming)

template <class Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

/// False if GLib is not to be had.
bool loadGLib(const char* gioLibrary, GLibFunctions& glib) {
    // GLib registers types and starts threads, which no unloading takes back.
    void* const library = dlopen(gioLibrary, RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
    return library &&
           find(library, "g_settings_schema_source_get_default", glib.g_settings_schema_source_get_default) &&
           find(library, "g_settings_schema_source_lookup", glib.g_settings_schema_source_lookup) &&
           find(library, "g_settings_schema_has_key", glib.g_settings_schema_has_key) &&
           find(library, "g_settings_schema_unref", glib.g_settings_schema_unref) &&
           find(library, "g_settings_new_full", glib.g_settings_new_full) &&
           find(library, "g_settings_get_string", glib.g_settings_get_string) &&
           find(library, "g_settings_get_int", glib.g_settings_get_int) &&
           find(library, "g_settings_get_strv", glib.g_settings_get_strv) &&
           find(library, "g_free", glib.g_free) && find(library, "g_strfreev", glib.g_strfreev) &&
           find(library, "g_object_unref", glib.g_object_unref);
}

/// The settings of one schema. GLib ends the process when it is asked for a schema or key that is not
/// installed, so that both are looked up first; a missing one gives empty values.
class CSettings {
public:
    CSettings(const GLibFunctions& glib, const char* schemaID)
        : glib_(glib),
          schema_(lookUpSchema(glib, schemaID), glib.g_settings_schema_unref),
          settings_(schema_ ? glib.g_settings_new_full(schema_.get(), nullptr, nullptr) : nullptr,
                    glib.g_object_unref) {}

    [[nodiscard]] String getString(const char* key) const {
        if (!hasKey(key)) return {};
        const std::unique_ptr<char, void (*)(void*)> text(glib_.g_settings_get_string(settings_.get(), key),
                                                          glib_.g_free);
        return text ? String::fromUTF8Lax(text.get()) : String();
    }

    [[nodiscard]] int getInt(const char* key) const {
        return hasKey(key) ? glib_.g_settings_get_int(settings_.get(), key) : 0;
    }

    [[nodiscard]] std::vector<String> getStrings(const char* key) const {
        std::vector<String> strings;
        if (!hasKey(key)) return strings;
        const std::unique_ptr<char*, void (*)(char**)> list(glib_.g_settings_get_strv(settings_.get(), key),
                                                            glib_.g_strfreev);
        for (char** at = list.get(); at && *at; ++at) strings.push_back(String::fromUTF8Lax(*at));
        return strings;
    }

private:
    static GSettingsSchema* lookUpSchema(const GLibFunctions& glib, const char* schemaID) {
        GSettingsSchemaSource* const source = glib.g_settings_schema_source_get_default();
        return source ? glib.g_settings_schema_source_lookup(source, schemaID, true) : nullptr;
    }

    [[nodiscard]] bool hasKey(const char* key) const {
        return settings_ && glib_.g_settings_schema_has_key(schema_.get(), key);
    }

    const GLibFunctions& glib_;
    std::unique_ptr<GSettingsSchema, void (*)(GSettingsSchema*)> schema_;
    std::unique_ptr<GSettings, void (*)(void*)> settings_;
};

CDesktopProxyServer readServer(const GLibFunctions& glib, const char* schemaID) {
    const CSettings settings(glib, schemaID);
    return {settings.getString("host"), settings.getInt("port")};
}

} // namespace

CDesktopProxy readDesktopProxy(const char* gioLibrary) {
    GLibFunctions glib{};
    if (!loadGLib(gioLibrary, glib)) return {};
    const CSettings settings(glib, "org.gnome.system.proxy");
    CDesktopProxy desktop;
    desktop.mode = settings.getString("mode");
    desktop.ignoreHosts = settings.getStrings("ignore-hosts");
    desktop.http = readServer(glib, "org.gnome.system.proxy.http");
    desktop.https = readServer(glib, "org.gnome.system.proxy.https");
    desktop.ftp = readServer(glib, "org.gnome.system.proxy.ftp");
    desktop.socks = readServer(glib, "org.gnome.system.proxy.socks");
    return desktop;
}

} // namespace vantra
