// A child process for tests against the live machine:
//   alloc <MiB>  allocates and touches that much memory, says "ready", then waits
//   spin         keeps one core busy, says "ready" first
//   sleep        says "ready" and waits
// Each mode runs until killed, or for a minute at most.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    const char* mode = argc > 1 ? argv[1] : "sleep";
    std::vector<char> memory;
    if (std::strcmp(mode, "alloc") == 0 && argc > 2) {
        memory.resize(static_cast<size_t>(std::atol(argv[2])) << 20);
        for (size_t i = 0; i < memory.size(); i += 4096) {
            memory[i] = static_cast<char>(i);
        }
    }
    std::puts("ready");
    std::fflush(stdout);
    volatile unsigned long counter = 0;
    while (std::chrono::steady_clock::now() < deadline) {
        if (std::strcmp(mode, "spin") == 0) {
            for (int i = 0; i < 1000000; ++i) {
                counter = counter + 1;
            }
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }
    return memory.empty() ? 0 : memory[4096] == 0;
}
