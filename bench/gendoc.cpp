// Writes a deterministic test document: words, numbers, blank and space-only lines and repeated
// lines, CR LF line breaks (or LF with --lf).
//   gendoc LINES [--lf] > file

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

struct Rng {
    uint64_t s = 0x2545F4914F6CDD1DULL;
    uint32_t next() {
        s ^= s << 13;
        s ^= s >> 7;
        s ^= s << 17;
        return uint32_t(s >> 16);
    }
    uint32_t below(uint32_t n) { return next() % n; }
};

const char* kWords[] = {
    "apple",  "banana", "cherry", "delta",   "echo",    "foxtrot", "golf",     "hotel",
    "india",  "juliet", "kilo",   "lima",    "mike",    "november", "oscar",   "papa",
    "quebec", "romeo",  "sierra", "tango",   "uniform", "victor",  "whiskey",  "xray",
    "yankee", "zulu",   "Error",  "WARNING", "info",    "debug",   "request",  "response",
    "user",   "admin",  "server", "client",  "timeout", "ok",      "failed",   "retry",
    "http://example.com/a.htm", "mail@example.org", "Ärger", "café", "naïve", "straße",
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: gendoc LINES [--lf]\n");
        return 2;
    }
    const long lines = std::atol(argv[1]);
    const bool lf = argc > 2 && std::strcmp(argv[2], "--lf") == 0;
    const char* eol = lf ? "\n" : "\r\n";
    const size_t nWords = sizeof(kWords) / sizeof(kWords[0]);
    Rng rng;
    std::vector<std::string> recent(4096);
    std::string out, line;
    out.reserve(1 << 20);
    for (long i = 0; i < lines; ++i) {
        const uint32_t kind = rng.below(100);
        line.clear();
        if (kind < 5) {
            // blank
        } else if (kind < 8) {
            line.assign(1 + rng.below(6), ' ');
        } else if (kind < 20) {
            char buf[32];
            const uint32_t form = rng.below(4);
            const long v = long(rng.below(20000)) - 2000;
            if (form == 0)
                std::snprintf(buf, sizeof buf, "%ld", v);
            else if (form == 1)
                std::snprintf(buf, sizeof buf, " %ld ", v);
            else if (form == 2)
                std::snprintf(buf, sizeof buf, "%ld.%u", v, rng.below(10));
            else
                std::snprintf(buf, sizeof buf, "%ld items", v);
            line = buf;
        } else if (kind < 45 && i > 0) {
            line = recent[rng.below(uint32_t(recent.size()))];
        } else {
            if (rng.below(10) == 0)
                line += "  ";
            const uint32_t words = 4 + rng.below(6);
            for (uint32_t w = 0; w < words; ++w) {
                if (w)
                    line += rng.below(15) == 0 ? "  " : " ";
                line += kWords[rng.below(uint32_t(nWords))];
            }
            if (rng.below(3) == 0) {
                line += ' ';
                line += std::to_string(rng.below(100000));
            }
            if (rng.below(10) == 0)
                line += " ";
        }
        recent[rng.below(uint32_t(recent.size()))] = line;
        out += line;
        out += eol;
        if (out.size() > (1 << 20)) {
            std::fwrite(out.data(), 1, out.size(), stdout);
            out.clear();
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}
