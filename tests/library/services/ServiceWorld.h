#pragma once

// Services to try while it lives: "QuorelServiceTest", which starts and stops when it is
// asked to, and "QuorelServiceOff", which is disabled. Each system makes its own.
struct ServiceWorld {
    ServiceWorld();
    ~ServiceWorld();

    // What can be met on this system alone: rows for the test's table.
    static const char kCases[];
};
