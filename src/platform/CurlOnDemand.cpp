// libcurl, opened on the first transfer instead of at every start.
//
// Linked the usual way, libcurl and the thirty-odd libraries it depends on (TLS, Kerberos, LDAP,
// SSH, ...) are mapped and relocated before main() runs: about 7 ms of every start, for a
// program that only transfers when the seller asks it to. The definitions below stand in for
// the libcurl entry points the FTP, web and mail clients call, open the library the first time
// one of them is used, and forward to it. Where the library cannot be opened, every call fails
// the way libcurl fails without a handle, and curl_easy_strerror says why.
#include <curl/curl.h>

#include <dlfcn.h>

#include <cstdarg>
#include <string>

namespace {

struct CurlLibrary
{
    decltype(&curl_global_init) globalInit = nullptr;
    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_setopt) easySetopt = nullptr;
    decltype(&curl_easy_perform) easyPerform = nullptr;
    decltype(&curl_easy_getinfo) easyGetinfo = nullptr;
    decltype(&curl_easy_reset) easyReset = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_easy_strerror) easyStrerror = nullptr;
    decltype(&curl_slist_append) slistAppend = nullptr;
    decltype(&curl_slist_free_all) slistFreeAll = nullptr;
    std::string problem; // empty once every entry point was found

    bool ok() const { return problem.empty(); }
};

template <typename Function> bool resolve(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

CurlLibrary open()
{
    CurlLibrary lib;
    // The run-time name first; the development link where only that is installed.
    void* library = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* why = dlerror(); // the run-time name's reason is the one that matters
        lib.problem = std::string("The network library libcurl could not be loaded (") +
                      (why ? why : "not found") + ").";
        library = dlopen("libcurl.so", RTLD_NOW | RTLD_LOCAL);
        if (!library)
            return lib;
        lib.problem.clear();
    }
    // Kept open until the program ends: handles and callbacks may live that long.
    const bool found = resolve(library, "curl_global_init", lib.globalInit) &&
                       resolve(library, "curl_easy_init", lib.easyInit) &&
                       resolve(library, "curl_easy_setopt", lib.easySetopt) &&
                       resolve(library, "curl_easy_perform", lib.easyPerform) &&
                       resolve(library, "curl_easy_getinfo", lib.easyGetinfo) &&
                       resolve(library, "curl_easy_reset", lib.easyReset) &&
                       resolve(library, "curl_easy_cleanup", lib.easyCleanup) &&
                       resolve(library, "curl_easy_strerror", lib.easyStrerror) &&
                       resolve(library, "curl_slist_append", lib.slistAppend) &&
                       resolve(library, "curl_slist_free_all", lib.slistFreeAll);
    if (!found)
        lib.problem = "The network library libcurl is too old: an entry point is missing.";
    return lib;
}

const CurlLibrary& curl()
{
    static const CurlLibrary lib = open(); // opened once, by whichever thread asks first
    return lib;
}

} // namespace

extern "C" {

CURLcode curl_global_init(long flags)
{
    return curl().ok() ? curl().globalInit(flags) : CURLE_FAILED_INIT;
}

CURL* curl_easy_init()
{
    return curl().ok() ? curl().easyInit() : nullptr;
}

// libcurl reads the value after the option by the option's type; it is passed on as read.
CURLcode curl_easy_setopt(CURL* handle, CURLoption option, ...)
{
    if (!curl().ok() || !handle)
        return CURLE_FAILED_INIT;
    va_list args;
    va_start(args, option);
    CURLcode result;
    if (option < CURLOPTTYPE_OBJECTPOINT) {
        result = curl().easySetopt(handle, option, va_arg(args, long));
    } else if (option < CURLOPTTYPE_FUNCTIONPOINT) {
        result = curl().easySetopt(handle, option, va_arg(args, void*));
    } else if (option < CURLOPTTYPE_OFF_T) {
        using AnyFunction = void (*)();
        result = curl().easySetopt(handle, option, va_arg(args, AnyFunction));
    } else if (option < CURLOPTTYPE_BLOB) {
        result = curl().easySetopt(handle, option, va_arg(args, curl_off_t));
    } else {
        result = curl().easySetopt(handle, option, va_arg(args, void*));
    }
    va_end(args);
    return result;
}

CURLcode curl_easy_perform(CURL* handle)
{
    return curl().ok() && handle ? curl().easyPerform(handle) : CURLE_FAILED_INIT;
}

// Every kind of information is written through a pointer.
CURLcode curl_easy_getinfo(CURL* handle, CURLINFO info, ...)
{
    if (!curl().ok() || !handle)
        return CURLE_FAILED_INIT;
    va_list args;
    va_start(args, info);
    const CURLcode result = curl().easyGetinfo(handle, info, va_arg(args, void*));
    va_end(args);
    return result;
}

void curl_easy_reset(CURL* handle)
{
    if (curl().ok() && handle)
        curl().easyReset(handle);
}

void curl_easy_cleanup(CURL* handle)
{
    if (curl().ok() && handle)
        curl().easyCleanup(handle);
}

const char* curl_easy_strerror(CURLcode code)
{
    return curl().ok() ? curl().easyStrerror(code) : curl().problem.c_str();
}

curl_slist* curl_slist_append(curl_slist* list, const char* text)
{
    return curl().ok() ? curl().slistAppend(list, text) : nullptr;
}

void curl_slist_free_all(curl_slist* list)
{
    if (curl().ok() && list)
        curl().slistFreeAll(list);
}

} // extern "C"
