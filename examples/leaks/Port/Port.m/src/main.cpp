// Errs and leaks on purpose, so that there is something to triage.

#include <cstdio>
#include <string>

#include "Hold.h"
#include "Watch.h"

static int UnloadShip() {
    Hold hold;
    hold.Load(10);
    hold.Load(20);
    return hold.Weigh() + hold.CountAshore();
}

static void KeepWatch() {
    Watch* watch = new Watch;
    for (int hour = 0; hour < 3; ++hour) watch->Note(std::string(100, '.'));
}

int main() {
    int sum = 0;
    for (int ship = 0; ship < 3; ++ship) sum += UnloadShip();
    KeepWatch();
    std::printf("unloaded %s\n", sum == 0 ? "nothing" : "ships");
    return 0;
}
