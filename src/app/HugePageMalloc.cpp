#include "app/HugePageMalloc.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace ed {

namespace {
constexpr const char* kTunables = "GLIBC_TUNABLES";
constexpr const char* kSetting = "glibc.malloc.hugetlb=1";
// Present while the setting is one Editor added.
constexpr const char* kAdded = "EDITOR_ADDED_MALLOC_TUNABLE";
} // namespace

void askHugePageMalloc() {
    const char* given = std::getenv(kTunables);
    if (given && std::strstr(given, "glibc.malloc.hugetlb"))
        return;
    const std::string value =
        given && *given ? std::string(given) + ':' + kSetting : std::string(kSetting);
    ::setenv(kTunables, value.c_str(), 1);
    ::setenv(kAdded, "1", 1);
}

void forgetHugePageMalloc() {
    if (!std::getenv(kAdded))
        return;
    ::unsetenv(kAdded);
    const char* given = std::getenv(kTunables);
    if (!given)
        return;
    std::string value = given;
    const std::string tail = std::string(":") + kSetting;
    if (value == kSetting)
        ::unsetenv(kTunables);
    else if (value.size() > tail.size() && value.ends_with(tail))
        ::setenv(kTunables, value.substr(0, value.size() - tail.size()).c_str(), 1);
}

} // namespace ed
