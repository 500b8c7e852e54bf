#include "app/BuildInfo.h"

#include <cstdio>

int main()
{
    std::puts(versionText);
    std::puts(buildInfoText);
}
