#pragma once

#include <barrier>
#include <string>
#include <thread>
#include <vector>

/// Runs `work(number)` in `count` threads at once and waits for all of them. They start together.
template <typename Work>
void runCrowd(int count, const Work& work) {
    std::barrier start(count);
    std::vector<std::jthread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&start, &work, number] {
            start.arrive_and_wait();
            work(number);
        });
    }
}
