#include "app/BuildInfo.h"
#include "sim/Simulator.h"

int main(int argc, char** argv)
{
    return sim::RunSimulator(argc, argv, versionText);
}
