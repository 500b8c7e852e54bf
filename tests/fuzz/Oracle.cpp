// What every run must keep to, told a second time on POCO alone and without streams, so that the
// tool's own reading and printing are checked against it.

#include "tests/fuzz/Oracle.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

#include <cstdio>
#include <cstdlib>

namespace {

void Print(const char* title, const Outcome& outcome)
{
    std::fprintf(stderr, "--- %s: status %d\n", title, outcome.status);
    for (const std::string& request : outcome.requests) {
        std::fprintf(stderr, "request: %s\n", request.c_str());
    }
    std::fprintf(stderr, "standard output: %s\nstandard error: %s\n", outcome.out.c_str(),
                 outcome.err.c_str());
}

bool operator==(const Outcome& left, const Outcome& right)
{
    return left.status == right.status && left.out == right.out && left.err == right.err &&
           left.requests == right.requests;
}

void RequireSame(const char* title, const Outcome& actual, const Outcome& expected)
{
    if (actual == expected) {
        return;
    }
    Print("expected", expected);
    Print(title, actual);
    std::abort();
}

// Takes the style sequences out of text; each style must be followed by a reset before the next and
// before the end.
std::string WithoutStyles(const std::string& text, bool& paired)
{
    const std::string reset = "\033[00m";
    std::string plain;
    bool open = false;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '\033') {
            plain += text[at++];
            continue;
        }
        std::size_t length = 0;
        for (const char* style : {"\033[1m", "\033[31m", "\033[32m", "\033[33m", "\033[34m"}) {
            const std::string sequence = style;
            length = text.compare(at, sequence.size(), sequence) == 0 ? sequence.size() : length;
        }
        const bool closes = text.compare(at, reset.size(), reset) == 0;
        paired = paired && (closes ? open : length != 0 && !open);
        open = !closes;
        at += closes ? reset.size() : length != 0 ? length : 1;
    }
    paired = paired && !open;
    return plain;
}

} // namespace

bool ReadExpected(const std::string& reply, const Report& report, Outcome& expected)
{
    try {
        Poco::JSON::Parser parser;
        report(*parser.parse(reply).extract<Poco::JSON::Object::Ptr>(), expected);
        return true;
    } catch (const Poco::Exception& exception) {
        expected.err += "Failed to parse reply due to " + exception.displayText() + "\n";
        expected.status = 76;
        return false;
    }
}

void ExpectSentence(const Poco::JSON::Object& reply, Outcome& expected)
{
    expected.out += TextOf(reply, "description") + "\n";
    expected.status = CodeOf(reply);
}

std::string TextOf(const Poco::JSON::Object& reply, const std::string& key)
{
    return reply.get(key).convert<std::string>();
}

bool FlagOf(const Poco::JSON::Object& reply, const std::string& key)
{
    return reply.get(key).convert<bool>();
}

int CodeOf(const Poco::JSON::Object& reply)
{
    return reply.get("resultCode").convert<int>();
}

std::string Padded(const std::string& text, std::size_t width)
{
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

void ExpectRun(const Words& words, const Replies& replies, const Outcome& expected)
{
    RequireSame("plain run", Run(words, replies), expected);

    Outcome styled = RunOnTerminal(words, replies);
    // A reply's own escape bytes are printed as they come and can't be told from styles.
    if (expected.out.find('\033') == std::string::npos) {
        bool paired = true;
        styled.out = WithoutStyles(styled.out, paired);
        RequireSame("run on a terminal, without its styles", styled, expected);
        Require(paired, "every style is closed by its own reset", styled);
    }
}

void Require(bool holds, const char* rule, const Outcome& outcome)
{
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", rule);
        Print("run", outcome);
        std::abort();
    }
}
