// A mutator for replies. Bytes changed at random are nearly always refused by the parser; most of
// these changes put one JSON value in place of another, so that the reports get to see them.

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using Random = std::minstd_rand;

enum class Role { MemberName, MemberValue, Entry };

struct Span
{
    std::size_t begin;
    std::size_t length;
    Role role;
};

constexpr std::string_view names[] = {
    R"("resultCode")", R"("description")",     R"("services")",         R"("modules")",
    R"("name")",       R"("state")",           R"("version")",          R"("build")",
    R"("monitored")",  R"("safeModeEnabled")", R"("debugModeEnabled")", R"("")"};

// clang-format off
constexpr std::string_view values[] = {
    "null", "true", "false", "0", "1", "-1", "76", "0.5", "-0.0", "1e400", "1E-9", "255", "256",
    "2147483647", "2147483648", "-2147483649", "9223372036854775808", "18446744073709551616",
    R"("")", R"("true")", R"("no")", R"("12")", R"(" 7")", R"("0x1f")", R"("1e3")", R"("running")",
    R"("stopped")", R"("terminated")", R"("\u0000")", R"("\u001b[1m")", R"("\n")", "[]", "{}",
    "[null]", R"([[],{"a":1}])", R"({"monitored":null})",
    R"({"name":"a","state":"running","version":"1","monitored":true})",
};
// clang-format on

std::size_t Pick(Random& random, std::size_t count)
{
    return random() % count;
}

std::size_t EndOfString(const std::string& text, std::size_t begin)
{
    for (std::size_t at = begin + 1; at < text.size(); ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (text[at] == '"') {
            return at + 1;
        }
    }
    return text.size();
}

// What the text at position is, from the bracket it stands in and the colon that may follow it.
Role RoleOf(const std::string& text, const std::vector<std::size_t>& open, std::size_t end)
{
    if (text[open.back()] == '[') {
        return Role::Entry;
    }
    const std::size_t next = text.find_first_not_of(" \t\r\n", end);
    const bool named = next != std::string::npos && text[next] == ':';
    return named ? Role::MemberName : Role::MemberValue;
}

// Every value and every member name inside a root value, whole objects and arrays included.
std::vector<Span> FindSpans(const std::string& text)
{
    constexpr std::string_view punctuation = "{}[],:\" \t\r\n";
    std::vector<Span> spans;
    std::vector<std::size_t> open;
    const auto add = [&](std::size_t begin, std::size_t end) {
        if (!open.empty()) {
            spans.push_back({begin, end - begin, RoleOf(text, open, end)});
        }
    };
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        if (text[at] == '"') {
            end = EndOfString(text, at);
            add(at, end);
        } else if (text[at] == '{' || text[at] == '[') {
            open.push_back(at);
        } else if ((text[at] == '}' || text[at] == ']') && !open.empty()) {
            const std::size_t begin = open.back();
            open.pop_back();
            add(begin, end);
        } else if (punctuation.find(text[at]) == std::string_view::npos) {
            end = std::min(text.find_first_of(punctuation, at), text.size());
            add(at, end);
        }
        at = end;
    }
    return spans;
}

// A string whose bytes libFuzzer chooses, quoted so that it stays one.
std::string MutatedString(std::string text)
{
    constexpr std::size_t room = 40;
    const std::size_t size = text.size();
    text.resize(size + room);
    text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, size + room));
    std::string quoted = "\"";
    for (const char c : text) {
        const bool control = static_cast<unsigned char>(c) < 0x20;
        quoted += c == '"' || c == '\\' ? "\\" : "";
        quoted += control ? "\\t" : std::string(1, c);
    }
    return quoted + '"';
}

std::string Replacement(const std::string& text, const std::vector<Span>& spans, const Span& span,
                        Random& random)
{
    const std::string old = text.substr(span.begin, span.length);
    const Span& other = spans[Pick(random, spans.size())];
    const std::size_t way = Pick(random, 6);
    if (way == 0 && (other.role == Role::MemberName) == (span.role == Role::MemberName)) {
        return text.substr(other.begin, other.length);
    }
    if (way == 1 && span.role == Role::Entry) {
        return old + ',' + old;
    }
    if (way == 2) {
        return MutatedString(old.front() == '"' && old.size() > 1 ? old.substr(1, old.size() - 2)
                                                                  : old);
    }
    return std::string(span.role == Role::MemberName ? names[Pick(random, std::size(names))]
                                                     : values[Pick(random, std::size(values))]);
}

void ChangeOneValue(std::string& text, Random& random)
{
    const std::vector<Span> spans = FindSpans(text);
    if (!spans.empty()) {
        const Span& span = spans[Pick(random, spans.size())];
        text.replace(span.begin, span.length, Replacement(text, spans, span, random));
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed)
{
    Random random(seed);
    if (Pick(random, 6) == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::string text(data, data + size);
    for (std::size_t changes = 1 + Pick(random, 3); changes > 0; --changes) {
        ChangeOneValue(text, random);
    }
    const std::size_t length = std::min(text.size(), maxSize);
    std::copy_n(text.begin(), length, data);
    return length == 0 ? LLVMFuzzerMutate(data, size, maxSize) : length;
}
