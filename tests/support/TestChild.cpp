// A child for live tests: `alloc <MiB>` first allocates and touches that much memory; `write
// <file> <MiB> <seconds>` writes that much to the file in 1 MiB pieces spread over the seconds
// and keeps the file open; any mode then says "ready" and waits to be killed, for a minute at
// most.
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
    FILE* file = nullptr;
    if (argc > 4 && std::strcmp(argv[1], "write") == 0) {
        file = std::fopen(argv[2], "wb");
        const long pieces = std::atol(argv[3]);
        const std::vector<char> piece(size_t(1) << 20, 'z');
        for (long i = 0; file && i < pieces; ++i) {
            std::fwrite(piece.data(), 1, piece.size(), file);
            std::fflush(file);
            std::this_thread::sleep_for(
                std::chrono::milliseconds(std::atol(argv[4]) * 1000 / pieces));
        }
    }
    std::puts("ready");
    std::fflush(stdout);
    std::this_thread::sleep_for(std::chrono::minutes(1));
    if (file) {
        std::fclose(file);
    }
    return memory.empty() ? 0 : memory[4096] == 0;
}
