// libomns.so as a caller sees it: exactly the exports in its dynamic symbol
// table, each one an indirect jump through a filled slot, and calls through
// them working.  Uses the public header only.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <set>
#include <string>

#include "omns.h"

namespace {

const char* const kNames[] = {
#define OMN_EXPORT(ret, name, params) #name,
#define OMN_EXPORT_COMMON(ret, name, params) #name,
#include "omns_exports.h"
#undef OMN_EXPORT
#undef OMN_EXPORT_COMMON
};

std::string run(const std::string& cmd)
{
    std::string out;
    FILE* p = popen(cmd.c_str(), "r");
    if (p == nullptr)
        return out;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0)
        out.append(buf, n);
    pclose(p);
    return out;
}

} // namespace

TEST(SharedLibrary, DynamicSymbolTableHoldsExactlyTheExports)
{
    const std::string out = run(std::string("nm -D --defined-only ") + OMNS_SO_PATH);
    ASSERT_FALSE(out.empty());
    std::set<std::string> defined;
    size_t pos = 0;
    while (pos < out.size()) {
        const size_t end = out.find('\n', pos);
        const std::string line = out.substr(pos, end - pos);
        pos = end == std::string::npos ? out.size() : end + 1;
        // "address type name"; text symbols only, plus anything else defined
        const size_t sp = line.rfind(' ');
        if (sp != std::string::npos)
            defined.insert(line.substr(sp + 1));
    }
    const std::set<std::string> expected(std::begin(kNames), std::end(kNames));
    EXPECT_EQ(defined, expected);
}

#if defined(__x86_64__)
TEST(SharedLibrary, EveryExportJumpsThroughAFilledSlotIntoTheLibrary)
{
    void* h = dlopen(OMNS_SO_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(h, nullptr) << dlerror();
    for (const char* name : kNames) {
        const uint8_t* code = static_cast<const uint8_t*>(dlsym(h, name));
        ASSERT_NE(code, nullptr) << name;
        ASSERT_EQ(code[0], 0xFF) << name;
        ASSERT_EQ(code[1], 0x25) << name;
        int32_t rel;
        memcpy(&rel, code + 2, 4);
        void* const* slot = reinterpret_cast<void* const*>(code + 6 + rel);
        ASSERT_NE(*slot, nullptr) << name;
        Dl_info stubInfo, targetInfo;
        ASSERT_NE(dladdr(code, &stubInfo), 0);
        ASSERT_NE(dladdr(*slot, &targetInfo), 0) << name;
        EXPECT_EQ(stubInfo.dli_fbase, targetInfo.dli_fbase) << name << " jumps out of the library";
    }
    dlclose(h);
}
#endif

TEST(SharedLibrary, CallsThroughTheExportsWork)
{
    double src[100], dst[100];
    for (int i = 0; i < 100; ++i)
        src[i] = i;
    EXPECT_EQ(omnsCopy_64f(src, dst, 100), 0);
    EXPECT_EQ(0, memcmp(src, dst, sizeof src));
    EXPECT_EQ(omnsCopy_64f(nullptr, dst, 100), -8);
    EXPECT_EQ(omnsMove_64f(dst, dst + 1, 99), 0);
    EXPECT_EQ(dst[1], 0.0);
    EXPECT_EQ(dst[99], 98.0);

    const OmnLibVersion* s = omnsGetLibVersion();
    const OmnLibVersion* m = omnvmGetLibVersion();
    ASSERT_NE(s, nullptr);
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(0, memcmp(s->targetCpu, m->targetCpu, 4));
    // The column that the processor type selects, as the library documents it.
    const int type = omnGetCpuType();
    const char* expected = type == 5 ? "a6" : (type == 6 || type == 7) ? "w7" : type == 8 ? "t7" : "px";
    EXPECT_STREQ(s->targetCpu, expected);
}
