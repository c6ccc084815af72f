// The allocator setting Editor hands to Editor-full must leave the user's own settings as they
// were and must not reach the programs Editor-full starts.

#include "app/HugePageMalloc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace {

std::optional<std::string> env(const char* name) {
    const char* v = std::getenv(name);
    return v ? std::optional<std::string>(v) : std::nullopt;
}

void setEnv(const char* name, const std::optional<std::string>& value) {
    if (value)
        ::setenv(name, value->c_str(), 1);
    else
        ::unsetenv(name);
}

TEST(HugePageMalloc, AddedForEditorFullAndGoneForWhatItStarts) {
    struct Case {
        std::optional<std::string> given;
        std::optional<std::string> forEditorFull;
    };
    const Case cases[] = {
        {std::nullopt, "glibc.malloc.hugetlb=1"},
        {"", "glibc.malloc.hugetlb=1"},
        {"glibc.malloc.arena_max=2", "glibc.malloc.arena_max=2:glibc.malloc.hugetlb=1"},
        // The user's own choice stands.
        {"glibc.malloc.hugetlb=0", "glibc.malloc.hugetlb=0"},
    };
    const auto saved = env("GLIBC_TUNABLES");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.given.value_or("(unset)"));
        setEnv("GLIBC_TUNABLES", c.given);
        ed::askHugePageMalloc();
        EXPECT_EQ(env("GLIBC_TUNABLES"), c.forEditorFull);
        ed::forgetHugePageMalloc();
        EXPECT_EQ(env("GLIBC_TUNABLES"), c.given.value_or("").empty() ? std::nullopt : c.given);
        EXPECT_EQ(env("EDITOR_ADDED_MALLOC_TUNABLE"), std::nullopt);
    }
    setEnv("GLIBC_TUNABLES", saved);
}

} // namespace
