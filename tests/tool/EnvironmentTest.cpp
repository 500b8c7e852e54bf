// What surrounds a run: no environment variable changes what it does, except that PATH must be set.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(Environment, SendsNoRequestToAProxy)
{
    setenv("http_proxy", "http://127.0.0.1:1", 1);
    setenv("ALL_PROXY", "socks5://127.0.0.1:1", 1);
    ScriptedEngine engine{accepted};

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, "ok\n", ""}));
}

TEST(Environment, DecidesNothingAboutColors)
{
    const auto show = [](const char* commandLine) {
        ScriptedEngine engine{ordinaryStatus};
        return RunTool(Words(commandLine), Terminal::Output);
    };
    const Outcome plain = show("--engine-status");
    const Outcome styled = show("--colors --engine-status");

    setenv("CLICOLOR_FORCE", "1", 1);
    EXPECT_EQ(show("--engine-status"), plain);

    unsetenv("CLICOLOR_FORCE");
    setenv("NO_COLOR", "1", 1);
    setenv("TERM", "dumb", 1);
    EXPECT_EQ(show("--colors --engine-status"), styled);
}

TEST(Environment, NeedsNoWorkingDirectory)
{
    EXPECT_EQ(RunShell("cd \"$(mktemp -d)\" && rmdir \"$PWD\" && $QUORLAN --update"),
              (Outcome{69, connectionRefused, ""}));
}

TEST(Environment, NeedsPathForANameWithoutASlash)
{
    // A launcher gives the tool the name by which it finds it, so it runs in the tool's folder.
    EXPECT_EQ(RunShell(R"(exec bash -c '
                  launcher=${0% *} tool=${0##* }
                  cd "${tool%/*}"
                  set -- ${launcher:-$tool} ${launcher:+${tool##*/}} --help
                  program=$(command -v "$1")
                  shift
                  unset PATH
                  exec -a quorlan "$program" "$@"' "$QUORLAN")"),
              (Outcome{78, "", "Not found: PATH\n"}));
}
