// The tables of --list. What they make of a value that is missing or of another type is in
// ReplyMembersTest.cpp.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

const std::string rule55(55, '-');
const std::string rule70(70, '-');

const std::string serviceHeading =
    "SERVICE NAME             STATE          VERSION        \n" + rule55 + "\n";
const std::string watchedServiceHeading =
    "SERVICE NAME             STATE          HEARTBEAT      VERSION        \n" + rule70 + "\n";
const std::string moduleHeading =
    "MODULE NAME              STATE          VERSION        \n" + rule55 + "\n";
const std::string noServices = serviceHeading + "None are loaded!\n\n";
const std::string noModules = moduleHeading + "None are loaded!\n\n";

/// A reply whose services are the given entries and that has no modules.
std::string Services(const std::string& entries)
{
    return R"({"resultCode":0,"services":[)" + entries + R"(],"modules":[]})";
}

Outcome ListOf(const std::string& reply)
{
    ScriptedEngine engine{reply.c_str()};
    return RunTool({"--list"});
}

} // namespace

TEST(Listing, ShowsServicesThenModules)
{
    ScriptedEngine engine{
        R"({"resultCode":0,
            "services":[{"name":"log","state":"running","version":"1.2"}],
            "modules":[{"name":"pump","state":"stopped","monitored":true,"version":"0.9"},
                       {"name":"valve","state":"running","monitored":false,"version":"0.8"}]})"};

    EXPECT_EQ(RunTool({"--list"}),
              (Outcome{0,
                       "SERVICE NAME             STATE          VERSION        \n"
                       "-------------------------------------------------------\n"
                       "log                      running        1.2            \n"
                       "\n"
                       "MODULE NAME              STATE          HEARTBEAT      VERSION        \n"
                       "----------------------------------------------------------------------\n"
                       "pump                     stopped        yes            0.9            \n"
                       "valve                    running        no             0.8            \n"
                       "\n",
                       ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{R"({"command":"list"})"});
}

TEST(Listing, SaysOfEachEmptyTableThatNoneAreLoaded)
{
    EXPECT_EQ(ListOf(Services("")), (Outcome{0, noServices + noModules, ""}));
}

TEST(Listing, ShowsEveryEntryOfAReplyOfAnySize)
{
    std::string entries(16 << 20, ' ');
    std::string rows;
    for (int number = 10000; number < 20000; ++number) {
        const std::string name = std::to_string(number);
        entries += R"({"name":)" + name + R"(,"state":"running","version":"1"},)";
        rows += name + "                    running        1              \n";
    }
    entries.pop_back();

    EXPECT_EQ(ListOf(Services(entries)),
              (Outcome{0, serviceHeading + rows + "\n" + noModules, ""}));
}

TEST(Listing, DecidesAboutTheHeartbeatColumnForEachTable)
{
    EXPECT_EQ(
        ListOf(R"({"resultCode":0,
                         "services":[{"name":"a","state":"up","monitored":true,"version":"1"}],
                         "modules":[{"name":"b","state":"up","version":"1"}]})"),
        (Outcome{0,
                 watchedServiceHeading +
                     "a                        up             yes            1              \n"
                     "\n" +
                     moduleHeading +
                     "b                        up             1              \n"
                     "\n",
                 ""}));
}

TEST(Listing, StopsAtTheRowThatHasNoHeartbeatOrNullWhereTheColumnIsShown)
{
    const Outcome stopped{76, watchedServiceHeading + "a                        up             ",
                          missingValue};

    EXPECT_EQ(ListOf(Services(R"({"name":"a","state":"up","version":"1"},
                                 {"name":"b","state":"up","monitored":true,"version":"1"})")),
              stopped);
    EXPECT_EQ(ListOf(Services(R"({"name":"a","state":"up","monitored":null,"version":"1"})")),
              stopped);
}

TEST(Listing, WritesLongTextsWholeAndLetsThemPushTheRow)
{
    EXPECT_EQ(
        ListOf(Services(R"({"name":"a-name-of-more-than-twenty-five","state":"waiting-for-a-peer",
                            "version":"1.0-with-a-long-tail"},
                           {"name":"exactly-25-characters-abc","state":"fifteen-letters",
                            "version":"123456789012345"})")),
        (Outcome{0,
                 serviceHeading +
                     "a-name-of-more-than-twenty-fivewaiting-for-a-peer1.0-with-a-long-tail\n"
                     "exactly-25-characters-abcfifteen-letters123456789012345\n\n" +
                     noModules,
                 ""}));
}

TEST(Listing, WithoutServicesPrintsNothing)
{
    for (const char* const reply :
         {R"({"resultCode":0,"modules":[]})", R"({"resultCode":0,"services":{},"modules":[]})",
          R"({"resultCode":0,"services":null,"modules":[]})"}) {
        EXPECT_EQ(ListOf(reply), (Outcome{76, "", nullPointer})) << reply;
    }
}

TEST(Listing, WithoutModulesPrintsTheServicesFirst)
{
    for (const char* const reply :
         {R"({"resultCode":0,"services":[]})", R"({"resultCode":0,"services":[],"modules":"x"})"}) {
        EXPECT_EQ(ListOf(reply), (Outcome{76, noServices, nullPointer})) << reply;
    }
}

TEST(Listing, PrintsNothingOfATableWhoseEntryIsNoObject)
{
    EXPECT_EQ(ListOf(Services(R"({"name":"a","state":"up","version":"1"},3)")),
              (Outcome{76, "", nullPointer}));
}

TEST(Listing, PrintsTheRowsBeforeAnEntryThatTheSearchForAHeartbeatDidNotReach)
{
    EXPECT_EQ(
        ListOf(Services(R"({"name":"a","state":"up","monitored":true,"version":"1"},3)")),
        (Outcome{76,
                 watchedServiceHeading +
                     "a                        up             yes            1              \n",
                 nullPointer}));
}
