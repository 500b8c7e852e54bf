#include "app/BuildInfo.h"

void Print(const char* line);

int main()
{
    Print(versionText);
    Print(buildInfoText);
}
