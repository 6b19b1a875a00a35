// The cost of a program from start to end, as a process of its own: the time and the largest memory.
#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

inline constexpr int Runs = 15;

struct Cost {
    double milliseconds = 0;
    long kilobytes = 0;
};

// One run of the program with one word.
inline Cost runOnce(const char* program, const char* word) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execl(program, program, word, static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        std::fprintf(stderr, "%s %s failed\n", program, word);
    return {took.count(), usage.ru_maxrss};
}

// The median time and the largest memory of several runs.
inline Cost middle(const char* program, const char* word) {
    std::vector<double> times;
    Cost cost;
    for (int i = 0; i < Runs; ++i) {
        const Cost one = runOnce(program, word);
        times.push_back(one.milliseconds);
        cost.kilobytes = std::max(cost.kilobytes, one.kilobytes);
    }
    std::sort(times.begin(), times.end());
    cost.milliseconds = times[times.size() / 2];
    return cost;
}

// Two programs and how the second compares with the first.
inline void printBeside(const char* bareName, const Cost& bare, const char* name, const Cost& cost) {
    std::printf("%-28s %10s %12s\n", "", "ms", "KB at most");
    std::printf("%-28s %10.1f %12ld\n", bareName, bare.milliseconds, bare.kilobytes);
    std::printf("%-28s %10.1f %12ld\n", name, cost.milliseconds, cost.kilobytes);
    std::printf("%-28s %10.2f %12.2f\n", "ratio", cost.milliseconds / bare.milliseconds,
                double(cost.kilobytes) / double(bare.kilobytes));
}
