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
    double milliseconds = 0; // from start to end
    double processor = 0;    // milliseconds of it, which other programs of the machine change little
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
    const auto milliseconds = [](const timeval& time) {
        return double(time.tv_sec) * 1000 + double(time.tv_usec) / 1000;
    };
    return {took.count(), milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime), usage.ru_maxrss};
}

// The middle times and the largest memory of several runs.
inline Cost middle(const char* program, const char* word) {
    std::vector<Cost> runs;
    for (int i = 0; i < Runs; ++i)
        runs.push_back(runOnce(program, word));
    Cost cost;
    const auto middleOf = [&runs](auto member) {
        std::sort(runs.begin(), runs.end(),
                  [member](const Cost& one, const Cost& other) { return one.*member < other.*member; });
        return runs[runs.size() / 2].*member;
    };
    cost.milliseconds = middleOf(&Cost::milliseconds);
    cost.processor = middleOf(&Cost::processor);
    for (const Cost& one : runs)
        cost.kilobytes = std::max(cost.kilobytes, one.kilobytes);
    return cost;
}

// Two programs and how the second compares with the first.
inline void printBeside(const char* bareName, const Cost& bare, const char* name, const Cost& cost) {
    std::printf("%-28s %10s %14s %12s\n", "", "ms", "processor ms", "KB at most");
    const auto line = [](const char* text, const Cost& of) {
        std::printf("%-28s %10.1f %14.1f %12ld\n", text, of.milliseconds, of.processor, of.kilobytes);
    };
    line(bareName, bare);
    line(name, cost);
    std::printf("%-28s %10.2f %14.2f %12.2f\n", "ratio", cost.milliseconds / bare.milliseconds,
                cost.processor / bare.processor, double(cost.kilobytes) / double(bare.kilobytes));
}
