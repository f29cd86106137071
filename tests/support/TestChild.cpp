// A child for live tests: `alloc <MiB>` first allocates and touches that much memory; any mode
// then says "ready" and waits to be killed, for a minute at most.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
    std::vector<char> memory;
    if (argc > 2 && std::strcmp(argv[1], "alloc") == 0) {
        memory.resize(static_cast<size_t>(std::atol(argv[2])) << 20);
        for (size_t i = 0; i < memory.size(); i += 4096) {
            memory[i] = static_cast<char>(i);
        }
    }
    std::puts("ready");
    std::fflush(stdout);
    std::this_thread::sleep_for(std::chrono::minutes(1));
    return memory.empty() ? 0 : memory[4096] == 0;
}
